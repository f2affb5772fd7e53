#include "front/dialog/device_link.h"

#include <algorithm>
#include <vector>

#include "cmyk/cmyk.h"
#include "frame/colour_words.h"
#include "frame/dialog/typed.h"
#include "frame/display.h"
#include "frame/path.h"
#include "frame/scan.h"
#include "frame/text.h"
#include "icc/icc.h"
#include "resources/texts.h"

namespace ko::front {
namespace {

using PathField = char (&)[KOLINK_PATH_SIZE];

PathField fieldOf(CmsLinkSettings& settings, LinkPath which) noexcept {
    switch (which) {
        case LinkPath::base: return settings.basePath;
        case LinkPath::source: return settings.sourcePath;
        case LinkPath::destination: return settings.destinationPath;
        case LinkPath::black: return settings.blackPath;
        case LinkPath::output: break;
    }
    return settings.outputPath;
}

const char* filterOf(LinkPath which) noexcept {
    switch (which) {
        case LinkPath::base: return texts::kLinkBaseFilter;
        case LinkPath::source: return texts::kLinkTargetFilter;
        case LinkPath::destination: return texts::kLinkPrinterFilter;
        case LinkPath::black: return texts::kLinkBlackFilter;
        case LinkPath::output: break;
    }
    return texts::kLinkOutputFilter;
}

// A save counts as done also when the file could not be created, so the person is told of success
// only when the file holds what was made.
bool holds(const std::string& path, const CmykProfile& profile) {
    const icc::ProfilePtr link = icc::loadHeader(path.c_str());
    const auto* const lut =
        link ? static_cast<const IccLut*>(icc::loadTag(*link, fourcc("A2B0"))) : nullptr;
    if (!lut || lut->inputChannels != 4 || lut->outputChannels != 4 || lut->precision != 1 ||
        lut->gridPoints != cmyk::kGridPoints)
        return false;
    const auto* node = static_cast<const uint8_t*>(lut->clut);
    return std::all_of(std::begin(profile.grid), std::end(profile.grid), [&](uint32_t word) {
        const bool same = packCmyk(node[0], node[1], node[2], node[3]) == word;
        node += 4;
        return same;
    });
}

// Percent, with tenths where there are any.
std::string percentOf(double part) {
    const auto tenths = static_cast<int32_t>(part * 1000 + 0.5);
    std::string text = std::to_string(tenths / 10);
    if (tenths % 10 != 0) text += "." + std::to_string(tenths % 10);
    return text;
}

std::string inksOf(const cmyk::Inks& inks) {
    std::string text;
    for (size_t ink = 0; ink < inks.size(); ++ink)
        text += (ink ? " " : "") + std::string(1, "CMYK"[ink]) + " " + percentOf(inks[ink]);
    return text;
}

}  // namespace

LinkResultText wordsOf(const cmyk::LinkResult& result) {
    const auto colour = [](const char* name, const cmyk::Inks& out) {
        return Problem{texts::kLinkColour, {name, inksOf(out)}};
    };
    const auto& [c, m, y, k] = result.solids;
    double sumIn = 0;
    for (const double ink : result.mostIn) sumIn += ink;
    return {{Problem{texts::kLinkWhite, {inksOf(result.white)}}, colour("C 100", c),
             colour("M 100", m), colour("Y 100", y), colour("K 100", k),
             colour("CMYK 100", result.full)},
            {Problem{texts::kLinkMostInk,
                     {percentOf(sumIn) + " %", inksOf(result.mostIn),
                      percentOf(result.mostInk) + " %"}},
             Problem{texts::kLinkForeignInk,
                     {percentOf(result.foreignInPrimaries) + " %",
                      percentOf(result.foreignInSecondaries) + " %"}}}};
}

DeviceLinkModel::DeviceLinkModel(const CmsLinkSettings& settings)
    : settings_(settings), amountText_(std::to_string(value255to100(settings.limit))) {
    readFacts();
}

// One file says what another has to be.
void DeviceLinkModel::readFacts() {
    for (const LinkPath which : kLinkPaths)
        facts_[static_cast<size_t>(which)] =
            isRefused(which) ? std::nullopt : cmyk::factOf(settings_, which);
}

std::string_view DeviceLinkModel::path(LinkPath which) const noexcept {
    return textIn(fieldOf(const_cast<CmsLinkSettings&>(settings_), which));
}

std::optional<dialog::Colour> DeviceLinkModel::swatch() const noexcept {
    if (!hasPaperColour()) return std::nullopt;
    // A record can hold any number: summed wider, then limited.
    const int64_t light = int64_t{255} - settings_.paperK;
    const auto channel = [&](int32_t ink) {
        return static_cast<int32_t>(std::clamp<int64_t>(light - ink, 0, 255));
    };
    const int32_t r = channel(settings_.paperC), g = channel(settings_.paperM),
                  b = channel(settings_.paperY);
    return limitedRgb(r, g, b);
}

std::optional<LinkPath> DeviceLinkModel::firstRefused() const noexcept {
    const auto* const found = std::find_if(std::begin(kLinkPaths), std::end(kLinkPaths),
                                           [&](LinkPath which) { return isRefused(which); });
    if (found == std::end(kLinkPaths)) return std::nullopt;
    return *found;
}

void DeviceLinkModel::leavePath(LinkPath which, const TypedPath& typed) {
    auto& refused = refused_[static_cast<size_t>(which)];
    refused.reset();
    std::vector<char> whole(typed ? typed->size() + 1 : 0);
    if (typed) copyTypedPath(whole, *typed);
    if (!typed)
        refused = Problem{texts::kPathUnnameable};
    else if (textIn(whole).size() >= KOLINK_PATH_SIZE)
        refused = Problem{texts::kPathTooLong};
    else
        copyTypedPath(fieldOf(settings_, which), *typed);
    readFacts();
}

void DeviceLinkModel::leaveAmount(std::string_view percent) {
    amountNotice_ = dialog::numberNotice(percent, 0, 400, "0 %", "400 %");
    const int32_t amount = clampTo(typedIntegerIn(percent.substr(0, 3)), 0, 400);
    settings_.limit = amount * 255 / 100;
    amountText_ = std::to_string(amount);
}

bool DeviceLinkModel::browse(LinkPath which, DeviceLinkHost& host) {
    const auto choice = which == LinkPath::output ? DeviceLinkHost::Choice::fileToSave
                                                  : DeviceLinkHost::Choice::fileToOpen;
    const auto chosen = host.choosePath(which, choice, std::string(path(which)), filterOf(which));
    if (!chosen) return false;
    leavePath(which, *chosen);
    // The file dialog has asked whether it may be replaced.
    if (which == LinkPath::output && !isRefused(which)) agreed_ = path(which);
    return true;
}

bool DeviceLinkModel::pickPaperColour(DeviceLinkHost& host) {
    if (!hasPaperColour()) return false;
    const uint32_t given = limitedCmyk(settings_.paperC, settings_.paperM, settings_.paperY,
                                        settings_.paperK);
    const uint32_t picked = host.pickColour(given);
    if (picked == given) return false;
    settings_.paperC = static_cast<int32_t>(picked >> 24);
    settings_.paperM = static_cast<int32_t>(picked >> 16 & 255);
    settings_.paperY = static_cast<int32_t>(picked >> 8 & 255);
    settings_.paperK = static_cast<int32_t>(picked & 255);
    return true;
}

bool DeviceLinkModel::fail(DeviceLinkHost& host, const cmyk::LinkProblem& problem) {
    failed_ = problem.field;
    host.tellProblem(failed_ == LinkPath::output ? texts::kLinkNotWritten : texts::kLinkNotMade,
                     problem);
    return false;
}

// The output gets its extension before anybody is asked about replacing a file of that name.
bool DeviceLinkModel::mayWrite(DeviceLinkHost& host) {
    std::string output(path(LinkPath::output));
    const bool named = hasExtension(output.c_str(), ".icc") || hasExtension(output.c_str(), ".icm");
    if (!named && !fileNameOf(output).empty()) {
        const bool fits = output.size() + 4 < KOLINK_PATH_SIZE;
        if (!fits) return fail(host, {LinkPath::output, output, {texts::kPathTooLong}});
        (void)copyPath(settings_.outputPath, (output += ".icc").c_str());
    }
    if (const auto problem = cmyk::checkLinkSettings(settings_)) return fail(host, *problem);
    if (cmyk::convertsNothing(settings_) && !host.ask(texts::kNothingToLink, "")) return false;
    platform::DateTime time;
    if (platform::samePath(output.c_str(), agreed_.c_str()) ||
        !platform::fileTime(output.c_str(), time))
        return true;
    failed_ = LinkPath::output;
    if (!host.ask(texts::kReplaceQuestion, output)) return false;
    failed_.reset();
    return true;
}

bool DeviceLinkModel::create(DeviceLinkHost& host) {
    failed_.reset();
    if (const auto refused = firstRefused())
        return fail(host, {*refused, "", *refusal(*refused)});
    if (!mayWrite(host)) return false;
    cmyk::LinkResult result;
    {
        const auto profile = cmyk::combineProfile(settings_);
        if (!profile) {
            host.tell(texts::kLinkNotMade, DeviceLinkHost::Icon::exclamation);
            return false;
        }
        const std::string output(path(LinkPath::output));
        platform::setLastError(0);
        const bool saved = cmyk::saveProfile(*profile, output.c_str());
        const uint32_t error = platform::lastError();
        if (!saved || !holds(output, *profile))
            return fail(host, {LinkPath::output, output, fileProblem(error)});
        result = cmyk::resultOf(*profile);
    }
    host.showResult(result);
    host.tell(texts::kLinkMade, DeviceLinkHost::Icon::information);
    return true;
}

}  // namespace ko::front
