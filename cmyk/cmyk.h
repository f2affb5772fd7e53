// CMYK printer profiles and colour tables: what the engine offers to the exported functions, to
// the dialogs and to the tools.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "frame/block.h"
#include "kolink/cmyk_profile.h"
#include "kolink/tone_curve.h"

namespace ko::cmyk {

constexpr int32_t kGridPoints = KOLINK_CMYK_GRID_POINTS;
constexpr int32_t kNodes = KOLINK_CMYK_NODES;
constexpr int32_t kCurves = 8;       // 0..3 input C, M, Y, K; 4..7 output
constexpr int32_t kCurvePoints = 65;

// The level of a grid index: 8 apart, the last cell is 7 wide.
constexpr int32_t nodeValue(int32_t index) noexcept { return 8 * index - index / 32; }
static_assert(nodeValue(31) == 248 && nodeValue(32) == 255);

// The input level of a curve's point: 4 apart, the last step is 3.
constexpr int32_t curveLevel(int32_t point) noexcept { return 4 * point - point / 64; }
static_assert(curveLevel(63) == 252 && curveLevel(64) == 255);

constexpr uint32_t packCmyk(uint32_t c, uint32_t m, uint32_t y, uint32_t k) noexcept {
    return (c & 255) << 24 | (m & 255) << 16 | (y & 255) << 8 | (k & 255);
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
[[nodiscard]] Block<CmykProfile> createProfile() noexcept;

// Load and save return 1 or 0 like the exported functions of these names.
int32_t loadProfile(CmykProfile& profile, const char* path);
int32_t loadLutable(CmykProfile& profile, const char* path) noexcept;
int32_t loadLutableAmatch(CmykProfile& profile, const char* path) noexcept;
int32_t saveProfile(CmykProfile& profile, const char* path);

}  // namespace ko::cmyk
