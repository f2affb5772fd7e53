// The links that conversions go through at present; either may be null.
#pragma once

#include <string>

#include "link/link.h"

namespace ko::front {

const LinkProfile* rgbToCmykLink() noexcept;
const LinkProfile* cmykToRgbLink() noexcept;
const std::string& currentCmykProfile() noexcept;  // empty without links

}  // namespace ko::front
