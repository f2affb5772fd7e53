// A press for tests: a Neugebauer model with dot gain as forward table, and its inversion, a
// little off as tables are, as inverse table.
#pragma once

#include <array>
#include <memory>

#include "precise/profile.h"
#include "precise/solve.h"
#include "tests/support/profiles.h"

namespace ko::test {

struct PressModel {
    double gain = 0.15;        // of the dots
    double blackLightness = 12;
    double magentaHue = 0;     // turns the solid a little
    int inverseWidth = 2;      // bytes an entry of the inverse table
};

inline precise::Triple pressColour(const PressModel& press, const precise::Colour& inks) {
    using precise::Triple;
    // Solids, by bits C, M, Y; black takes most of what they leave.
    const Triple solids[8] = {{95, 0, -2}, {55, -37, -50}, {48, 74, -3 + press.magentaHue},
                              {24, 22, -46}, {89, -5, 93}, {50, -68, 27}, {47, 68, 48}, {23, 0, 0}};
    const double dark = press.blackLightness / 100;
    std::array<double, 4> area;
    for (size_t i = 0; i < 4; ++i) area[i] = inks[i] + press.gain * 4 * inks[i] * (1 - inks[i]) * 0.9;
    Triple sum{};
    for (unsigned mix = 0; mix < 8; ++mix) {
        double weight = 1;
        for (unsigned i = 0; i < 3; ++i) weight *= mix >> i & 1 ? area[i] : 1 - area[i];
        const Triple xyz = precise::toXyz(solids[mix]);
        for (size_t i = 0; i < 3; ++i) sum[i] += weight * xyz[i];
    }
    const Triple white = precise::toXyz(solids[0]);
    for (size_t i = 0; i < 3; ++i) {  // relative to the paper
        const double rest = sum[i] / white[i] * precise::kD50[i];
        const double black = precise::kD50[i] * dark * 0.12 + rest * 0.03;
        sum[i] = rest + area[3] * (black - rest);
    }
    return precise::toLab(sum);
}

inline void append16Level(Bytes& bytes, double value) {  // 0..1
    const double level = value > 0 ? value < 1 ? value * 65535 : 65535 : 0;
    append16(bytes, static_cast<uint32_t>(level + 0.5));
}

inline Bytes lut16(int inputs, int outputs, int points, const std::vector<precise::Colour>& nodes) {
    Bytes bytes = element("mft2");
    for (const int value : {inputs, outputs, points, 0}) bytes.push_back(static_cast<uint8_t>(value));
    for (int at = 0; at < 9; ++at) append32(bytes, at % 4 == 0 ? 0x10000 : 0);
    append16(bytes, 2);
    append16(bytes, 2);
    for (int ch = 0; ch < inputs; ++ch) append32(bytes, 65535);
    for (const auto& node : nodes)
        for (int ch = 0; ch < outputs; ++ch) append16Level(bytes, node[static_cast<size_t>(ch)]);
    for (int ch = 0; ch < outputs; ++ch) append32(bytes, 65535);
    return bytes;
}

inline Bytes pressProfileBytes(const PressModel& press, std::string_view name = "Made press") {
    using precise::Colour;
    constexpr int kForward = 9, kInverse = 17;
    std::vector<Colour> nodes;
    for (int at = 0; at < kForward * kForward * kForward * kForward; ++at) {
        Colour inks{};
        for (int rest = at, ink = 3; ink >= 0; --ink, rest /= kForward)
            inks[static_cast<size_t>(ink)] = rest % kForward / double(kForward - 1);
        const auto lab = pressColour(press, inks);
        nodes.push_back({lab[0] * 65280 / 65535 / 100, (lab[1] + 128) * 256 / 65535,
                         (lab[2] + 128) * 256 / 65535, 0});
    }
    const Bytes forward = lut16(4, 3, kForward, nodes);
    std::vector<Tag> tags = {{"desc", descriptionElement(name)},
                             {"wtpt", xyzElement(0xe000, 0xe800, 0xc000)},
                             {"A2B0", forward}, {"A2B1", forward}};
    precise::Problem problem;
    const auto half = precise::Profile::parse(profileBytes(tags), problem);
    const precise::Evaluator evaluator(
        *half->toConnection(precise::Intent::relative, problem));
    nodes.clear();
    for (int at = 0; at < kInverse * kInverse * kInverse; ++at) {
        precise::Wish wish;
        const int l = at / (kInverse * kInverse), a = at / kInverse % kInverse, b = at % kInverse;
        wish.lab = {100.0 * l / (kInverse - 1) * 65535 / 65280,
                    65535.0 * a / (kInverse - 1) / 256 - 128, 65535.0 * b / (kInverse - 1) / 256 - 128};
        wish.black = wish.lab[0] < 60 ? (60 - wish.lab[0]) / 60 * 0.9 : 0;
        wish.start = {0.4, 0.4, 0.4, wish.black};
        wish.reference = wish.start;
        wish.blackWeight = 200;
        wish.total = 3.1;
        nodes.push_back(precise::solve(evaluator, wish).inks);
    }
    const Bytes inverse = lut16(3, 4, kInverse, nodes);
    tags.push_back({"B2A0", inverse});
    tags.push_back({"B2A1", inverse});
    return profileBytes(tags);
}

inline std::unique_ptr<precise::Profile> parsed(const Bytes& bytes) {
    precise::Problem problem;
    return precise::Profile::parse(bytes, problem);
}

}  // namespace ko::test
