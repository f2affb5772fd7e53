// The colour front end: what a host needs for display and editing.
#pragma once

#include <cstdint>

#include "kolink/colour.h"
#include "kolink/link_settings.h"

namespace ko::front {

// Empty paths, zeros, limit 200.
void initSettings(CmsLinkSettings& settings) noexcept;

// The two current links. Unguarded: set up and ended on one thread, while no conversion runs.
[[nodiscard]] bool setupProfile(const char* rgbPath, const char* cmykPath, int32_t intent);
void endProfile() noexcept;

// One colour; levels are clamped to 0..255. Each direction uses its link, or its built-in table
// when there is none.
struct Cmyk {
    uint8_t c, m, y, k;
};
struct Rgb {
    uint8_t r, g, b;
};
Cmyk rgbToCmyk(int32_t r, int32_t g, int32_t b) noexcept;
Rgb cmykToRgb(int32_t c, int32_t m, int32_t y, int32_t k) noexcept;

// The amount of grey ink: white 0, black 255.
int32_t rgbToGray(int32_t r, int32_t g, int32_t b) noexcept;

// Rows of bytes; every result is the one of the single colour.
void rgbToCmykRow(const uint8_t* rgb, int32_t pixels, uint8_t* cmyk) noexcept;
void cmykToRgbRow(const uint8_t* cmyk, int32_t pixels, uint8_t* rgb) noexcept;

// The profiles that a pattern in the first slot of the list stands for, into slots of 260 bytes.
int32_t loadIccFileList(char* list, int32_t maxCount, const char* colourSpace);

}  // namespace ko::front
