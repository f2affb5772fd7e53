#include "front/printed_lab.h"

#include "frame/bytes.h"
#include "front/current_links.h"

namespace ko::front {

std::optional<PrintedLab> PrintedLab::ofCurrentLinks() {
    const std::string& path = currentCmykProfile();
    if (path.empty()) return std::nullopt;
    return of(path.c_str());
}

std::optional<PrintedLab> PrintedLab::of(const Path& path) {
    PrintedLab lab;
    lab.profile_ = icc::loadHeader(path);
    if (!lab.profile_ || lab.profile_->header.colourSpace != fourcc("CMYK")) return std::nullopt;
    lab.isXyz_ = lab.profile_->header.connectionSpace == fourcc("XYZ ");
    if (!lab.isXyz_ && lab.profile_->header.connectionSpace != fourcc("Lab ")) return std::nullopt;
    // Colorimetric where the profile has that.
    for (const uint32_t tag : {fourcc("A2B1"), fourcc("A2B0")}) {
        auto* const lut = static_cast<IccLut*>(icc::loadTag(*lab.profile_, tag));
        if (!lut || lut->inputChannels != 4 || lut->outputChannels != 3) continue;
        lab.lut_ = icc::ReadyLut(*lut);
        if (lab.lut_) return lab;
    }
    return std::nullopt;
}

std::array<double, 3> PrintedLab::at(const std::array<int32_t, 4>& cmyk) const noexcept {
    int32_t values[4];
    for (size_t ink = 0; ink < 4; ++ink) values[ink] = cmyk[ink] * 257;
    icc::lutColor16(*lut_, values);
    const bool isByte = (*lut_).precision == 1;
    double colour[3];
    for (size_t i = 0; i < 3; ++i) colour[i] = isByte ? values[i] / 257.0 : values[i];
    const int32_t bits = isByte ? 8 : 16;
    if (isXyz_) {
        constexpr double kD50[3] = {0.9642, 1, 0.8249};
        icc::xyzDecode(colour, bits);
        icc::xyzToLab(colour, kD50);
    } else {
        icc::labDecode(colour, bits);
    }
    return {colour[0], colour[1], colour[2]};
}

}  // namespace ko::front
