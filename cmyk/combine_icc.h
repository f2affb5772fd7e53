// The colour conversion of a combination through two ICC profiles: source LUT, connection space,
// destination LUT. The plain version, one colour at a time.
#pragma once

#include "cmyk/convert.h"
#include "icc/icc.h"
#include "icc/lut.h"

namespace ko::cmyk {

enum class Connection { same, xyzToLab, labToXyz };

struct IccPair {
    const IccLut* source = nullptr;  // both set up, or both null: no conversion
    const IccLut* destination = nullptr;
    Connection connection = Connection::same;
    // Of the source, Y 100; D50, in the digits of a profile that says so, when it has none.
    double white[3] = {63190 / 65536.0 * 100, 100, 54061 / 65536.0 * 100};
};

// From the source LUT's results to the destination LUT's inputs, within its scale. The fourth
// value takes no part in a change of connection space.
void connect(const IccPair& pair, Cmyk& values) noexcept;

// 0..255 in and out.
void convertThroughIcc(const IccPair& pair, Cmyk& cmyk) noexcept;

}  // namespace ko::cmyk
