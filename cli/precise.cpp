#include "cli/precise.h"

#include <algorithm>
#include <new>

#include "cli/classic_link.h"
#include "cli/errors.h"
#include "cli/origin.h"
#include "cmyk/cmyk.h"
#include "cmyk/description.h"
#include "frame/bytes.h"
#include "kolink/saved_link.h"
#include "kolink/version.h"
#include "tone/tone.h"

namespace ko::cli {
namespace {

constexpr size_t kMostProvenance = 10000;

std::string fileName(const std::string& path) { return printable(fromPath(toPath(path).filename())); }

void takeBlackCurve(const InputFile& file, uint8_t (&levels)[256]) {
    requireBlackCurve(file);
    const ToneCurvePtr curve = newToneCurve(1);
    tone::readBkcCurve(*curve, file.text());
    const auto values = tone::valuesOf(*curve, 0);
    for (size_t level = 0; level < 256; ++level)
        levels[level] = static_cast<uint8_t>(std::clamp<int>(values[level], 0, 255));
}

// A base as an ICC link that is read evenly.
PreciseProfile openBase(const std::string& path) {
    InputFile file = openInput(path);
    checkBase(file);
    std::vector<uint8_t> bytes;
    if (file.type != FileType::icc) bytes = asIccLink(*cmykProfile(file));
    else if (const IccInput link(file); hasLibraryNodes(link)) bytes = asIccLink(*cmykProfile(link));
    if (bytes.empty()) return PreciseProfile(std::move(file));
    return PreciseProfile(inMemory(path, bytes));
}

}  // namespace

PreciseProfile::PreciseProfile(InputFile file)
    : file_(std::move(file)), info_(std::make_unique<KoPreciseProfileInfo>()) {
    if (file_.size < sizeof(IccHeader)) failOn(file_.path, "is not an ICC file (shorter than an ICC header)");
    if (file_.type != FileType::icc) failOn(file_.path, "is not an ICC file");
    KoPreciseError error;
    profile_.reset(koPreciseParseProfile(file_.bytes.data(), file_.bytes.size(), &error));
    if (!profile_) failFor(error, this, this, this);
    if (!koPreciseDescribeProfile(profile_.get(), info_.get())) throw std::bad_alloc();
    if (!file_.owner) file_.bytes = {};  // whose bytes they were may go
}

std::string PreciseProfile::tables() const {
    std::string text;
    for (int at = 0; at < 6; ++at) {
        if (!((at < 3 ? info_->tablesTo : info_->tablesFrom) >> at % 3 & 1)) continue;
        text += (text.empty() ? "" : ", ") + std::string(at < 3 ? "A2B" : "B2A") + static_cast<char>('0' + at % 3);
    }
    return text.empty() ? "no table" : text;
}

void failFor(const KoPreciseError& error, const PreciseProfile* source, const PreciseProfile* destination,
             const PreciseProfile* base) {
    if (error.code == KO_PRECISE_MEMORY) throw std::bad_alloc();
    const PreciseProfile* const parts[] = {nullptr, source, destination, base, nullptr};
    const PreciseProfile* part = parts[std::clamp(error.part, 0, 4)];
    std::string text = printable(error.text);
    // A profile that does not even open has no part yet.
    if (!part && (error.code == KO_PRECISE_PROFILE || error.code == KO_PRECISE_UNSUPPORTED)) part = source;
    if (part) {
        text = printable(part->path()) + ": " + text;
        if (error.code == KO_PRECISE_TABLES && text.find("it has ") == std::string::npos)
            text += "; it has " + part->tables();
    }
    if (error.code == KO_PRECISE_ARGUMENT) throw UsageFailure(text);
    throw Failure(text);
}

PrecisePair::PrecisePair(const LinkChoices& choices, InputFile source, InputFile destination)
    : choices_(choices), source_(std::move(source)), destination_(std::move(destination)),
      options_(choices.preciseOptions()) {
    if (choices.blackIsFile()) {
        takeBlackCurve(openInput(*choices.black), options_.blackCurve);
        options_.black = KO_PRECISE_BLACK_CURVE;
        further_.push_back(*choices.black);
    }
    if (choices.base) {
        base_ = openBase(*choices.base);
        further_.push_back(*choices.base);
    }
    if (choices.paper && source_.info().space != fourcc("CMYK"))
        throw UsageFailure("--paper needs a source for CMYK");
}

PreciseLink PrecisePair::make(int bits, int gridPoints) const {
    KoPreciseOptions options = options_;
    options.bits = bits;
    if (gridPoints != 0) options.gridPoints = gridPoints;
    KoPreciseError error;
    const PreciseProfile* const base = base_ ? &*base_ : nullptr;
    PreciseLink link(koPreciseMakeLink(source_.handle(), destination_.handle(), base ? base->handle() : nullptr,
                                       &options, &error));
    if (!link) failFor(error, &source_, &destination_, base);
    return link;
}

PreciseTransform PrecisePair::transform() const {
    KoPreciseError error;
    PreciseTransform transform(koPreciseMakeTransform(source_.handle(), destination_.handle(), options_.intent,
                                                      options_.blackPointCompensation, &error));
    if (!transform) failFor(error, &source_, &destination_, nullptr);
    return transform;
}

bool PrecisePair::sameFile() const {
    return std::ranges::equal(source_.file().bytes, destination_.file().bytes);
}

std::vector<std::string> PrecisePair::files() const {
    std::vector<std::string> files = {source_.path(), destination_.path()};
    files.insert(files.end(), further_.begin(), further_.end());
    return files;
}

std::string PrecisePair::provenance(bool withPlaces) const {
    std::string text = originLines("source", source_.path(), withPlaces) +
                       originLines("destination", destination_.path(), withPlaces);
    const auto line = [&](const char* key, const std::string& value) {
        text += std::string(key) + ": " + value + '\n';
    };
    if (choices_.blackIsFile()) line("black-file", fileName(*choices_.black));
    if (base_) {
        line("base-file", fileName(base_->path()));
        line("base-id", hex(base_->info().id));
    }
    line("white", choices_.whiteMode());
    if (choices_.paper) line("paper", printable(*choices_.paper));
    if (choices_.fade) line("fade", printable(*choices_.fade));
    if (choices_.saveInkAbove) line("save-ink-above", printable(*choices_.saveInkAbove));
    line("version", KOLINK_VERSION);
    return text;
}

std::string hex(const uint8_t (&id)[16]) {
    std::string text;
    for (const uint8_t byte : id) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

PreciseTransform linkTransform(const PreciseProfile& link) {
    KoPreciseError error;
    PreciseTransform transform(koPreciseMakeTransform(link.handle(), nullptr, KO_PRECISE_PERCEPTUAL, 0, &error));
    if (!transform) failFor(error, &link, nullptr, nullptr);
    return transform;
}

std::string provenanceOf(const IccInput& link) {
    const IccTagEntry* const entry = link.find(fourcc("kprv"));
    if (!entry || link.elementType(*entry) != fourcc("text")) return {};
    const auto bytes = link.file().bytes;
    if (entry->offset > bytes.size() || entry->size < 8 || entry->size > bytes.size() - entry->offset) return {};
    const auto text = bytes.subspan(entry->offset + 8, std::min<size_t>(entry->size - 8, kMostProvenance));
    return std::string(text.begin(), std::find(text.begin(), text.end(), 0));
}

bool hasLibraryNodes(const IccInput& link) {
    const IccTagEntry* const entry = link.find(fourcc("A2B0"));
    if (!entry || link.elementType(*entry) != fourcc("mft1")) return false;
    const IccLut* const lut = link.lut(fourcc("A2B0"));
    if (lut->precision != 1 || lut->gridPoints != cmyk::kGridPoints || lut->inputChannels != 4 ||
        lut->outputChannels != 4)
        return false;
    const std::string made = provenanceOf(link);
    if (!made.empty()) return made.find("\nnodes: library\n") != std::string::npos;
    const auto* const description = link.tag<const char>(fourcc("desc"));
    return description && cmyk::holdsEditingData(description);
}

std::vector<uint8_t> asIccLink(const CmykProfile& profile) {
    CmykCurveTables curves;
    jKoCmykMakeCurveTables(&profile, &curves);
    std::vector<uint8_t> bytes;
    bytes.reserve(sizeof profile.grid * 2 + 8192);
    ByteWriter out(bytes);
    constexpr uint32_t kStart = 144, kTables = 4 * 256 * 2;
    constexpr uint32_t kSize = 52 + 2 * kTables + 2 * uint32_t{sizeof profile.grid};
    out.u32(kStart + kSize);
    out.u32(0);
    out.u32(0x02400000);
    for (const uint32_t signature : {fourcc("link"), fourcc("CMYK"), fourcc("CMYK")}) out.u32(signature);
    out.zeros(12);
    out.u32(fourcc("acsp"));
    out.zeros(128 - 40);
    out.u32(1);
    for (const uint32_t word : {fourcc("A2B0"), kStart, kSize, fourcc("mft2"), 0u}) out.u32(word);
    for (const int part : {4, 4, int{cmyk::kGridPoints}, 0}) out.u8(static_cast<uint8_t>(part));
    for (int at = 0; at < 9; ++at) out.u32(at % 4 == 0 ? 0x10000 : 0);
    out.u16(256);
    out.u16(256);
    for (int ink = 0; ink < 4; ++ink)
        for (const uint8_t level : curves.levels[ink]) {
            const double node = level <= 248 ? level / 8.0 : 31 + (level - 248) / 7.0;
            out.u16(static_cast<uint16_t>(node / 32 * 65535 + 0.5));
        }
    for (const uint32_t word : profile.grid)
        for (int shift = 24; shift >= 0; shift -= 8) out.u16(static_cast<uint16_t>((word >> shift & 255) * 257));
    for (int ink = 4; ink < 8; ++ink)
        for (const uint8_t level : curves.levels[ink]) out.u16(static_cast<uint16_t>(level * 257));
    return bytes;
}

}  // namespace ko::cli
