// The links that conversions go through at present; either may be null.
#pragma once

#include "link/link.h"

namespace ko::front {

const LinkProfile* rgbToCmykLink() noexcept;
const LinkProfile* cmykToRgbLink() noexcept;

}  // namespace ko::front
