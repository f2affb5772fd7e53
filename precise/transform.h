// The whole way from the colours of one profile to those of another, or to L*a*b*.
#pragma once

#include <memory>
#include <optional>

#include "precise/profile.h"

namespace ko::precise {

// Appends what leads from one connection space to another for an intent: nothing, a change of
// space, and a scale and offset of XYZ (media white for absolute, black points otherwise).
struct Bridge {
    Triple scale = {1, 1, 1}, offset = {0, 0, 0};
    bool isIdentity() const noexcept {
        return scale == Triple{1, 1, 1} && offset == Triple{0, 0, 0};
    }
    void addTo(Pipeline& pipeline, bool fromLab, bool toLab) const;
};

// The black point of a profile as it is taken for compensation: of what comes in, and of what can
// be reached. Both are neutral; nothing can be lighter than L* 50.
Triple sourceBlack(const Profile& profile, Intent intent);
Triple destinationBlack(const Profile& profile, Intent intent);

// Version 4 profiles have their black compensated always with the perceptual and saturation
// intents; absolute never has.
Bridge bridgeBetween(const Profile& source, const Profile& destination, Intent intent,
                     bool compensateBlack);

// Source to destination, device to device.
std::optional<Pipeline> makeTransform(const Profile& source, const Profile& destination,
                                      Intent intent, bool compensateBlack, Problem& problem);

// Device to L*a*b*, as the profile alone has it: relative to its own white, or (absolute) to D50.
std::optional<Pipeline> makeToLab(const Profile& profile, Intent intent, Problem& problem);
std::optional<Pipeline> makeFromLab(const Profile& profile, Intent intent, Problem& problem);

}  // namespace ko::precise
