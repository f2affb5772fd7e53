// The process-wide pair of links.
#include "front/current_links.h"

#include <cstring>
#include <utility>

#include "frame/platform.h"
#include "frame/text.h"
#include "front/front.h"

namespace ko::front {
namespace {

link::Link rgbToCmykCurrent, cmykToRgbCurrent;
std::string cmykProfileCurrent;

bool fill(CmsLinkSettings& settings, const char* source, const char* destination,
          int32_t intent) noexcept {
    initSettings(settings);
    settings.intent = intent;
    settings.whiteMode = KOLINK_WHITE_NO_INK;
    return copyPath(settings.sourcePath, source) && copyPath(settings.destinationPath, destination);
}

}  // namespace

const LinkProfile* rgbToCmykLink() noexcept { return rgbToCmykCurrent.get(); }
const LinkProfile* cmykToRgbLink() noexcept { return cmykToRgbCurrent.get(); }
const std::string& currentCmykProfile() noexcept { return cmykProfileCurrent; }

void endProfile() noexcept {
    rgbToCmykCurrent.reset();
    cmykToRgbCurrent.reset();
    cmykProfileCurrent.clear();
}

bool setupProfile(const char* rgbPath, const char* cmykPath, int32_t intent) {
    endProfile();
    CmsLinkSettings settings;
    link::Link cmykToRgb, rgbToCmyk;
    if (fill(settings, cmykPath, rgbPath, intent))
        cmykToRgb = link::combineIcmCmykProfile(settings);
    const uint32_t reason = platform::lastError();  // the second is tried all the same
    if (fill(settings, rgbPath, cmykPath, intent))
        rgbToCmyk = link::combineIcmRgbProfile(settings);
    if (!cmykToRgb) platform::setLastError(reason);
    if (!cmykToRgb || !rgbToCmyk) return false;  // as after an exception: neither is current
    std::string path(cmykPath);  // whatever fails, fails before anything is current
    cmykToRgbCurrent = std::move(cmykToRgb);
    rgbToCmykCurrent = std::move(rgbToCmyk);
    cmykProfileCurrent = std::move(path);
    return true;
}

}  // namespace ko::front
