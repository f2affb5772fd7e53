#include "cmyk/link_check.h"

#include <array>

#include "cmyk/cmyk.h"
#include "frame/bytes.h"
#include "frame/path.h"
#include "frame/text.h"
#include "icc/icc.h"
#include "resources/texts.h"
#include "tone/tone.h"

namespace ko::cmyk {
namespace {

using Found = std::optional<Problem>;

// The four characters, without blanks at the end; others than ASCII as '?'.
std::string signatureText(uint32_t signature) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto character = static_cast<char>(signature >> shift & 255);
        text += character >= 0x20 && character < 0x7f ? character : '?';
    }
    while (!text.empty() && text.back() == ' ') text.pop_back();
    return text;
}

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
    if (isTable(path)) return std::nullopt;
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

std::optional<LinkProblem> checkLinkSettings(const CmsLinkSettings& settings) {
    const std::string base(textIn(settings.basePath)), source(textIn(settings.sourcePath)),
        destination(textIn(settings.destinationPath)), black(textIn(settings.blackPath)),
        output(textIn(settings.outputPath));
    const auto found = [](LinkField field, const std::string& path, Found problem) {
        return problem ? std::optional(LinkProblem{field, path, std::move(*problem)}) : std::nullopt;
    };

    if (!base.empty())
        if (auto problem = found(LinkField::base, base, checkBase(base))) return problem;
    if (source.empty() != destination.empty())
        return source.empty()
                   ? found(LinkField::source, source, Problem{texts::kNeedsTarget})
                   : found(LinkField::destination, destination, Problem{texts::kNeedsPrinter});
    constexpr std::array kA2B = {fourcc("A2B0"), fourcc("A2B1"), fourcc("A2B2")};
    constexpr std::array kB2A = {fourcc("B2A0"), fourcc("B2A1"), fourcc("B2A2")};
    if (hasExtension(source.c_str(), ".icc")) {
        if (auto problem = found(LinkField::source, source,
                                 checkSide(source, kA2B, settings.intent, 4, 3)))
            return problem;
        if (auto problem = found(LinkField::destination, destination,
                                 checkSide(destination, kB2A, settings.intent, 3, 4)))
            return problem;
    } else if (!source.empty()) {  // a table of another kind, which a plug-in reads
        if (auto problem = found(LinkField::source, source, whyUnreadable(source.c_str())))
            return problem;
        if (openIcc(source).profile)
            return found(LinkField::source, source, Problem{texts::kIccNeedsExtension});
        if (auto problem =
                found(LinkField::destination, destination, tone::whyNoCurveFile(6, destination.c_str())))
            return problem;
    }
    if (!black.empty())
        if (auto problem = found(LinkField::black, black, tone::whyNoCurveFile(1, black.c_str())))
            return problem;

    if (fileNameOf(output).empty())
        return found(LinkField::output, output, Problem{texts::kNeedsOutput});
    if (isTable(output)) return found(LinkField::output, output, Problem{texts::kOutputIsTable});
    for (const std::string& input : {base, source, destination, black})
        if (!input.empty() && platform::sameFile(input.c_str(), output.c_str()))
            return found(LinkField::output, output, Problem{texts::kOutputIsInput});
    return std::nullopt;
}

}  // namespace ko::cmyk
