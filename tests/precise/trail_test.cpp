#include "precise/trail.h"

#include <gtest/gtest.h>

namespace ko::test {
namespace {

using namespace precise;

// Sums of functions of one axis each, which a plane over two axes meets exactly.
Colour inksOf(const std::array<int, kMostChannels>& node) {
    const double c = node[0], m = node[1], y = node[2], k = node[3];
    return {c / 16, m / 16, y / 16, (c + m * m / 9 + k) / 32};
}

TEST(PreciseTrail, LeadsThroughTheNodesBeforeOne) {
    constexpr int kPoints = 9;
    Trail trail(kPoints);
    std::array<int, kMostChannels> node{};
    for (node[0] = 0; node[0] < kPoints; ++node[0])
        for (node[1] = 0; node[1] < kPoints; ++node[1])
            for (node[3] = 0; node[3] < kPoints; ++node[3])
                for (node[2] = 0; node[2] < kPoints; ++node[2]) {
                    trail.goTo(node);
                    Trail::Guess guess;
                    int axes = 0;
                    for (const int index : node) axes += index > 0;
                    ASSERT_EQ(trail.guess(guess), axes > 0);
                    const Colour inks = inksOf(node);
                    for (size_t i = 0; i < 4 && axes > 1; ++i)
                        ASSERT_NEAR(guess.inks[i], inks[i], 1e-6);
                    trail.follow(inks, true);
                }
}

TEST(PreciseTrail, KnowsAnInsideOnlyWhenAllItComesFromWere) {
    Trail trail(9);
    Trail::Guess guess;
    trail.goTo({0, 0, 0, 0});
    trail.follow({0.5, 0.5, 0.5, 0}, true);
    trail.goTo({0, 0, 1, 0});
    ASSERT_TRUE(trail.guess(guess));
    EXPECT_TRUE(guess.inside);
    trail.follow({0.75, 0.5, 0.5, 0}, false);
    trail.goTo({0, 0, 2, 0});
    ASSERT_TRUE(trail.guess(guess));
    EXPECT_FALSE(guess.inside);
    EXPECT_DOUBLE_EQ(guess.inks[0], 1);  // once more the same step, up to the bound
}

}  // namespace
}  // namespace ko::test
