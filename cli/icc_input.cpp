#include "cli/icc_input.h"

#include <algorithm>
#include <new>

#include "cli/errors.h"
#include "cli/system.h"
#include "cmyk/cmyk.h"
#include "cmyk/load.h"

namespace ko::cli {
namespace {

// Bytes of the element that holds the table, as the file form has it.
uint64_t elementBytes(const IccLut& lut) {
    const icc::LutShape shape = icc::shapeOf(lut);
    return (shape.precision == 1 ? 48u : 52u) + icc::sizesOf(shape).tables();
}

}  // namespace

CmykProfilePtr newCmykProfile() { return orShortOfMemory(cmyk::createProfile()); }
ToneCurvePtr newToneCurve(int32_t channels) {
    return orShortOfMemory(tone::createToneCurve(channels));
}

std::string signatureText(uint32_t signature) {
    if (signature == 0) return {};
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(signature >> shift & 0xff);
    text.erase(text.find_last_not_of(' ') + 1);
    return printable(text);
}

IccInput::IccInput(InputFile file) : file_(std::move(file)) {
    if (file_.size < sizeof(IccHeader)) failOn(file_.path, "is not an ICC file (shorter than an ICC header)");
    if (file_.type != FileType::icc) failOn(file_.path, "is not an ICC file");
    profile_ = reasoned([&] { return icc::parseHeader(file_.bytes); });
    if (profile_) return;
    throwIfNotItsFault(file_.path);
    failOn(file_.path, "its ICC header or tag list cannot be read; the file is damaged");
}

const IccTagEntry* IccInput::find(uint32_t signature) const {
    return icc::findTag(*profile_, signature);
}

uint32_t IccInput::elementType(const IccTagEntry& entry) const {
    const auto bytes = file_.bytes;
    ByteReader in(bytes.subspan(std::min<size_t>(entry.offset, bytes.size())));
    const uint32_t type = in.u32();
    return in.ok() ? type : 0;
}

void* IccInput::loaded(uint32_t signature) const {
    const IccTagEntry* const entry = find(signature);
    if (!entry || entry->data) return entry ? entry->data : nullptr;
    icc::Decoded decoded = icc::decodeTag(*profile_, file_.bytes, signature);
    if (decoded.result == icc::TagResult::absent) return nullptr;
    if (decoded.result == icc::TagResult::shortMemory ||
        !icc::bindBlock(*profile_, signature, std::move(decoded.data)))
        throw std::bad_alloc();
    return find(signature)->data;
}

CmykProfilePtr cmykProfile(const IccInput& icc) {
    for (const uint32_t tag : {fourcc("desc"), fourcc("A2B0")}) (void)icc.tag<void>(tag);
    CmykProfilePtr profile = newCmykProfile();
    cmyk::takeTags(*profile, icc.profile());
    return profile;
}

CmykProfilePtr cmykProfile(const InputFile& table) {
    CmykProfilePtr profile = newCmykProfile();
    cmyk::readTable(*profile, table.bytes,
                    table.type == FileType::cmykTable ? cmyk::kLutForm : cmyk::kAmtForm);
    return profile;
}

bool isCutShort(const InputFile& file, const IccTagEntry& entry, const IccLut& lut) {
    return elementBytes(lut) > file.size - std::min<uint64_t>(entry.offset, file.size);
}

IccLut* IccInput::lut(uint32_t signature) const {
    const IccTagEntry* entry = find(signature);
    const std::string name = "tag " + signatureText(signature);
    if (!entry) failOn(file_.path, name + " is missing");
    const uint32_t type = elementType(*entry);
    if (type != fourcc("mft1") && type != fourcc("mft2"))
        failOn(file_.path, name + " is of type '" + signatureText(type) +
                               "'; only the table types mft1 and mft2 can be used");
    auto* const lut = tag<IccLut>(signature);
    if (!lut) failOn(file_.path, name + " cannot be read; the file is damaged");
    if (lut->gridPoints < 2) failOn(file_.path, name + " has fewer than 2 grid points");
    if (lut->inputChannels < 1 || lut->inputChannels > 4 || lut->outputChannels < 1 || lut->outputChannels > 4)
        failOn(file_.path, name + " converts " + std::to_string(lut->inputChannels) + " to " +
                               std::to_string(lut->outputChannels) +
                               " channels; 1 to 4 are supported");
    if (isCutShort(file_, *entry, *lut))
        failOn(file_.path, name + " is cut short by the end of the file");
    return lut;
}

ReadyLut::ReadyLut(IccLut* lut)
    : lut_(lut), ready_(lut && reasoned([&] { return jIccLutSetup(lut) == 1; })) {
    // A table that cannot be evaluated is left out of a picture; one without memory is not.
    if (lut && !ready_ && system::isShortMemory(platform::lastError())) throw std::bad_alloc();
}

std::array<double, 4> ReadyLut::convert(const std::array<double, 4>& colour) const {
    int32_t values[4];
    for (size_t i = 0; i < 4; ++i) values[i] = static_cast<int32_t>(colour[i] * fullScale() + 0.5);
    jIccLutColor(lut_, values);
    std::array<double, 4> out{};
    for (int32_t i = 0; i < lut_->outputChannels; ++i) out[static_cast<size_t>(i)] = values[i] / fullScale();
    return out;
}

}  // namespace ko::cli
