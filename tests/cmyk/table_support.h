// Owners of the small tables.
#pragma once

#include "tests/cmyk/support.h"

namespace ko::test {

struct TableRelease {
    void operator()(CmykLut* table) const { jKoCmykReleaseCmykLut(table); }
    void operator()(RgbLut* table) const { jKoRgbReleaseRgbLut(table); }
};
using OwnedCmykLut = std::unique_ptr<CmykLut, TableRelease>;
using OwnedRgbLut = std::unique_ptr<RgbLut, TableRelease>;
inline OwnedCmykLut newCmykLut() { return OwnedCmykLut(jKoCmykCreateCmykLut()); }
inline OwnedRgbLut newRgbLut() { return OwnedRgbLut(jKoRgbCreateRgbLut()); }

}  // namespace ko::test
