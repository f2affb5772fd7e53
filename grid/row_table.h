// The table of a kind of rows. See shorts.h (17 points), words.h and bytes.h for what each does.
#pragma once

#include <cstdint>

namespace ko::grid {

template <class Node, class Value>
using Row = void (*)(const Node* nodes, const uint8_t* input, int32_t pixels,
                     Value* output) noexcept;

// One pixel, its first byte lowest; its results are words, the first lowest.
template <class Node>
using One = uint64_t (*)(const Node* nodes, uint32_t pixel) noexcept;

template <class Node, class Value>
struct Kernel {
    Row<Node, Value> row;
    One<Node> one;
};

struct Rows {
    const char* name;
    Kernel<uint16_t, uint16_t> shortsOfThree, shortsOfFour;
    Kernel<uint32_t, uint16_t> wordsOfFour17, wordsOfFour33, wordsOfThree;
    Kernel<uint8_t[4], uint8_t> bytesOfThree, dimmedBytesOfThree;
};

extern const Rows kSse2Rows, kSse41Rows, kAvx2Rows;  // each to be run where its processor is

}  // namespace ko::grid
