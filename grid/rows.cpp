// The plain rows, and the choice among all.
#include "grid/rows.h"

#include <array>
#include <cstdlib>

#include "frame/processor.h"
#include "grid/bytes.h"
#include "grid/shorts.h"
#include "grid/words.h"

namespace ko::grid {
namespace {

template <size_t kChannels, size_t kOutputs, auto plain, class Node, class Value>
void plainRow(const Node* nodes, const uint8_t* input, int32_t pixels, Value* output) noexcept {
    for (; pixels > 0; --pixels, input += kChannels, output += kOutputs) {
        int32_t values[4] = {};
        for (size_t k = 0; k < kChannels; ++k) values[k] = input[k];
        plain(nodes, values);
        for (size_t k = 0; k < kOutputs; ++k) output[k] = static_cast<Value>(values[k]);
    }
}
template <size_t kChannels, size_t kOutputs, auto plain, class Node>
uint64_t plainOne(const Node* nodes, uint32_t pixel) noexcept {
    int32_t values[4] = {};
    for (size_t k = 0; k < kChannels; ++k) values[k] = static_cast<int32_t>(pixel >> 8 * k & 255);
    plain(nodes, values);
    uint64_t words = 0;
    for (size_t k = 0; k < kOutputs; ++k) words |= static_cast<uint64_t>(values[k]) << 16 * k;
    return words;
}
template <size_t kChannels, size_t kOutputs, auto plain, class Node, class Value>
constexpr Kernel<Node, Value> plainKernel() noexcept {
    return {plainRow<kChannels, kOutputs, plain, Node, Value>,
            plainOne<kChannels, kOutputs, plain, Node>};
}
constexpr auto kThreeShorts = [](const uint16_t* nodes, int32_t* values) noexcept {
    shortsOfThree(nodes, kRowPoints, values);
};
constexpr auto kFourShorts = [](const uint16_t* nodes, int32_t* values) noexcept {
    shortsOfFour(nodes, kRowPoints, values);
};
constexpr Rows kPlainRows = {"plain",
                             plainKernel<3, 4, kThreeShorts, uint16_t, uint16_t>(),
                             plainKernel<4, 4, kFourShorts, uint16_t, uint16_t>(),
                             plainKernel<4, 4, wordsOfFour<17>, uint32_t, uint16_t>(),
                             plainKernel<4, 4, wordsOfFour<33>, uint32_t, uint16_t>(),
                             plainKernel<3, 3, wordsOfThree, uint32_t, uint16_t>(),
                             plainKernel<3, 4, bytesOfThree, uint8_t[4], uint8_t>(),
                             plainKernel<4, 3, dimmedBytesOfThree, uint8_t[4], uint8_t>()};

struct Available {
    std::array<const Rows*, 4> rows = {&kPlainRows, &kSse2Rows};
    size_t count = 2;
    Available() noexcept {
        if (processorHasSse41()) rows[count++] = &kSse41Rows;
        if (processorHasAvx2()) rows[count++] = &kAvx2Rows;
    }
};

}  // namespace

std::span<const Rows* const> allRows() noexcept {
    static const Available available;
    return {available.rows.data(), available.count};
}

const Rows& rowsFor(std::string_view name) noexcept {
    for (const Rows* const rows : allRows())
        if (rows->name == name) return *rows;
    return *allRows().back();
}

std::atomic<const Rows*> chosenRows{nullptr};

const Rows& chooseRows() noexcept {
    const char* const name = std::getenv("KOLINK_KERNEL");
    const Rows& chosen = rowsFor(name ? name : "");
    chosenRows.store(&chosen, std::memory_order_relaxed);
    return chosen;
}

}  // namespace ko::grid
