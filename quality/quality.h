// Everything that is measured of a link.
#pragma once

#include <optional>
#include <span>

#include "quality/colour_measure.h"
#include "quality/file_check.h"
#include "quality/gates.h"
#include "quality/ink_measure.h"
#include "quality/smooth_measure.h"
#include "quality/subject.h"

namespace ko::quality {

struct Findings {
    std::optional<ColourReport> colour;  // with profiles
    PurityReport purity;
    BlackReport black;
    InkReport ink;
    SmoothReport smoothness;
    std::vector<Fault> faults;  // of the file
    size_t errors() const noexcept;
};

// bytes: the link's file.
Findings measure(const Subject& subject, std::span<const uint8_t> bytes);

}  // namespace ko::quality
