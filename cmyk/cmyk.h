// CMYK printer profiles: what the engine offers to the exported functions, to the dialogs and to
// the tools.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "frame/block.h"
#include "frame/colour_words.h"
#include "frame/path.h"
#include "grid/cell.h"
#include "kolink/cmyk_profile.h"
#include "kolink/link_settings.h"
#include "kolink/saved_link.h"
#include "kolink/tone_curve.h"

namespace ko::cmyk {

constexpr int32_t kGridPoints = KOLINK_CMYK_GRID_POINTS;
constexpr int32_t kCurves = 8;       // 0..3 input C, M, Y, K; 4..7 output
constexpr int32_t kCurvePoints = 65;

// The level of a grid index: 8 apart, the last cell is 7 wide.
constexpr int32_t nodeValue(int32_t index) noexcept {
    return grid::steppedLevel(index, kGridPoints);
}

// The input level of a curve's point: 4 apart, the last step is 3.
constexpr int32_t curveLevel(int32_t point) noexcept {
    return grid::steppedLevel(point, kCurvePoints);
}

using Cmyk = std::array<int32_t, 4>;  // four levels, or the four indices of a node

// The word of a node that changes nothing.
constexpr uint32_t identityWord(const Cmyk& node) noexcept {
    return packCmyk(nodeValue(node[0]), nodeValue(node[1]), nodeValue(node[2]),
                    nodeValue(node[3]));
}

// The points of a curve that its spline passes through, in order.
struct ControlPoints {
    std::array<TonePoint, kCurvePoints> points;
    int32_t count = 0;
};
ControlPoints controlPoints(const CmykProfile& profile, int32_t curve) noexcept;

// A curve's values become the identity, its control points the two ends.
void resetCurve(CmykProfile& profile, int32_t curve) noexcept;

void initProfile(CmykProfile& profile) noexcept;
void initGrid(CmykProfile& profile) noexcept;  // its nodes change nothing
[[nodiscard]] Block<CmykProfile> createProfile() noexcept;
// For who writes every node: the identity would be 5 MB that nobody reads.
[[nodiscard]] Block<CmykProfile> createProfileWithoutGrid() noexcept;

bool loadProfile(CmykProfile& profile, const Path& path);
bool loadLutable(CmykProfile& profile, const Path& path) noexcept;
bool loadLutableAmatch(CmykProfile& profile, const Path& path) noexcept;
bool saveProfile(CmykProfile& profile, const Path& path);

// The whole chain of a settings record baked into a new grid, as the exported functions of these
// names; null when something does not load.
enum class Black {
    asSettingsSay,
    kept,  // through the identity, whatever curve the settings name: pure K at its own level
};
[[nodiscard]] Block<CmykProfile> combineProfile(const CmsLinkSettings& settings,
                                                Black black = Black::asSettingsSay);
[[nodiscard]] Block<CmykProfile> combineIccProfile(const CmsLinkSettings& settings,
                                                   Black black = Black::asSettingsSay);

// Pixels of 4 bytes through the profile's grid alone, 4 words each; bit for bit like one by one.
void cmykToCmyk16Row(const CmykProfile& profile, const uint8_t* input, int32_t pixels,
                     uint16_t* output) noexcept;

// A saved link as a whole: the profile's curves as tables, and pixels through them and the grid.
void makeCurveTables(const CmykProfile& profile, CmykCurveTables& tables) noexcept;
void linkCmykToCmyk16Row(const CmykProfile& profile, const CmykCurveTables& tables,
                         const uint8_t* input, int32_t pixels, uint16_t* output) noexcept;

}  // namespace ko::cmyk
