// The readers behind loadProfile, apart from each other for tests and fuzzing.
#pragma once

#include <span>

#include "cmyk/cmyk.h"
#include "kolink/icc_profile.h"

namespace ko::cmyk {

// A raw table file: a header with two texts, then the grid.
struct TableForm {
    size_t headerSize;
    size_t commentOffset;  // the name is at 0
};
constexpr TableForm kLutForm = {972, 472};
constexpr TableForm kAmtForm = {256, 64};

// What the file's grid lacks stays as it was; texts that it lacks are empty.
void readTable(CmykProfile& profile, std::span<const uint8_t> file,
               const TableForm& form) noexcept;

bool loadIccProfile(CmykProfile& profile, const Path& path);

// Name, control points, comment, curves and grid from the tags "desc" and "A2B0" of a profile, as
// far as these are loaded. Throws as takeGrid does.
void takeTags(CmykProfile& profile, const IccProfile& source);

// Curves and grid from a decoded A2B0. A curve whose table the LUT does not have stays. Throws
// std::bad_alloc, nothing changed, when memory for the evaluation is short.
void takeCurves(CmykProfile& profile, const IccLut& lut) noexcept;
void takeGrid(CmykProfile& profile, IccLut& lut);

}  // namespace ko::cmyk
