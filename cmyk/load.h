// The readers behind loadProfile, apart from each other for tests and fuzzing.
#pragma once

#include "cmyk/cmyk.h"
#include "frame/file.h"
#include "kolink/icc_profile.h"

namespace ko::cmyk {

// A raw table file: a header with two texts, then the grid.
struct TableForm {
    size_t headerSize;
    size_t commentOffset;  // the name is at 0
};
constexpr TableForm kLutForm = {972, 472};
constexpr TableForm kAmtForm = {256, 64};

// From the file's start. What the file lacks is zero.
void readTable(CmykProfile& profile, File& file, const TableForm& form) noexcept;

int32_t loadIccProfile(CmykProfile& profile, const char* path);

// Curves and grid from a decoded A2B0. A curve whose table the LUT does not have stays.
void takeCurves(CmykProfile& profile, const IccLut& lut) noexcept;
void takeGrid(CmykProfile& profile, IccLut& lut);

}  // namespace ko::cmyk
