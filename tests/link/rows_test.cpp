// Rows of pixels equal the one-colour lookup to the last bit.
#include <gtest/gtest.h>

#include <thread>
#include <tuple>

#include "tests/link/links.h"

namespace {
using ko::test::LinkHolder;
using ko::test::randomLevels;
using ko::test::randomLink;

std::vector<uint16_t> oneByOne(const LinkProfile& link, const std::vector<uint8_t>& input) {
    const size_t channels = link.inputChannels == 3 ? 3 : 4;
    std::vector<uint16_t> output;
    for (size_t at = 0; at + channels <= input.size(); at += channels) {
        int32_t values[4] = {};
        for (size_t k = 0; k < channels; ++k) values[k] = input[at + k];
        jKoLinkCOLtoCMYK16(&link, values);
        for (const int32_t value : values) output.push_back(static_cast<uint16_t>(value));
    }
    return output;
}

std::vector<uint16_t> asRow(const LinkProfile& link, const std::vector<uint8_t>& input) {
    const size_t channels = link.inputChannels == 3 ? 3 : 4;
    std::vector<uint16_t> output(input.size() / channels * 4, 0xaaaa);
    jKoLinkCOLtoCMYK16Row(&link, input.data(), static_cast<int32_t>(input.size() / channels),
                          output.data());
    return output;
}

class RowsOfEveryGrid : public testing::TestWithParam<std::tuple<int32_t, int32_t, uint32_t>> {};

TEST_P(RowsOfEveryGrid, EqualTheOneColourLookup) {
    const auto [channels, points, highest] = GetParam();
    const LinkHolder link = randomLink(channels, points, 1, highest);
    const auto input = randomLevels(60000, 2);
    EXPECT_EQ(asRow(*link, input), oneByOne(*link, input));
}

// 4095 is what a builder makes, 65535 what a host may.
INSTANTIATE_TEST_SUITE_P(Link, RowsOfEveryGrid,
                         testing::Combine(testing::Values(3, 4),
                                          testing::Values(2, 9, 16, 17, 18, 33),
                                          testing::Values(4095u, 65535u)));

TEST(LinkRows, EqualTheOneColourLookupForEveryGreyAndEveryRampOfACell) {
    const LinkHolder link = randomLink(3, 17, 3, 4095);
    std::vector<uint8_t> input;
    for (int r = 0; r < 256; ++r)
        for (int g = 0; g < 256; ++g)
            for (const int b : {0, 7, 128, g, 255})
                input.insert(input.end(), {static_cast<uint8_t>(r), static_cast<uint8_t>(g),
                                           static_cast<uint8_t>(b)});
    EXPECT_EQ(asRow(*link, input), oneByOne(*link, input));
}

// Whole quotients are where a sum that is not exact would fall to the number below.
TEST(LinkRows, AreExactWhereTheBlendIsAWholeNumber) {
    for (const uint16_t value : std::initializer_list<uint16_t>{1, 15, 16, 17, 4079, 4080}) {
        const LinkHolder link(jKoLinkCreateProfile(4, 17));
        for (size_t i = 0; i < ko::test::gridSize(*link); ++i) link->grid[i] = value;
        for (const uint16_t result : asRow(*link, randomLevels(40000, value)))
            ASSERT_EQ(result, value);
    }
}

TEST(LinkRows, ReadAnyOtherNumberOfChannelsAsFour) {
    const LinkHolder link = randomLink(4, 17, 4, 4095);
    const auto input = randomLevels(4000, 5);
    const auto four = asRow(*link, input);
    for (const int32_t channels : {0, 1, 2, 5, -3}) {
        link->inputChannels = channels;
        EXPECT_EQ(asRow(*link, input), four);
    }
    link->inputChannels = 4;
}

TEST(LinkRows, GiveZerosForARecordThatCannotBeLookedUp) {
    const LinkHolder link = randomLink(4, 17, 6, 4095);
    link->gridPoints = 0;
    EXPECT_EQ(asRow(*link, randomLevels(400, 7)), std::vector<uint16_t>(400, 0));
    link->gridPoints = 17;
}

TEST(LinkRows, WriteNothingForFewerThanOnePixel) {
    const LinkHolder link = randomLink(3, 17, 8, 4095);
    const uint8_t input[3] = {1, 2, 3};
    for (const int32_t pixels : {0, -1, INT32_MIN}) {
        uint16_t output[4] = {7, 7, 7, 7};
        jKoLinkCOLtoCMYK16Row(link.get(), input, pixels, output);
        for (const uint16_t value : output) EXPECT_EQ(value, 7);
    }
}

TEST(RowsFromSeveralThreads, OfOneLinkEqualTheOnesOfOneThread) {
    for (const int32_t channels : {3, 4}) {
        const LinkHolder link = randomLink(channels, 17, 9, 4095);
        const auto input = randomLevels(48000, 10);
        const auto expected = asRow(*link, input);
        std::vector<std::vector<uint16_t>> outputs(4);
        std::vector<std::thread> threads;
        for (auto& output : outputs)
            threads.emplace_back([&] {
                for (int round = 0; round < 5; ++round) output = asRow(*link, input);
            });
        for (std::thread& thread : threads) thread.join();
        for (const auto& output : outputs) EXPECT_EQ(output, expected);
    }
}

}  // namespace
