// A profile's way between device and connection space: curves, matrices and grids in a row, as
// they stand in the file, over doubles.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "precise/curve.h"

namespace ko::precise {

constexpr int kMostChannels = 4;
using Colour = std::array<double, kMostChannels>;

// A colour with its derivatives: slopes[j][i] is d value[i] / d input[j].
struct Slopes {
    Colour value{};
    std::array<Colour, kMostChannels> slopes{};
};

// A grid with its own number of points an axis, the first input channel slowest. Nodes are
// floats, four a node whatever the outputs, and hold the file's integers, which a float holds
// exactly; what comes out is multiplied by scale.
struct Grid {
    int inputs = 0, outputs = 0;
    std::array<int, kMostChannels> points{};
    bool blended = false;  // all corners of the cell, not tetrahedra
    double scale = 1;
    std::vector<float> nodes;

    size_t nodeCount() const noexcept;
    void setStrides() noexcept;
    std::array<uint32_t, kMostChannels> strides{};  // in floats

    // Arguments are limited to 0..1. Three inputs meet in tetrahedra, or in a blend of all
    // corners; a fourth, the first channel, is blended linearly between two of those. The sums
    // are double. These are the ways of most ICC readers.
    Colour at(const Colour& in) const noexcept;
    Slopes slopesAt(const Colour& in) const noexcept;  // of the cell that holds the colour
};

struct Matrix {  // out = rows * in + offsets
    std::array<std::array<double, 3>, 3> rows{};
    std::array<double, 3> offsets{};
};

// Steps that are none of the file's.
enum class Step : uint8_t {
    curves,
    inverseCurves,
    matrix,
    grid,
    lightness,  // the first channel is L*/100, the others are neutral
    neutral,    // Y to XYZ of the illuminant
    fromLab,    // of XYZ: Lab to XYZ
    toLab,
    firstOnly,  // L* / 100 of a Lab colour
    secondOnly, // Y of an XYZ colour
};

struct Stage {
    Step step = Step::curves;
    std::vector<Curve> curves;
    Matrix matrix;
    Grid grid;
};

class Pipeline {
public:
    int inputs = 0, outputs = 0;
    std::vector<Stage> stages;

    void add(Stage stage) { stages.push_back(std::move(stage)); }
    void addMatrix(const Matrix& matrix);
    void addStep(Step step);

    Colour at(Colour colour) const noexcept;
    Colour stageAt(size_t index, const Colour& colour) const noexcept;  // one step alone
    Slopes slopesAt(const Colour& colour) const noexcept;
};

}  // namespace ko::precise
