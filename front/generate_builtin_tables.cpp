#include "front/generate_builtin_tables.h"

#include <algorithm>

#include "front/press.h"
#include "grid/cell.h"

namespace ko::builtin {
namespace {

constexpr int kPoints = grid::kBytePoints;
constexpr int kLast = kPoints - 1;
constexpr size_t kStrides[3] = {kPoints * kPoints, kPoints, 1};

double coverageSlope(double level, size_t ink) {
    const double a = level / 255;
    return (1 - 4 * kLosses[ink] * (1 - 2 * a)) / 255;
}

// How the light of a patch changes with the coverage of one ink.
Colour patchSlope(Colour covered, size_t ink) {
    covered[ink] = 1;
    const Colour with = patch(covered);
    covered[ink] = 0;
    const Colour without = patch(covered);
    return {with[0] - without[0], with[1] - without[1], with[2] - without[2]};
}

// From light to ink. Black is the product of the three missing lights: none on the sides of the
// colour solid, a cubic along the grey axis. The other inks are relaxed: each node pulls towards
// the light that it stands for, as seen through the press, and the second differences along the
// three axes pull towards 0; the anchors stay put.
using Place = std::array<int32_t, 3>;
struct Anchor {
    Place place;
    Colour inks;
};
constexpr Anchor kAnchors[] = {
    {{0, 0, 0}, {255, 255, 255}}, {{8, 8, 8}, {0, 0, 0}},     {{8, 0, 0}, {6, 255, 233}},
    {{0, 8, 0}, {236, 0, 255}},   {{0, 0, 8}, {244, 237, 0}}, {{8, 8, 0}, {8, 5, 233}},
    {{4, 4, 4}, {109, 79, 72}},   {{0, 8, 8}, {240, 0, 0}},   {{8, 0, 8}, {6, 245, 0}},
};
constexpr double kStiffness = 0.6;
constexpr int kSweeps = 500;

constexpr size_t nodeOf(const Place& at) {
    return static_cast<size_t>((at[0] * kPoints + at[1]) * kPoints + at[2]);
}

class Separation {
public:
    Separation() {
        for (const Anchor& anchor : kAnchors) fixed_[nodeOf(anchor.place)] = true;
        grid::forEachNode<3>(kPoints, [&](const Place& at) {  // a plain complement to begin with
            const size_t node = nodeOf(at);
            int levels[3];
            for (size_t k = 0; k < 3; ++k) levels[k] = grid::steppedLevel(at[k], kPoints);
            for (size_t k = 0; k < 3; ++k) light_[node][k] = levels[k];
            for (size_t k = 0; k < 3; ++k) inks_[node][k] = 255 - levels[k];
            black_[node] =
                (255.0 - levels[0]) * (255 - levels[1]) * (255 - levels[2]) / (255 * 255);
        });
        for (const Anchor& anchor : kAnchors)
            inks_[nodeOf(anchor.place)] = anchor.inks;
    }

    void relax() {
        for (int sweep = 0; sweep < kSweeps; ++sweep)
            grid::forEachNode<3>(kPoints, [&](const Place& place) {
                if (!fixed_[nodeOf(place)])
                    for (size_t ink = 0; ink < 3; ++ink) relaxNode(place, ink);
            });
    }

    std::array<uint8_t, 4> entry(size_t node) const {
        return {rounded(inks_[node][0]), rounded(inks_[node][1]), rounded(inks_[node][2]),
                rounded(black_[node])};
    }

private:
    // One ink of one node, the others held, to where the pulls are in balance.
    void relaxNode(const Place& place, size_t ink) {
        const size_t node = nodeOf(place);
        Colour& inks = inks_[node];
        Colour covered;
        for (size_t i = 0; i < 3; ++i) covered[i] = coverage(inks[i], i);
        const Colour seen = patch(covered), change = patchSlope(covered, ink);
        const double through = 1 - black_[node] / 255;
        const double slope = coverageSlope(inks[ink], ink) * through;
        double pull = 0, weight = 0;
        for (size_t k = 0; k < 3; ++k) {
            pull += (seen[k] * through - light_[node][k]) * (change[k] * slope);
            weight += (change[k] * slope) * (change[k] * slope);
        }
        for (size_t axis = 0; axis < 3; ++axis) {
            const auto at = [&](int i) {
                const int step = i - place[axis];
                return inks_[static_cast<size_t>(static_cast<int>(node) +
                                                 step * static_cast<int>(kStrides[axis]))][ink];
            };
            for (int middle = std::max(1, place[axis] - 1);
                 middle <= std::min(kLast - 1, place[axis] + 1); ++middle) {
                const double share = middle == place[axis] ? -2 : 1;
                pull += kStiffness * share * (at(middle - 1) - 2 * at(middle) + at(middle + 1));
                weight += kStiffness * share * share;
            }
        }
        // An ink never rises with its own light: the neighbours along that axis are the limits.
        const int own = place[ink];
        const double highest = own > 0 ? inks_[node - kStrides[ink]][ink] : 255;
        const double lowest = own < kLast ? inks_[node + kStrides[ink]][ink] : 0;
        inks[ink] = std::clamp(inks[ink] - pull / weight, lowest, highest);
    }

    std::array<Colour, kNodes> inks_{}, light_{};
    std::array<double, kNodes> black_{};
    std::array<bool, kNodes> fixed_{};
};

}  // namespace

Table generateRgbToCmyk() {
    Table table;
    Separation separation;
    separation.relax();
    for (size_t node = 0; node < kNodes; ++node) table[node] = separation.entry(node);
    return table;
}

std::string sourceOf(const Table& rgbToCmyk) {
    std::string text =
        "// Made by generate_builtin_tables; not edited by hand.\n"
        "#include \"front/builtin_tables.h\"\n\nnamespace ko::builtin {\n\n"
        "const uint8_t kRgbToCmyk[kNodes][4] = {\n";
    for (size_t node = 0; node < kNodes; ++node) {
        const auto& [cyan, magenta, yellow, black] = rgbToCmyk[node];
        text += node % 3 == 0 ? "    {" : " {";
        text += std::to_string(cyan) + ", " + std::to_string(magenta) + ", " +
                std::to_string(yellow) + ", " + std::to_string(black);
        text += node % 3 == 2 ? "},\n" : "},";
    }
    return text + "};\n\n}  // namespace ko::builtin\n";
}

}  // namespace ko::builtin
