// What colours look like as the CMYK profile of the current links prints them.
#pragma once

#include <array>
#include <memory>
#include <optional>

#include "icc/pair.h"

namespace ko::front {

// Read once; empty while no links are current, or when the profile is not of CMYK or has no table
// to Lab or XYZ.
class PrintedLab {
public:
    static std::optional<PrintedLab> of(const Path& path);
    static std::optional<PrintedLab> ofCurrentLinks();
    // L*a*b* relative to the paper of the profile; levels 0..255.
    std::array<double, 3> at(const std::array<int32_t, 4>& cmyk) const noexcept;

private:
    icc::ProfilePtr profile_;
    icc::ReadyLut lut_;
    bool isXyz_ = false;
};

}  // namespace ko::front
