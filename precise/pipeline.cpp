#include "precise/pipeline.h"

#include <utility>

#include "precise/lab.h"

namespace ko::precise {
namespace {

struct Place {  // of one argument in the cells of its axis
    int cell;
    double rest;
};

Place placeOf(double x, int points) noexcept {
    const double limited = x > 0 ? x < 1 ? x : 1 : 0;
    const double position = limited * (points - 1);
    int cell = static_cast<int>(position);
    if (cell > points - 2) cell = points > 1 ? points - 2 : 0;
    return {cell, position - cell};
}

Colour load(const float* node) noexcept { return {node[0], node[1], node[2], node[3]}; }

// The tetrahedra of a cell: from the low corner to the high one along the axes in the order of
// their fractions. slopes gets the difference along each axis, where it is wanted.
template <bool wanted>
Colour tetrahedra(const float* low, const Place* places, const uint32_t* strides, int axes,
                  std::array<Colour, kMostChannels>& slopes) noexcept {
    std::array<int, 3> order = {0, 1, 2};
    const auto sortPair = [&](size_t a, size_t b) {
        if (places[order[b]].rest > places[order[a]].rest) std::swap(order[a], order[b]);
    };
    if (axes > 1) sortPair(0, 1);
    if (axes > 2) {
        sortPair(1, 2);
        sortPair(0, 1);
    }
    Colour sum = load(low), before = sum;
    const float* corner = low;
    for (int at = 0; at < axes; ++at) {
        const int axis = order[static_cast<size_t>(at)];
        corner += strides[axis];
        const Colour next = load(corner);
        for (size_t ch = 0; ch < 4; ++ch) {
            const double difference = next[ch] - before[ch];
            sum[ch] += difference * places[axis].rest;
            if constexpr (wanted) slopes[static_cast<size_t>(axis)][ch] = difference;
        }
        before = next;
    }
    return sum;
}

// All corners of a cell of up to three axes.
template <bool wanted>
Colour blend(const float* low, const Place* places, const uint32_t* strides, int axes,
             std::array<Colour, kMostChannels>& slopes) noexcept {
    std::array<Colour, 8> corner;
    const int corners = 1 << axes;
    for (int at = 0; at < corners; ++at) {
        const float* node = low;
        for (int axis = 0; axis < axes; ++axis)
            if (at >> axis & 1) node += strides[axis];
        corner[static_cast<size_t>(at)] = load(node);
    }
    if constexpr (wanted) {
        for (int axis = 0; axis < axes; ++axis) {
            Colour sum{};
            for (int at = 0; at < corners; ++at) {
                if (at >> axis & 1) continue;
                double weight = 1;
                for (int other = 0; other < axes; ++other)
                    if (other != axis)
                        weight *= at >> other & 1 ? places[other].rest : 1 - places[other].rest;
                for (size_t ch = 0; ch < 4; ++ch)
                    sum[ch] += weight * (corner[static_cast<size_t>(at | 1 << axis)][ch] -
                                         corner[static_cast<size_t>(at)][ch]);
            }
            slopes[static_cast<size_t>(axis)] = sum;
        }
    }
    int count = corners;
    for (int axis = axes - 1; axis >= 0; --axis) {
        count /= 2;
        for (int at = 0; at < count; ++at)
            for (size_t ch = 0; ch < 4; ++ch) {
                const double a = corner[static_cast<size_t>(at)][ch];
                const double b = corner[static_cast<size_t>(at + count)][ch];
                corner[static_cast<size_t>(at)][ch] = a + places[axis].rest * (b - a);
            }
    }
    return corner[0];
}

template <bool wanted>
Colour evaluate(const Grid& grid, const Colour& in,
                std::array<Colour, kMostChannels>& slopes) noexcept {
    std::array<Place, kMostChannels> places{};
    const float* low = grid.nodes.data();
    std::array<uint32_t, kMostChannels> strides = grid.strides;
    for (size_t axis = 0; axis < static_cast<size_t>(grid.inputs); ++axis) {
        places[axis] = placeOf(in[axis], grid.points[axis]);
        low += static_cast<size_t>(places[axis].cell) * strides[axis];
        if (grid.points[axis] < 2) strides[axis] = 0;
    }
    const auto part = grid.blended ? blend<wanted> : tetrahedra<wanted>;
    Colour sum;
    if (grid.inputs < 4) {
        sum = part(low, places.data(), strides.data(), grid.inputs, slopes);
    } else {
        std::array<Colour, kMostChannels> lower{}, upper{};
        const Colour a = part(low, &places[1], &strides[1], 3, lower);
        const Colour b = part(low + strides[0], &places[1], &strides[1], 3, upper);
        const double rest = places[0].rest;
        for (size_t ch = 0; ch < 4; ++ch) sum[ch] = a[ch] + rest * (b[ch] - a[ch]);
        if constexpr (wanted) {
            for (size_t ch = 0; ch < 4; ++ch) {
                slopes[0][ch] = b[ch] - a[ch];
                for (size_t axis = 0; axis < 3; ++axis)
                    slopes[axis + 1][ch] =
                        lower[axis][ch] + rest * (upper[axis][ch] - lower[axis][ch]);
            }
        }
    }
    for (double& value : sum) value *= grid.scale;
    if constexpr (wanted) {
        for (size_t axis = 0; axis < static_cast<size_t>(grid.inputs); ++axis)
            for (double& slope : slopes[axis]) slope *= grid.scale * (grid.points[axis] - 1);
    }
    return sum;
}

Triple firstThree(const Colour& colour) noexcept { return {colour[0], colour[1], colour[2]}; }

Colour step(const Stage& stage, const Colour& in) noexcept {
    switch (stage.step) {
        case Step::curves: {
            Colour out = in;
            for (size_t ch = 0; ch < stage.curves.size(); ++ch) out[ch] = stage.curves[ch].at(in[ch]);
            return out;
        }
        case Step::inverseCurves: {
            Colour out = in;
            for (size_t ch = 0; ch < stage.curves.size(); ++ch)
                out[ch] = stage.curves[ch].inverse(in[ch]);
            return out;
        }
        case Step::matrix: {
            Colour out{};
            for (size_t row = 0; row < 3; ++row) {
                const auto& r = stage.matrix.rows[row];
                out[row] = r[0] * in[0] + r[1] * in[1] + r[2] * in[2] + stage.matrix.offsets[row];
            }
            return out;
        }
        case Step::grid: {
            std::array<Colour, kMostChannels> none;
            return evaluate<false>(stage.grid, in, none);
        }
        case Step::lightness: return {in[0] * 100, 0, 0, 0};
        case Step::neutral: return {in[0] * kD50[0], in[0] * kD50[1], in[0] * kD50[2], 0};
        case Step::firstOnly: return {in[0] / 100, 0, 0, 0};
        case Step::secondOnly: return {in[1], 0, 0, 0};
        case Step::fromLab: {
            const Triple xyz = toXyz(firstThree(in));
            return {xyz[0], xyz[1], xyz[2], 0};
        }
        case Step::toLab: {
            const Triple lab = toLab(firstThree(in));
            return {lab[0], lab[1], lab[2], 0};
        }
    }
    return in;
}

// The derivatives of one step; out[i][j] = d out i / d in j.
std::array<Colour, kMostChannels> stepSlopes(const Stage& stage, const Colour& in) noexcept {
    std::array<Colour, kMostChannels> out{};
    switch (stage.step) {
        case Step::curves:
            for (size_t ch = 0; ch < stage.curves.size(); ++ch)
                out[ch][ch] = stage.curves[ch].slope(in[ch]);
            break;
        case Step::matrix:
            for (size_t row = 0; row < 3; ++row)
                for (size_t column = 0; column < 3; ++column)
                    out[row][column] = stage.matrix.rows[row][column];
            break;
        case Step::grid: {
            std::array<Colour, kMostChannels> byInput{};
            (void)evaluate<true>(stage.grid, in, byInput);
            for (size_t i = 0; i < kMostChannels; ++i)
                for (size_t j = 0; j < kMostChannels; ++j) out[i][j] = byInput[j][i];
            break;
        }
        case Step::toLab: {
            constexpr double kFactors[3][3] = {{0, 116, 0}, {500, -500, 0}, {0, 200, -200}};
            for (size_t row = 0; row < 3; ++row)
                for (size_t column = 0; column < 3; ++column)
                    out[row][column] = kFactors[row][column] *
                                       labCurveSlope(in[column] / kD50[column]) / kD50[column];
            break;
        }
        default: {  // rare ones, by differences
            const Colour base = step(stage, in);
            for (size_t j = 0; j < kMostChannels; ++j) {
                Colour moved = in;
                moved[j] += 1e-6;
                const Colour next = step(stage, moved);
                for (size_t i = 0; i < kMostChannels; ++i) out[i][j] = (next[i] - base[i]) * 1e6;
            }
        }
    }
    return out;
}

}  // namespace

size_t Grid::nodeCount() const noexcept {
    size_t count = 1;
    for (int axis = 0; axis < inputs; ++axis)
        count *= static_cast<size_t>(points[static_cast<size_t>(axis)]);
    return count;
}

void Grid::setStrides() noexcept {
    uint32_t stride = 4;
    for (int axis = inputs - 1; axis >= 0; --axis) {
        strides[static_cast<size_t>(axis)] = stride;
        stride *= static_cast<uint32_t>(points[static_cast<size_t>(axis)]);
    }
}

Colour Grid::at(const Colour& in) const noexcept {
    std::array<Colour, kMostChannels> none;
    return evaluate<false>(*this, in, none);
}

Slopes Grid::slopesAt(const Colour& in) const noexcept {
    Slopes result;
    result.value = evaluate<true>(*this, in, result.slopes);
    return result;
}

void Pipeline::addMatrix(const Matrix& matrix) {
    Stage stage;
    stage.step = Step::matrix;
    stage.matrix = matrix;
    stages.push_back(std::move(stage));
}

void Pipeline::addStep(Step kind) {
    Stage stage;
    stage.step = kind;
    stages.push_back(std::move(stage));
}

Colour Pipeline::at(Colour colour) const noexcept {
    for (const Stage& stage : stages) colour = step(stage, colour);
    return colour;
}

Colour Pipeline::stageAt(size_t index, const Colour& colour) const noexcept {
    return step(stages[index], colour);
}

Slopes Pipeline::slopesAt(const Colour& colour) const noexcept {
    Slopes now;
    now.value = colour;
    for (size_t i = 0; i < kMostChannels; ++i) now.slopes[i][i] = 1;
    for (const Stage& stage : stages) {
        const auto local = stepSlopes(stage, now.value);
        std::array<Colour, kMostChannels> chained{};
        for (size_t i = 0; i < kMostChannels; ++i)
            for (size_t j = 0; j < kMostChannels; ++j)
                for (size_t k = 0; k < kMostChannels; ++k)
                    chained[j][i] += local[i][k] * now.slopes[j][k];
        now.slopes = chained;
        now.value = step(stage, now.value);
    }
    return now;
}

}  // namespace ko::precise
