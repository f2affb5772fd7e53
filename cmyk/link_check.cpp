#include "cmyk/link_check.h"

#include <array>

#include "cmyk/cmyk.h"
#include "frame/arithmetic.h"
#include "frame/bytes.h"
#include "frame/path.h"
#include "frame/text.h"
#include "icc/icc.h"
#include "icc/words.h"
#include "resources/texts.h"
#include "tone/tone.h"

namespace ko::cmyk {
namespace {

using icc::signatureText;
using Found = std::optional<Problem>;

// The table of a tag has to convert between these numbers of channels.
Found checkTable(IccProfile& profile, uint32_t tag, int32_t in, int32_t out) {
    const std::string name = signatureText(tag);
    if (!icc::findTag(profile, tag)) return Problem{texts::kTagMissing, {name}};
    const auto* const lut = static_cast<const IccLut*>(icc::loadTag(profile, tag));
    if (!lut) return Problem{texts::kTagUnreadable, {name}};
    if (lut->inputChannels == in && lut->outputChannels == out) return std::nullopt;
    return Problem{texts::kTagShape,
                   {name, std::to_string(lut->inputChannels), std::to_string(lut->outputChannels),
                    std::to_string(in), std::to_string(out)}};
}

Found checkCmyk(const IccProfile& profile) {
    const uint32_t space = profile.header.colourSpace;
    if (space == fourcc("CMYK")) return std::nullopt;
    return Problem{texts::kWrongSpace, {signatureText(space)}};
}

struct Opened {
    icc::ProfilePtr profile;
    Found problem;
};
Opened openIcc(const std::string& path) {
    if (auto problem = whyUnreadable(path.c_str())) return {nullptr, std::move(problem)};
    Opened opened{icc::loadHeader(path.c_str()), std::nullopt};
    if (!opened.profile || opened.profile->header.magic != fourcc("acsp"))
        return {nullptr, Problem{texts::kNoIccProfile}};
    return opened;
}

// One side of a conversion: a CMYK profile with the table of the intent.
Found checkSide(const std::string& path, const std::array<uint32_t, 3>& tags, int32_t intent,
                int32_t in, int32_t out) {
    const Opened opened = openIcc(path);
    if (!opened.profile) return opened.problem;
    if (auto problem = checkCmyk(*opened.profile)) return problem;
    const IccHeader& header = opened.profile->header;
    if (header.deviceClass == fourcc("link")) return Problem{texts::kIsLink};
    if (header.connectionSpace != fourcc("Lab ") && header.connectionSpace != fourcc("XYZ "))
        return Problem{texts::kWrongConnection, {signatureText(header.connectionSpace)}};
    if (intent < 0 || intent > 2) return std::nullopt;  // the making refuses it
    return checkTable(*opened.profile, tags[static_cast<size_t>(intent)], in, out);
}

bool isTable(const std::string& path) noexcept {
    return hasExtension(path.c_str(), ".lut") || hasExtension(path.c_str(), ".amt");
}

Found checkBase(const std::string& path) {
    if (auto problem = whyUnreadable(path.c_str())) return problem;
    if (isTable(path)) return std::nullopt;
    if (auto problem = whyNoLink(path.c_str())) return problem;
    return std::nullopt;
}

}  // namespace

Found whyNoLink(const char* path) {
    if (isTable(path)) return whyUnreadable(path);
    const Opened opened = openIcc(path);
    if (!opened.profile) return opened.problem;
    const IccHeader& header = opened.profile->header;
    const auto* const lut =
        static_cast<const IccLut*>(icc::loadTag(*opened.profile, fourcc("A2B0")));
    if (lut && lut->inputChannels == 4 && lut->outputChannels == 4) return std::nullopt;
    return Problem{texts::kNoLink,
                   {signatureText(header.colourSpace), signatureText(header.connectionSpace)}};
}

bool convertsNothing(const CmsLinkSettings& settings) noexcept {
    return textIn(settings.basePath).empty() && textIn(settings.sourcePath).empty() &&
           textIn(settings.destinationPath).empty() && textIn(settings.blackPath).empty() &&
           settings.whiteMode != 2;
}

namespace {

constexpr LinkField kInputs[] = {LinkField::base, LinkField::source, LinkField::destination,
                                 LinkField::black};
constexpr std::array kA2B = {fourcc("A2B0"), fourcc("A2B1"), fourcc("A2B2")};
constexpr std::array kB2A = {fourcc("B2A0"), fourcc("B2A1"), fourcc("B2A2")};

std::string pathOf(const CmsLinkSettings& settings, LinkField field) {
    switch (field) {
        case LinkField::base: return std::string(textIn(settings.basePath));
        case LinkField::source: return std::string(textIn(settings.sourcePath));
        case LinkField::destination: return std::string(textIn(settings.destinationPath));
        case LinkField::black: return std::string(textIn(settings.blackPath));
        case LinkField::output: break;
    }
    return std::string(textIn(settings.outputPath));
}

// A conversion between two ICC profiles, as the name of its first one says.
bool isBetweenIcc(const CmsLinkSettings& settings) {
    return hasExtension(pathOf(settings, LinkField::source).c_str(), ".icc");
}

Found checkOutput(const CmsLinkSettings& settings) {
    const std::string output = pathOf(settings, LinkField::output);
    if (fileNameOf(output).empty()) return Problem{texts::kNeedsOutput};
    if (isTable(output)) return Problem{texts::kOutputIsTable};
    for (const LinkField field : kInputs) {
        const std::string input = pathOf(settings, field);
        if (!input.empty() && platform::sameFile(input.c_str(), output.c_str()))
            return Problem{texts::kOutputIsInput};
    }
    return std::nullopt;
}

// What can be said against the file of a field by itself.
Found checkFile(const CmsLinkSettings& settings, LinkField field) {
    const std::string path = pathOf(settings, field);
    switch (field) {
        case LinkField::base: return checkBase(path);
        case LinkField::source:
            if (isBetweenIcc(settings)) return checkSide(path, kA2B, settings.intent, 4, 3);
            // A table of another kind, which a plug-in reads.
            if (auto problem = whyUnreadable(path.c_str())) return problem;
            if (openIcc(path).profile) return Problem{texts::kIccNeedsExtension};
            return std::nullopt;
        case LinkField::destination:
            if (isBetweenIcc(settings) || (pathOf(settings, LinkField::source).empty() &&
                                           !hasExtension(path.c_str(), ".dcc")))
                return checkSide(path, kB2A, settings.intent, 3, 4);
            return tone::whyNoCurveFile(6, path.c_str());
        case LinkField::black: return tone::whyNoCurveFile(1, path.c_str());
        case LinkField::output: break;
    }
    return checkOutput(settings);
}

const char* kindOf(const IccHeader& header) noexcept {
    switch (header.deviceClass) {
        case fourcc("prtr"): return texts::kOutputProfile;
        case fourcc("mntr"): return texts::kDisplayProfile;
        case fourcc("scnr"): return texts::kInputProfile;
        case fourcc("link"): return texts::kLinkCaption;
        default: return texts::kProfileCaption;
    }
}

void describeIcc(FileFact& fact, const std::string& path, uint32_t tag) {
    const Opened opened = openIcc(path);
    if (!opened.profile) return;
    const IccHeader& header = opened.profile->header;
    fact.kind = kindOf(header);
    fact.description = icc::descriptionLine(*opened.profile);
    fact.conversion =
        signatureText(header.colourSpace) + " - " + signatureText(header.connectionSpace);
    if (icc::findTag(*opened.profile, tag)) fact.conversion += ", " + signatureText(tag);
}

}  // namespace

std::optional<FileFact> factOf(const CmsLinkSettings& settings, LinkField field) {
    const std::string path = pathOf(settings, field);
    if (path.empty() || field == LinkField::output) return std::nullopt;
    FileFact fact;
    fact.problem = checkFile(settings, field);
    const auto intent = static_cast<size_t>(clampTo(settings.intent, 0, 2));
    switch (field) {
        case LinkField::base:
            if (isTable(path)) fact.kind = texts::kTableFile;
            else describeIcc(fact, path, kA2B[0]);
            break;
        case LinkField::source:
            if (isBetweenIcc(settings)) describeIcc(fact, path, kA2B[intent]);
            else if (!fact.problem) fact.kind = texts::kTableFile;
            break;
        case LinkField::destination:
            describeIcc(fact, path, kB2A[intent]);
            if (!fact.problem && !*fact.kind) fact.kind = texts::kDccSettings;
            break;
        default:
            if (!fact.problem) fact.kind = texts::kBlackCorrection;
            break;
    }
    return fact;
}

std::optional<LinkProblem> checkLinkSettings(const CmsLinkSettings& settings) {
    const auto against = [&](LinkField field, Found problem) {
        return LinkProblem{field, pathOf(settings, field), std::move(*problem)};
    };
    for (const LinkField field : kInputs) {
        if (field == LinkField::source) {
            const bool hasSource = !pathOf(settings, field).empty();
            if (hasSource != !pathOf(settings, LinkField::destination).empty())
                return hasSource
                           ? against(LinkField::destination, Problem{texts::kNeedsPrinter})
                           : against(LinkField::source, Problem{texts::kNeedsTarget});
        }
        if (pathOf(settings, field).empty()) continue;
        if (auto problem = checkFile(settings, field)) return against(field, std::move(problem));
    }
    if (auto problem = checkFile(settings, LinkField::output))
        return against(LinkField::output, std::move(problem));
    return std::nullopt;
}

}  // namespace ko::cmyk
