// How far two colours are apart: CIE 1976 and CIEDE2000.
#pragma once

#include "precise/lab.h"

namespace ko::quality {

using precise::Triple;

double difference76(const Triple& a, const Triple& b) noexcept;

// CIEDE2000 with all weights 1 (CIE 142; Sharma, Wu, Dalal 2005), in double from the four
// operations and square roots alone, so that every target finds the same bits. Within 1e-9 of the
// formula.
double difference2000(const Triple& a, const Triple& b) noexcept;

}  // namespace ko::quality
