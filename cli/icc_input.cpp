#include "cli/icc_input.h"

#include <cstring>
#include <new>

#include "cli/errors.h"

namespace ko::cli {
namespace {

template <class Pointer>
Pointer orShortOfMemory(Pointer pointer) {
    if (!pointer) throw std::bad_alloc();
    return pointer;
}

// Bytes of the element that holds the table, as the file form has it.
uint64_t elementBytes(const IccLut& lut) {
    uint64_t nodes = 1;
    for (int32_t axis = 0; axis < lut.inputChannels; ++axis) nodes *= static_cast<uint64_t>(lut.gridPoints);
    const uint64_t entries = static_cast<uint64_t>(lut.inputChannels) * lut.inputEntries +
                             nodes * lut.outputChannels +
                             static_cast<uint64_t>(lut.outputChannels) * lut.outputEntries;
    return (lut.precision == 1 ? 48u : 52u) + entries * lut.precision;
}

}  // namespace

CmykProfilePtr newCmykProfile() { return orShortOfMemory(CmykProfilePtr(jKoCmykCreateProfile())); }
ToneCurvePtr newToneCurve(int32_t channels) {
    return orShortOfMemory(ToneCurvePtr(jKoToneCreateToneCurve(channels)));
}

std::string signatureText(uint32_t signature) {
    if (signature == 0) return {};
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(signature >> shift & 0xff);
    text.erase(text.find_last_not_of(' ') + 1);
    return printable(text);
}

IccInput::IccInput(const InputFile& file) : file_(file) {
    if (file.size < 128) failOn(file.path, "is not an ICC file (shorter than an ICC header)");
    if (file.kind != FileKind::icc) failOn(file.path, "is not an ICC file");
    profile_.reset(jIccLoadHeader(file.libraryPath.c_str()));
    if (!profile_)
        failOn(file.path, "its ICC header or tag list cannot be read; the file is damaged");
}

const IccTagEntry* IccInput::find(uint32_t signature) const {
    for (int32_t i = 0; i < profile_->tagCount; ++i)
        if (profile_->tags[i].signature == signature) return &profile_->tags[i];
    return nullptr;
}

uint32_t IccInput::elementType(const IccTagEntry& entry) const {
    const auto bytes = readBytes(file_, entry.offset, 4);
    if (bytes.size() < 4) return 0;
    return static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1]) << 16 |
           static_cast<uint32_t>(bytes[2]) << 8 | bytes[3];
}

IccLut* IccInput::lut(uint32_t signature) const {
    const IccTagEntry* entry = find(signature);
    const std::string tag = "tag " + signatureText(signature);
    if (!entry) failOn(file_.path, tag + " is missing");
    const uint32_t type = elementType(*entry);
    if (type != signatureOf("mft1") && type != signatureOf("mft2"))
        failOn(file_.path, tag + " is of type '" + signatureText(type) +
                               "'; only the table types mft1 and mft2 can be used");
    auto* lut = static_cast<IccLut*>(jIccLoadTag(profile_.get(), signature));
    if (!lut) failOn(file_.path, tag + " cannot be read; the file is damaged");
    if (lut->gridPoints < 2) failOn(file_.path, tag + " has fewer than 2 grid points");
    if (lut->inputChannels < 1 || lut->inputChannels > 4 || lut->outputChannels < 1 || lut->outputChannels > 4)
        failOn(file_.path, tag + " converts " + std::to_string(lut->inputChannels) + " to " +
                               std::to_string(lut->outputChannels) +
                               " channels; 1 to 4 are supported");
    if (entry->offset + elementBytes(*lut) > file_.size)
        failOn(file_.path, tag + " is cut short by the end of the file");
    return lut;
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
