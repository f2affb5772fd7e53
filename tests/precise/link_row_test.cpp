// Rows in whole numbers against the evaluation of one colour in double.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "precise/link.h"
#include "precise/link_file.h"
#include "precise/link_row.h"

namespace ko::precise {
namespace {

Link randomLink(int inputs, int outputs, int points, std::mt19937& random) {
    Link link;
    link.inputs = inputs;
    link.outputs = outputs;
    link.gridPoints = points;
    size_t size = static_cast<size_t>(outputs);
    for (int axis = 0; axis < inputs; ++axis) size *= static_cast<size_t>(points);
    link.table.resize(size);
    for (uint8_t& level : link.table) level = static_cast<uint8_t>(random());
    return link;
}

void compare(const Link& link, const std::vector<uint8_t>& in) {
    const auto inputs = static_cast<size_t>(link.inputs), outputs = static_cast<size_t>(link.outputs);
    const size_t count = in.size() / inputs;
    std::vector<uint8_t> out(count * outputs);
    convertRow8({link.table.data(), link.inputs, link.outputs, link.gridPoints}, in.data(), out.data(), count);
    for (size_t at = 0; at < count; ++at) {
        Colour colour{};
        for (size_t axis = 0; axis < inputs; ++axis) colour[axis] = in[at * inputs + axis] / 255.0;
        colour = link.at(colour);
        for (size_t ch = 0; ch < outputs; ++ch)
            ASSERT_EQ(out[at * outputs + ch], static_cast<int>(colour[ch] * 255 + 0.5))
                << "colour " << at << ", channel " << ch << ", " << link.gridPoints << " points";
    }
}

TEST(PreciseLinkRow, GivesTheNearestLevelOfEveryColour) {
    std::mt19937 random(11);
    for (const int inputs : {1, 2, 3, 4})
        for (const int outputs : {3, 4})
            for (const int points : {2, 9, 17, 33}) {
                const Link link = randomLink(inputs, outputs, points, random);
                std::vector<uint8_t> in(5000 * static_cast<size_t>(inputs));
                for (uint8_t& level : in) level = static_cast<uint8_t>(random());
                compare(link, in);
            }
}

TEST(PreciseLinkRow, GivesTheNearestLevelOnEdgesDiagonalsAndTheTop) {
    std::mt19937 random(12);
    const Link link = randomLink(4, 4, 33, random);
    std::vector<uint8_t> in;
    for (int level = 0; level < 256; ++level)
        for (int inks = 0; inks < 16; ++inks)
            for (const int rest : {0, 255})
                for (int ink = 0; ink < 4; ++ink)
                    in.push_back(static_cast<uint8_t>(inks >> ink & 1 ? level : rest));
    compare(link, in);
}

// A file of the link, 4 inputs and outputs.
std::vector<uint8_t> fileOf(Link& link) {
    link.sourceSpace = link.destinationSpace = fourcc("CMYK");
    link.origins.resize(2);
    Problem problem;
    const auto bytes = linkFile(link, {}, problem);
    EXPECT_EQ(problem.text, "");
    return bytes;
}

TEST(PreciseLinkRow, FindsThePlainGridOfASavedLink) {
    std::mt19937 random(13);
    Link link = randomLink(4, 4, 9, random);
    Problem problem;
    const auto profile = Profile::parse(fileOf(link), problem);
    ASSERT_TRUE(profile);
    const auto grid = plainGrid(*profile);
    ASSERT_TRUE(grid);
    EXPECT_EQ(grid->points, 9);
    EXPECT_TRUE(std::equal(link.table.begin(), link.table.end(), grid->nodes));
}

TEST(PreciseLinkRow, TakesNoGridWhoseCurvesAreBentOrWhoseElementIsNotWholeOrOfAnotherKind) {
    std::mt19937 random(14);
    Link link = randomLink(4, 4, 9, random);
    const auto bytes = fileOf(link);
    Problem problem;
    const auto whole = Profile::parse(bytes, problem);
    ASSERT_TRUE(whole);
    const auto element = static_cast<size_t>(whole->tag(fourcc("A2B0")).data() - whole->bytes().data());
    const size_t tables = element + 48 + 4 * 256 + link.table.size();
    for (const size_t at : {element, element + 8, element + 9, element + 10, element + 48 + 700, tables, tables + 1023}) {
        auto bent = bytes;
        ++bent[at];
        const auto profile = Profile::parse(bent, problem);
        ASSERT_TRUE(profile);
        EXPECT_FALSE(plainGrid(*profile)) << "byte " << at - element;
    }
}

}  // namespace
}  // namespace ko::precise
