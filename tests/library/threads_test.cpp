// Several threads convert rows on one record at once. Every row must come out as it does alone; a
// build with the thread sanitizer also sees that nothing shared is written.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "tests/support/owned.h"

namespace {
using namespace ko::test;

constexpr int kThreads = 4;
constexpr int32_t kPixels = 5000;

std::vector<uint8_t> levels(uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<uint8_t> bytes(kPixels * 4);
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
    return bytes;
}

// convert reads up to four bytes a pixel and writes up to four values.
template <class Value>
void expectSameFromSeveralThreads(const std::function<void(const uint8_t*, int32_t, Value*)>& convert) {
    std::vector<std::vector<uint8_t>> inputs;
    std::vector<std::vector<Value>> alone, together;
    for (int at = 0; at < kThreads; ++at) {
        inputs.push_back(levels(static_cast<uint32_t>(at)));
        alone.emplace_back(kPixels * 4);
        together.emplace_back(kPixels * 4);
        convert(inputs.back().data(), kPixels, alone.back().data());
    }
    std::vector<std::thread> threads;
    for (size_t at = 0; at < kThreads; ++at)
        threads.emplace_back([&, at] {
            for (int times = 0; times < 5; ++times) convert(inputs[at].data(), kPixels, together[at].data());
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(together, alone);
    EXPECT_NE(alone[0], alone[1]);
}

OwnedLink randomLink(int32_t channels) {
    OwnedLink link(jKoLinkCreateProfile(channels, 17));
    std::mt19937 random(5);
    const size_t values = (channels == 3 ? 17u * 17 * 17 : 17u * 17 * 17 * 17) * 4;
    for (size_t at = 0; at < values; ++at) link->grid[at] = static_cast<uint16_t>(random() % 4096);
    return link;
}

TEST(RowsFromSeveralThreads, OfARgbLink) {
    const OwnedLink link = randomLink(3);
    expectSameFromSeveralThreads<uint16_t>([&](auto in, auto count, auto out) { jKoLinkCOLtoCMYK16Row(link.get(), in, count, out); });
}

TEST(RowsFromSeveralThreads, OfACmykLink) {
    const OwnedLink link = randomLink(4);
    expectSameFromSeveralThreads<uint16_t>([&](auto in, auto count, auto out) { jKoLinkCOLtoCMYK16Row(link.get(), in, count, out); });
}

TEST(RowsFromSeveralThreads, OfACmykProfile) {
    const OwnedCmykProfile profile(jKoCmykCreateProfile());
    expectSameFromSeveralThreads<uint16_t>([&](auto in, auto count, auto out) { jKoCmykCMYKtoCMYK16Row(profile.get(), in, count, out); });
}

TEST(RowsFromSeveralThreads, OfACmykTable) {
    const OwnedCmykLut table(jKoCmykCreateCmykLut());
    expectSameFromSeveralThreads<uint16_t>([&](auto in, auto count, auto out) { jKoCmykLutCMYKtoCMYK16Row(table.get(), in, count, out); });
}

TEST(RowsFromSeveralThreads, OfAnRgbTable) {
    const OwnedRgbLut table(jKoRgbCreateRgbLut());
    expectSameFromSeveralThreads<uint16_t>([&](auto in, auto count, auto out) { jKoRgbRGBtoRGB16Row(table.get(), in, count, out); });
}

TEST(RowsFromSeveralThreads, OfTheFrontEnd) {
    expectSameFromSeveralThreads<uint8_t>([](auto in, auto count, auto out) { jColorRGBtoCMYKRow(in, count, out); });
    expectSameFromSeveralThreads<uint8_t>([](auto in, auto count, auto out) { jColorCMYKtoRGBRow(in, count, out); });
}

}  // namespace
