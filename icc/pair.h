// Two profiles that colours go through one after the other, and the bridge between their connection
// spaces. Combinations and links are built on it.
#pragma once

#include <array>
#include <optional>
#include <utility>

#include "icc/icc.h"

namespace ko::icc {

// A LUT that is set up while this lives. It closes before its profile goes.
class ReadyLut {
public:
    ReadyLut() = default;  // none
    // None when the LUT's shape cannot be evaluated. Throws std::bad_alloc.
    explicit ReadyLut(IccLut& lut);
    ReadyLut(ReadyLut&& other) noexcept : lut_(std::exchange(other.lut_, nullptr)) {}
    ReadyLut& operator=(ReadyLut&& other) noexcept {
        std::swap(lut_, other.lut_);
        return *this;
    }
    ~ReadyLut() {
        if (lut_) lutClose(lut_);
    }
    explicit operator bool() const noexcept { return lut_ != nullptr; }
    const IccLut& operator*() const noexcept { return *lut_; }

private:
    IccLut* lut_ = nullptr;
};

// Which way a colour crosses from the source's connection space into the destination's.
enum class Bridge { none, xyzToLab, labToXyz };

// The profiles of a pair, open.
struct OpenPair {
    ProfileFile source, destination;
    Bridge bridge;

    // The tables of an intent of 0..2; null when a profile lacks its own. Throws std::bad_alloc.
    IccLut* sourceLut(int32_t intent);
    IccLut* destinationLut(int32_t intent);
};

// Empty unless both files open, the source is of that colour space over Lab or XYZ, the
// destination is CMYK, and the intent is one that has tables. The destination's connection space
// goes untested: what is not the source's own is taken to be the other of the two.
[[nodiscard]] std::optional<OpenPair> openPair(const Path& source, const Path& destination,
                                               uint32_t sourceSpace, int32_t intent);

// The data of a tag; null when it is absent. Throws std::bad_alloc.
void* loadData(ProfileFile& file, uint32_t signature);
template <class T>
T* loadData(ProfileFile& file, uint32_t signature) {
    return static_cast<T*>(loadData(file, signature));
}

// A white point with Y 100, and the two that stand for D50: with the digits that are usual, and
// with those of a profile that says so itself.
using White = std::array<double, 3>;
constexpr White kUsualD50 = {0.9642 * 100, 1.0 * 100, 0.8249 * 100};
constexpr White kProfileD50 = {63190 / 65536.0 * 100, 100, 54061 / 65536.0 * 100};

// The medium's white; the fallback when the profile has none. Throws std::bad_alloc.
White mediaWhite(ProfileFile& file, const White& fallback);

// What a and b beyond the 16-bit scale become on their way to it.
enum class Overflow { saturates, wraps };

// The bridge in numbers of the LUTs' own scales: values of a LUT of one precision in, of another's
// out, within its scale. A change of connection space treats the first three alone.
struct Crossing {
    Bridge bridge = Bridge::none;
    int32_t from = 2, to = 2;  // precisions
    Overflow overflow = Overflow::saturates;
    White white = kProfileD50;

    void cross(std::span<int32_t, 4> values) const noexcept;
};

}  // namespace ko::icc
