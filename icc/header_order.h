// Private to the folder: the byte order of a profile header.
#pragma once

#include "icc/icc.h"

namespace ko::icc {

// Reverses the numeric fields of a header, so that a big-endian file's come into host order and
// the other way round.
void reverseHeader(IccHeader& header) noexcept;

}  // namespace ko::icc
