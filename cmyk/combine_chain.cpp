// The steps of a node that do not depend on how colours are converted.
#include "cmyk/combine_chain.h"

#include <algorithm>

#include "frame/arithmetic.h"

namespace ko::cmyk {

NodeChain::NodeChain(const CmsLinkSettings& settings, const CmykProfile* base,
                     const int16_t* black) noexcept
    : base_(base),
      black_(black),
      tints_(settings.whiteMode == KOLINK_WHITE_PAPER),
      keepsWhite_(settings.whiteMode == KOLINK_WHITE_NO_INK),
      paper_{settings.paperC, settings.paperM, settings.paperY, settings.paperK},
      limit_(settings.limit),
      preservation_(settings.preservation),
      curves_(base ? workingCurves(*base) : WorkingCurves{}) {}

bool NodeChain::prepare(Cmyk& cmyk) const noexcept {
    const int32_t coverage = cmyk[0] + cmyk[1] + cmyk[2] + cmyk[3];
    if (addsTint(coverage)) {
        // The tint fades out linearly; in double, truncated toward zero.
        for (int32_t i = 0; i < 4; ++i) {
            const double tint = static_cast<double>(paper_[i]) * (limit_ - coverage) / limit_;
            cmyk[i] = clampTo(truncateToInt32(cmyk[i] + tint), 0, 255);
        }
    }
    const bool noColour = cmyk[0] == 0 && cmyk[1] == 0 && cmyk[2] == 0;
    if (keepsWhite_ && noColour && cmyk[3] == 0) return false;
    if (black_ && noColour) {
        cmyk[3] = black_[cmyk[3]];
        return false;
    }
    return true;
}

void NodeChain::throughBase(Cmyk& cmyk) const noexcept {
    if (!base_) return;  // (16 v + 8) / 16 is v
    for (int32_t i = 0; i < 4; ++i) cmyk[i] = curves_[i][cmyk[i]];
    cmykToCmyk16(*base_, cmyk);
    for (int32_t i = 0; i < 4; ++i) cmyk[i] = curves_[4 + i][fromScale16(cmyk[i])];
}

void NodeChain::preserve(const Cmyk& node, Cmyk& cmyk) const noexcept {
    if (preservation_ < 1 || node[3] != 0) return;  // pure K is not treated
    const auto inks = (node[0] != 0) + (node[1] != 0) + (node[2] != 0);
    if (inks != 1 && !(inks == 2 && preservation_ == 2)) return;
    for (int32_t i = 0; i < 4; ++i)
        if (node[i] == 0) cmyk[i] = 0;
}

}  // namespace ko::cmyk
