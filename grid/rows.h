// Rows of pixels: which of the kernels this processor runs. All give the same bits.
//
// The kernels of each kind stand in a source of their own, which alone is compiled for its
// processor. One is chosen at the first call: the best, or the one that KOLINK_KERNEL names
// (plain, sse2, sse4.1, avx2), as long as the processor and the system have it.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "frame/arithmetic.h"
#include "grid/row_table.h"

namespace ko::grid {

// Those that can run here, the plain ones first, the best last.
std::span<const Rows* const> allRows() noexcept;

// Of allRows(): the best, or the one of that name.
const Rows& rowsFor(std::string_view name) noexcept;

extern std::atomic<const Rows*> chosenRows;  // null before the first call
const Rows& chooseRows() noexcept;
inline const Rows& rows() noexcept {
    const Rows* const chosen = chosenRows.load(std::memory_order_relaxed);
    return chosen ? *chosen : chooseRows();
}

// One colour in place: levels are clamped.
template <size_t kChannels, size_t kOutputs, class Node>
void throughOne(One<Node> one, const Node* nodes, int32_t* values) noexcept {
    uint32_t pixel = 0;
    for (size_t k = 0; k < kChannels; ++k)
        pixel |= static_cast<uint32_t>(clampTo(values[k], 0, 255)) << 8 * k;
    const uint64_t words = one(nodes, pixel);
    for (size_t k = 0; k < kOutputs; ++k)
        values[k] = static_cast<int32_t>(words >> 16 * k & 0xffff);
}

}  // namespace ko::grid
