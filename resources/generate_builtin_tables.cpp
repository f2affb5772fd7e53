#include "resources/generate_builtin_tables.h"

#include <algorithm>

namespace ko::builtin {
namespace {

constexpr int kPoints = static_cast<int>(kTablePoints);
constexpr int kLast = kPoints - 1;
constexpr size_t kStrides[3] = {kTablePoints * kTablePoints, kTablePoints, 1};

using Colour = std::array<double, 3>;

constexpr int levelOf(int node) { return node == kLast ? 255 : 32 * node; }

// The press: three inks on white paper. What the eye sees of a patch is the mean of the eight
// possible overprints, each as large as chance lets it be. Each ink's curve says how much paper
// a level covers; the losses make the mid grey come out as measured.
constexpr Colour kOverprints[8] = {  // bit 2 cyan, bit 1 magenta, bit 0 yellow
    {255, 255, 255}, {255, 255, 0}, {240, 2, 127}, {236, 0, 0},
    {0, 160, 198},   {0, 130, 0},   {0, 0, 110},   {0, 0, 0},
};
constexpr double kLosses[3] = {0.0171, -0.0002, 0.0459};  // at half coverage

double coverage(double level, size_t ink) {
    const double a = level / 255;
    return a - 4 * kLosses[ink] * a * (1 - a);
}
double coverageSlope(double level, size_t ink) {
    const double a = level / 255;
    return (1 - 4 * kLosses[ink] * (1 - 2 * a)) / 255;
}

// The light of a patch, and how it changes with the coverage of one ink.
Colour patch(const Colour& covered) {
    Colour light{};
    for (size_t print = 0; print < 8; ++print) {
        double share = 1;
        for (size_t ink = 0; ink < 3; ++ink)
            share *= (print >> (2 - ink) & 1) != 0 ? covered[ink] : 1 - covered[ink];
        for (size_t k = 0; k < 3; ++k) light[k] += share * kOverprints[print][k];
    }
    return light;
}
Colour patchSlope(Colour covered, size_t ink) {
    covered[ink] = 1;
    const Colour with = patch(covered);
    covered[ink] = 0;
    const Colour without = patch(covered);
    return {with[0] - without[0], with[1] - without[1], with[2] - without[2]};
}

uint8_t rounded(double value) {
    return static_cast<uint8_t>(std::clamp(value, 0.0, 255.0) + 0.5);
}

// From light to ink. Black is the product of the three missing lights: none on the sides of the
// colour solid, a cubic along the grey axis. The other inks are relaxed: each node pulls towards
// the light that it stands for, as seen through the press, and the second differences along the
// three axes pull towards 0; the anchors stay put.
struct Anchor {
    int r, g, b;
    Colour inks;
};
constexpr Anchor kAnchors[] = {
    {0, 0, 0, {255, 255, 255}}, {8, 8, 8, {0, 0, 0}},     {8, 0, 0, {6, 255, 233}},
    {0, 8, 0, {236, 0, 255}},   {0, 0, 8, {244, 237, 0}}, {8, 8, 0, {8, 5, 233}},
    {4, 4, 4, {109, 79, 72}},   {0, 8, 8, {240, 0, 0}},   {8, 0, 8, {6, 245, 0}},
};
constexpr double kStiffness = 0.6;
constexpr int kSweeps = 500;

constexpr size_t nodeOf(int r, int g, int b) {
    return static_cast<size_t>((r * kPoints + g) * kPoints + b);
}

class Separation {
public:
    Separation() {
        for (const Anchor& anchor : kAnchors) fixed_[nodeOf(anchor.r, anchor.g, anchor.b)] = true;
        forEachNode([&](int r, int g, int b) {  // a plain complement to begin with
            const size_t node = nodeOf(r, g, b);
            const int levels[3] = {levelOf(r), levelOf(g), levelOf(b)};
            for (size_t k = 0; k < 3; ++k) light_[node][k] = levels[k];
            for (size_t k = 0; k < 3; ++k) inks_[node][k] = 255 - levels[k];
            black_[node] =
                (255.0 - levels[0]) * (255 - levels[1]) * (255 - levels[2]) / (255 * 255);
        });
        for (const Anchor& anchor : kAnchors)
            inks_[nodeOf(anchor.r, anchor.g, anchor.b)] = anchor.inks;
    }

    void relax() {
        for (int sweep = 0; sweep < kSweeps; ++sweep)
            forEachNode([&](int r, int g, int b) {
                const int place[3] = {r, g, b};
                if (!fixed_[nodeOf(r, g, b)])
                    for (size_t ink = 0; ink < 3; ++ink) relaxNode(place, ink);
            });
    }

    std::array<uint8_t, 4> entry(size_t node) const {
        return {rounded(inks_[node][0]), rounded(inks_[node][1]), rounded(inks_[node][2]),
                rounded(black_[node])};
    }

private:
    template <class Visit>
    static void forEachNode(Visit visit) {
        for (int r = 0; r < kPoints; ++r)
            for (int g = 0; g < kPoints; ++g)
                for (int b = 0; b < kPoints; ++b) visit(r, g, b);
    }

    // One ink of one node, the others held, to where the pulls are in balance.
    void relaxNode(const int (&place)[3], size_t ink) {
        const size_t node = nodeOf(place[0], place[1], place[2]);
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

    std::array<Colour, kTableNodes> inks_{}, light_{};
    std::array<double, kTableNodes> black_{};
    std::array<bool, kTableNodes> fixed_{};
};

void appendTable(std::string& text, const Table& table, const char* name) {
    text += std::string("const uint8_t ") + name + "[kTableNodes][4] = {\n";
    for (size_t node = 0; node < kTableNodes; ++node) {
        const auto& [first, second, third, fourth] = table[node];
        text += node % 3 == 0 ? "    {" : " {";
        text += std::to_string(first) + ", " + std::to_string(second) + ", " +
                std::to_string(third) + ", " + std::to_string(fourth);
        text += node % 3 == 2 ? "},\n" : "},";
    }
    text += "};\n";
}

}  // namespace

Tables generateTables() {
    Tables tables;
    Separation separation;
    separation.relax();
    for (size_t node = 0; node < kTableNodes; ++node) {
        tables.rgbToCmyk[node] = separation.entry(node);
        Colour covered;
        for (size_t ink = 0; ink < 3; ++ink)
            covered[ink] =
                coverage(levelOf(static_cast<int>(node / kStrides[ink] % kTablePoints)), ink);
        const Colour light = patch(covered);
        tables.cmyToRgb[node] = {rounded(light[0]), rounded(light[1]), rounded(light[2]), 0};
    }
    return tables;
}

std::string sourceOf(const Tables& tables) {
    std::string text =
        "// Made by generate_builtin_tables; not edited by hand.\n"
        "#include \"resources/builtin_tables.h\"\n\nnamespace ko::builtin {\n\n";
    appendTable(text, tables.rgbToCmyk, "kRgbToCmyk");
    text += '\n';
    appendTable(text, tables.cmyToRgb, "kCmyToRgb");
    return text + "\n}  // namespace ko::builtin\n";
}

}  // namespace ko::builtin
