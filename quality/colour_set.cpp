#include "quality/colour_set.h"

#include <random>
#include <span>

#include "frame/bytes.h"

namespace ko::quality {
namespace {

constexpr double kSteps9[] = {0, .1, .2, .3, .4, .55, .7, .85, 1};
constexpr double kSteps6[] = {0, .1, .2, .4, .7, 1};
constexpr double kSteps5[] = {0, .2, .4, .7, 1};
constexpr double kSteps3[] = {0, .4, 1};

void addMixes(std::vector<Colour>& colours, std::span<const double> steps, double black) {
    for (const double c : steps)
        for (const double m : steps)
            for (const double y : steps) colours.push_back({c, m, y, black});
}

// Colours at 1 / count, 2 / count and so on of a direction.
void addRamp(std::vector<Colour>& colours, const Colour& direction, int count, int last) {
    for (int at = 1; at <= last; ++at) {
        Colour colour = direction;
        for (double& value : colour) value *= static_cast<double>(at) / count;
        colours.push_back(colour);
    }
}

std::vector<Colour> pressChart() {
    std::vector<Colour> colours;
    addMixes(colours, kSteps9, 0);
    addMixes(colours, kSteps6, .2);
    addMixes(colours, kSteps6, .4);
    addMixes(colours, kSteps5, .6);
    addMixes(colours, kSteps5, .8);
    addMixes(colours, kSteps3, 1);
    for (const Colour& direction : {Colour{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1},
                                    {1, 1, 0, 0}, {1, 0, 1, 0}, {0, 1, 1, 0}, {1, .85, .85, 0}})
        addRamp(colours, direction, 20, 20);
    addRamp(colours, {.6, .5, .5, .5}, 20, 19);
    return colours;
}

std::vector<Colour> lightChart() {
    std::vector<Colour> colours;
    for (int r = 0; r <= 10; ++r)
        for (int g = 0; g <= 10; ++g)
            for (int b = 0; b <= 10; ++b) colours.push_back({r / 10.0, g / 10.0, b / 10.0, 0});
    for (const Colour& direction : {Colour{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 1, 1, 0},
                                    {1, 0, 1, 0}, {1, 1, 0, 0}})
        addRamp(colours, direction, 40, 40);
    addRamp(colours, {1, 1, 1, 0}, 46, 46);
    return colours;
}

int channelsOf(uint32_t space) noexcept {
    return space == fourcc("GRAY") ? 1 : space == fourcc("CMYK") ? 4 : 3;
}

}  // namespace

std::vector<Colour> chart(uint32_t space) {
    if (space == fourcc("CMYK")) return pressChart();
    if (channelsOf(space) == 3) return lightChart();
    std::vector<Colour> colours;
    for (size_t at = 0; at < kChartPatches; ++at)
        colours.push_back({static_cast<double>(at) / (kChartPatches - 1), 0, 0, 0});
    return colours;
}

std::vector<Colour> randomColours(uint32_t space) {
    // The engine's numbers are the standard's; what turns them into parts is ours.
    std::mt19937 random(20261122);
    const auto part = [&] { return static_cast<double>(random()) / 4294967296.0; };
    const auto channels = static_cast<size_t>(channelsOf(space));
    std::vector<Colour> colours(kRandomColours);
    for (size_t at = 0; at < colours.size(); ++at) {
        Colour& colour = colours[at];
        for (size_t ch = 0; ch < channels; ++ch) colour[ch] = part();
        if (space != fourcc("CMYK")) continue;
        if (at % 4 == 0) colour[3] = 0;
        if (at % 8 == 1)
            for (size_t ch = 0; ch < 3; ++ch) colour[ch] *= 0.15;
        const double inks = colour[0] + colour[1] + colour[2];
        if (inks + colour[3] > kMostInk)
            for (size_t ch = 0; ch < 3; ++ch) colour[ch] *= (kMostInk - colour[3]) / inks;
    }
    return colours;
}

uint8_t kindsOf(uint32_t space, const Colour& in, const precise::Triple& lab) noexcept {
    unsigned kinds = 0;
    const int channels = channelsOf(space);
    int used = 0;
    for (int ch = 0; ch < channels; ++ch) used += in[static_cast<size_t>(ch)] > 0;
    const bool black = channels == 4 && in[3] > 0;
    if (channels > 1 && used == 1) kinds |= kPrimary;
    if (channels > 1 && used == 2 && !black) kinds |= kSecondary;
    const double square = lab[1] * lab[1] + lab[2] * lab[2];
    if (square < 5 * 5) kinds |= kGrey;
    constexpr double kTangent30 = 0.5773502691896258, kTangent70 = 2.747477419454622;
    if (lab[0] >= 35 && lab[0] <= 85 && square >= 10 * 10 && square <= 45 * 45 && lab[1] > 0 &&
        lab[2] >= kTangent30 * lab[1] && lab[2] <= kTangent70 * lab[1])
        kinds |= kSkin;
    if (lab[0] >= 85) kinds |= kHighlight;
    if (lab[0] < 30) kinds |= kShadow;
    return static_cast<uint8_t>(kinds);
}

}  // namespace ko::quality
