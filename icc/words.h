// A profile in words, for messages and lists.
#pragma once

#include <cstdint>
#include <string>

#include "icc/icc.h"

namespace ko::icc {

// The four characters, without blanks at the end; others than ASCII as '?'.
std::string signatureText(uint32_t signature);

// The first line of the description, without what would not show on one; empty: it has none.
std::string descriptionLine(IccProfile& profile);

}  // namespace ko::icc
