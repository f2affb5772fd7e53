// Every fast row gives the bits of its plain kernel.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "grid/bytes.h"
#include "grid/shorts.h"
#include "grid/words.h"

namespace {
using namespace ko::grid;

// Random pixels, the last half of them within a few levels of a cell's ends.
std::vector<uint8_t> pixels(size_t count, size_t channels) {
    std::mt19937 random(7);
    std::vector<uint8_t> levels(count * channels);
    for (uint8_t& level : levels) level = static_cast<uint8_t>(random());
    for (size_t at = levels.size() / 2; at < levels.size(); ++at)
        levels[at] = static_cast<uint8_t>((levels[at] & 0xf0) + random() % 5 - 2);
    return levels;
}

template <class Node>
std::vector<Node> randomNodes(size_t count, uint32_t mask = ~uint32_t{0}) {
    std::mt19937 random(8);
    std::vector<Node> nodes(count);
    for (Node& node : nodes) node = static_cast<Node>(random() & mask);
    return nodes;
}

// plain works on a pixel's values in place; fast is what the row made of them.
template <size_t kChannels, size_t kOutputs, class Value, class Plain>
void expectSame(const std::vector<uint8_t>& input, const std::vector<Value>& fast, Plain plain) {
    for (size_t pixel = 0; pixel * kChannels < input.size(); ++pixel) {
        int32_t values[4] = {};
        std::copy_n(input.begin() + static_cast<ptrdiff_t>(pixel * kChannels), kChannels, values);
        plain(values);
        for (size_t k = 0; k < kOutputs; ++k)
            ASSERT_EQ(fast[pixel * kOutputs + k], values[k]) << "pixel " << pixel;
    }
}

constexpr int32_t kPixels = 1000000;

template <int32_t kPoints>
void checkWordsOfFour() {
    const auto nodes = randomNodes<uint32_t>(kPoints * kPoints * kPoints * kPoints);
    const auto input = pixels(kPixels, 4);
    std::vector<uint16_t> fast(kPixels * 4);
    wordsOfFourRow<kPoints>(nodes.data(), input.data(), kPixels, fast.data());
    expectSame<4, 4>(input, fast,
                     [&](int32_t* values) { wordsOfFour<kPoints>(nodes.data(), values); });
}
TEST(GridRows, OfWordsAndFourAxesAreExactOnSeventeenPoints) { checkWordsOfFour<17>(); }
TEST(GridRows, OfWordsAndFourAxesAreExactOnThirtyThreePoints) { checkWordsOfFour<33>(); }

TEST(GridRows, OfWordsAndThreeAxesAreExact) {
    const auto nodes = randomNodes<uint32_t>(17 * 17 * 17);
    const auto input = pixels(kPixels, 3);
    std::vector<uint16_t> fast(kPixels * 3 + 1, 0xaaaa);
    wordsOfThreeRow(nodes.data(), input.data(), kPixels, fast.data());
    EXPECT_EQ(fast.back(), 0xaaaa);
    expectSame<3, 3>(input, fast, [&](int32_t* values) { wordsOfThree(nodes.data(), values); });
}

TEST(GridRows, OfBytesAreExactAndDimmedByAFourthByte) {
    const auto bytes = randomNodes<uint8_t>(729 * 4);
    const auto* const nodes = reinterpret_cast<const uint8_t(*)[4]>(bytes.data());
    const auto three = pixels(kPixels, 3), four = pixels(kPixels, 4);
    std::vector<uint8_t> fast(kPixels * 4);
    bytesOfThreeRow(nodes, three.data(), kPixels, fast.data());
    expectSame<3, 4>(three, fast, [&](int32_t* values) { bytesOfThree(nodes, values); });
    dimmedBytesOfThreeRow(nodes, four.data(), kPixels, fast.data());
    expectSame<4, 3>(four, fast, [&](int32_t* values) {
        const int32_t left = 255 - values[3];
        bytesOfThree(nodes, values);
        for (size_t k = 0; k < 3; ++k) values[k] = values[k] * left / 255;
    });
}

// 4095 is about what a builder makes, 65535 what a host may.
TEST(GridRows, OfShortsAreExactOnSeventeenPointsAndOnOthers) {
    for (const uint32_t mask : {0xfffu, 0xffffu})
        for (const int32_t points : {9, 17, 18}) {
            const int32_t count = points == 17 ? kPixels : 20000;
            const auto side = static_cast<size_t>(points);
            const auto nodes = randomNodes<uint16_t>(side * side * side * side * 4, mask);
            std::vector<uint16_t> fast(static_cast<size_t>(count) * 4);

            const auto three = pixels(static_cast<size_t>(count), 3);
            shortsOfThreeRow(nodes.data(), points, three.data(), count, fast.data());
            expectSame<3, 4>(three, fast, [&](int32_t* values) {
                shortsOfThree(nodes.data(), points, values);
            });
            const auto four = pixels(static_cast<size_t>(count), 4);
            shortsOfFourRow(nodes.data(), points, four.data(), count, fast.data());
            expectSame<4, 4>(four, fast, [&](int32_t* values) {
                shortsOfFour(nodes.data(), points, values);
            });
        }
}

// Whole quotients are where a sum that is off by a rounding would fall to the number below.
TEST(GridRows, AreExactWhereEveryBlendIsAWholeNumber) {
    constexpr int32_t kFew = 20000;
    const auto three = pixels(kFew, 3), four = pixels(kFew, 4);
    for (const uint8_t level : std::initializer_list<uint8_t>{1, 3, 15, 16, 17, 127, 254, 255}) {
        const std::vector<uint8_t> filled(33 * 33 * 33 * 33 * 4, level);
        const auto* const words = reinterpret_cast<const uint32_t*>(filled.data());
        std::vector<uint16_t> fast(kFew * 4);
        std::vector<uint8_t> bytes(kFew * 4);
        const auto expectAll = [&](const auto& results, size_t count, int32_t value) {
            for (size_t at = 0; at < count; ++at) ASSERT_EQ(results[at], value) << int{level};
        };
        wordsOfFourRow<17>(words, four.data(), kFew, fast.data());
        expectAll(fast, kFew * 4, 16 * level);
        wordsOfFourRow<33>(words, four.data(), kFew, fast.data());
        expectAll(fast, kFew * 4, 16 * level);
        wordsOfThreeRow(words, three.data(), kFew, fast.data());
        expectAll(fast, kFew * 3, 16 * level);
        const auto* const nodes = reinterpret_cast<const uint8_t(*)[4]>(filled.data());
        bytesOfThreeRow(nodes, three.data(), kFew, bytes.data());
        expectAll(bytes, kFew * 4, level);
        const std::vector<uint16_t> shorts(17 * 17 * 17 * 17 * 4, level);
        shortsOfThreeRow(shorts.data(), 17, three.data(), kFew, fast.data());
        expectAll(fast, kFew * 4, level);
        shortsOfFourRow(shorts.data(), 17, four.data(), kFew, fast.data());
        expectAll(fast, kFew * 4, level);
    }
}

TEST(GridKernels, TakeLevelsOutsideTheScaleAsItsEnds) {
    const auto nodes = randomNodes<uint32_t>(17 * 17 * 17 * 17);
    const auto* const shorts = reinterpret_cast<const uint16_t*>(nodes.data());
    const auto* const bytes = reinterpret_cast<const uint8_t(*)[4]>(nodes.data());
    const auto check = [](auto kernel) {
        int32_t outside[4] = {INT32_MIN, 256, -1, INT32_MAX}, ends[4] = {0, 255, 0, 255};
        kernel(outside);
        kernel(ends);
        for (size_t k = 0; k < 3; ++k) EXPECT_EQ(outside[k], ends[k]);
    };
    check([&](int32_t* values) { wordsOfFour<17>(nodes.data(), values); });
    check([&](int32_t* values) { wordsOfThree(nodes.data(), values); });
    check([&](int32_t* values) { bytesOfThree(bytes, values); });
    check([&](int32_t* values) { shortsOfThree(shorts, 9, values); });
    check([&](int32_t* values) { shortsOfFour(shorts, 9, values); });
}

}  // namespace
