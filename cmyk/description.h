// The editing data in the description of a profile that this library wrote.
#pragma once

#include <string>
#include <string_view>

#include "kolink/cmyk_profile.h"

namespace ko::cmyk {

// Marker, name, control points of the eight curves and comment, one line each.
std::string buildDescription(const CmykProfile& profile);
// The same for a profile whose curves are identities with both ends as control points.
std::string buildDescription(std::string_view name, std::string_view comment);

// Takes name, control points and comment from a description that begins with a known marker;
// any other description changes nothing.
void applyDescription(CmykProfile& profile, std::string_view text) noexcept;

// The comment with a blank before each line that would otherwise be read back as editing data.
std::string asPlainText(std::string_view comment);

// Whether a description is one of these: it begins with a known marker.
bool holdsEditingData(std::string_view description) noexcept;

}  // namespace ko::cmyk
