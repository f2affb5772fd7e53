#include "cli/classic_link.h"

#include <cmath>

#include "cli/errors.h"
#include "cmyk/cmyk.h"

namespace ko::cli {
namespace {

int32_t levelOf(double percentage) { return static_cast<int32_t>(std::floor(percentage * 2.55 + 0.5)); }

void requireCmyk(const IccInput& profile, const char* role) {
    const uint32_t space = profile.header().colourSpace;
    if (space == fourcc("CMYK")) return;
    failOn(profile.file().path,
           "is a profile for " + signatureText(space) + " where CMYK is needed (" + role + ")");
}

void requireConnectionSpace(const IccInput& profile, const char* role) {
    const uint32_t space = profile.header().connectionSpace;
    if (space == fourcc("Lab ") || space == fourcc("XYZ ")) return;
    const bool isLink = profile.header().deviceClass == fourcc("link");
    failOn(profile.file().path, std::string(isLink ? "is a device link" : "connects to " + signatureText(space)) +
                                    "; the " + role + " must be a profile that connects to Lab or XYZ");
}

}  // namespace

void requireTable(const IccInput& profile, bool toConnectionSpace, int intent) {
    static constexpr uint32_t kTags[2][3] = {
        {fourcc("B2A0"), fourcc("B2A1"), fourcc("B2A2")},
        {fourcc("A2B0"), fourcc("A2B1"), fourcc("A2B2")},
    };
    static constexpr const char* kIntents[] = {"perceptual", "relative", "saturation"};
    const auto& tags = kTags[toConnectionSpace];
    const std::string wanted = signatureText(tags[intent]);
    if (!profile.find(tags[intent])) {
        std::string others;
        for (int other = 0; other < 3; ++other)
            if (profile.find(tags[other])) {
                others += others.empty() ? "; it has " : ", ";
                others += signatureText(tags[other]);
                others += std::string(" (--intent ") + kIntents[other] + ")";
            }
        if (others.empty() && !toConnectionSpace)
            others = "; the profile cannot be printed with, only be a source";
        failOn(profile.file().path, "tag " + wanted + " is missing" + others);
    }
    const IccLut* lut = profile.lut(tags[intent]);
    const int32_t in = toConnectionSpace ? 4 : 3;
    const int32_t out = toConnectionSpace ? 3 : 4;
    if (lut->inputChannels != in || lut->outputChannels != out)
        failOn(profile.file().path, "tag " + wanted + " converts " + std::to_string(lut->inputChannels) + " to " +
                                        std::to_string(lut->outputChannels) + " channels where " +
                                        std::to_string(in) + " to " + std::to_string(out) + " are needed");
}

void requireClassicRgb(const IccInput& profile, int intent) {
    const std::string& path = profile.file().path;
    const uint32_t table = fourcc("A2B0") + static_cast<uint32_t>(intent);
    requireConnectionSpace(profile, "source");
    if (profile.find(table)) {
        (void)profile.lut(table);
        return;
    }
    if (profile.header().connectionSpace != fourcc("XYZ "))
        failOn(path, "has no " + signatureText(table) + " and connects to Lab by a matrix, which --method classic cannot");
    for (const auto& [tag, type] : {std::pair(fourcc("rTRC"), fourcc("curv")), std::pair(fourcc("gTRC"), fourcc("curv")),
                                    std::pair(fourcc("bTRC"), fourcc("curv")), std::pair(fourcc("rXYZ"), fourcc("XYZ ")),
                                    std::pair(fourcc("gXYZ"), fourcc("XYZ ")), std::pair(fourcc("bXYZ"), fourcc("XYZ "))}) {
        const IccTagEntry* const entry = profile.find(tag);
        if (!entry)
            failOn(path, "has neither " + signatureText(table) + " nor " + signatureText(tag) + "; --method classic needs one");
        if (const uint32_t found = profile.elementType(*entry); found != type)
            failOn(path, "tag " + signatureText(tag) + " is of type '" + signatureText(found) +
                             "'; --method classic reads '" + signatureText(type) + "' alone");
    }
}

void checkBase(const InputFile& file) {
    if (file.type == FileType::cmykTable || file.type == FileType::amatchTable) {
        const uint64_t wanted = wholeTableBytes(file.type);
        if (file.size < wanted)
            failOn(file.path, "is cut short: " + grouped(file.size) + " of " + grouped(wanted) + " bytes");
        return;
    }
    const IccInput profile(file);
    requireCmyk(profile, "base");
    const IccLut* lut = profile.lut(fourcc("A2B0"));
    if (lut->inputChannels != 4 || lut->outputChannels != 4)
        failOn(file.path, "tag A2B0 converts " + std::to_string(lut->inputChannels) + " to " +
                              std::to_string(lut->outputChannels) +
                              " channels; the base must be a link from CMYK to CMYK");
}

void requireBlackCurve(const InputFile& file) {
    if (file.type != FileType::blackCurve)
        failOn(file.path, "is not a black-correction file (.bkc)");
    if (!hasLineBeginning(file, "TONE  "))
        failOn(file.path, "holds no TONE line; it is not a black-correction file");
}

bool isForeignPair(const InputFile* source, const InputFile* destination) {
    const auto isIcc = [](const InputFile& file) {
        return file.type == FileType::icc || endsWith(file.path, ".icc") ||
               endsWith(file.path, ".icm");
    };
    return source && destination && !isIcc(*source) && destination->type != FileType::icc;
}

ClassicLink::ClassicLink(const LinkChoices& choices) : choices_(choices) {
    settings_.limit = 200;
    chooseConversion();
    chooseBlack();
    choosePaper();
    if (choices_.base) checkBase(add(*choices_.base, settings_.basePath));
    settings_.intent = choices_.intentNumber();
    settings_.preservation = indexOf(choices_.preserve.value_or("none"), {"none", "primaries", "secondaries"});
    checkConversion();
}

CmykProfilePtr ClassicLink::combine(const std::string& output) {
    const auto black = choices_.black.value_or("keep") == "keep" ? cmyk::Black::kept : cmyk::Black::asSettingsSay;
    auto result = reasoned([&] {
        return isIcc_ ? cmyk::combineIccProfile(settings_, black) : cmyk::combineProfile(settings_, black);
    });
    if (result) return result;
    throwIfNotItsFault(choices_.source ? *choices_.source : output);
    if (isForeign_)
        failOn(*choices_.source,
               "the table cannot be read: it is no ICC profile, and the plug-in LutRead is "
               "missing from the product folder or refuses it");
    throw Failure("the profiles cannot be combined: a file changed meanwhile, or memory is short");
}

const InputFile& ClassicLink::add(const std::string& path, char (&field)[KOLINK_PATH_SIZE]) {
    files_.push_back(std::make_unique<InputFile>(openInput(path)));
    inputs_.push_back(path);
    names_.emplace_back(path);
    copyToField(field, names_.back().path());
    return *files_.back();
}

void ClassicLink::chooseConversion() {
    if (!choices_.source) {
        if (choices_.intent) throw UsageFailure("--intent needs --source and --destination");
        return;
    }
    source_ = &add(*choices_.source, settings_.sourcePath);
    destination_ = &add(*choices_.destination, settings_.destinationPath);
    isForeign_ = isForeignPair(source_, destination_);
    isIcc_ = !isForeign_;
}

void ClassicLink::checkConversion() {
    if (isForeign_) {
        if (source_->type != FileType::foreign)
            failOn(source_->path, "is neither an ICC profile nor a foreign table");
        if (destination_->type != FileType::dcc)
            failOn(destination_->path, "a foreign table as source needs a .dcc file as destination");
        if (!hasLineBeginning(*destination_, "TONE "))
            failOn(destination_->path, "holds no TONE line; it is not a DCC file");
        if (choices_.intent)
            throw UsageFailure("--intent has no meaning with a foreign table as source");
        return;
    }
    if (!isIcc_) return;
    if (destination_->type == FileType::dcc)
        failOn(destination_->path, "a .dcc file is the destination for a foreign table; an ICC "
                                   "source needs an ICC profile");
    const IccInput source(*source_);
    requireCmyk(source, "source");
    requireConnectionSpace(source, "source");
    requireTable(source, true, settings_.intent);
    const IccInput destination(*destination_);
    requireCmyk(destination, "destination");
    requireConnectionSpace(destination, "destination");
    requireTable(destination, false, settings_.intent);
}

void ClassicLink::chooseBlack() {
    if (!choices_.blackIsFile()) return;
    requireBlackCurve(add(*choices_.black, settings_.blackPath));
}

void ClassicLink::choosePaper() {
    settings_.whiteMode = indexOf(choices_.whiteMode(), {"profile", "clean", "paper"});
    if (!choices_.paper) return;
    const auto tint = choices_.paperTint();
    settings_.paperC = levelOf(tint[0]);
    settings_.paperM = levelOf(tint[1]);
    settings_.paperY = levelOf(tint[2]);
    settings_.paperK = levelOf(tint[3]);
    if (choices_.fade) settings_.limit = levelOf(percent(*choices_.fade, 400, "--fade"));
}

}  // namespace ko::cli
