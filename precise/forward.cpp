#include "precise/forward.h"

#include <cstring>
#include <utility>

namespace ko::precise {
namespace {

// Four floats at once, each an IEEE float by itself on every target.
using Four = float __attribute__((vector_size(16)));

inline Four load(const float* node) noexcept {
    Four four;
    std::memcpy(&four, node, sizeof four);
    return four;
}

struct Cell {
    const float* low;
    std::array<float, kMostChannels> rests;
};

template <size_t inputs>
inline Cell cellOf(const Grid& grid, const double* x) noexcept {
    Cell cell{grid.nodes.data(), {}};
    for (size_t axis = 0; axis < inputs; ++axis) {
        const int last = grid.points[axis] - 1;
        const double position = x[axis] > 0 ? x[axis] < 1 ? x[axis] * last : last : 0;
        int index = static_cast<int>(position);
        if (index > last - 1) index = last - 1;
        cell.low += static_cast<size_t>(index) * grid.strides[axis];
        cell.rests[axis] = static_cast<float>(position - index);
    }
    return cell;
}

// Axes in the order of their fractions, the largest first; ties in the axes' order.
inline std::array<uint32_t, 3> orderOf(const float* rests) noexcept {
    const bool ab = rests[1] > rests[0], bc = rests[2] > rests[1], ac = rests[2] > rests[0];
    const uint32_t a = ab + ac, b = 1u - ab + bc;
    std::array<uint32_t, 3> order = {2, 2, 2};
    order[a] = 0;
    order[b] = 1;
    order[3u - a - b] = 2;
    return order;
}

inline Four tetrahedron(const float* low, const float* rests, const uint32_t* strides,
                        const std::array<uint32_t, 3>& order) noexcept {
    const Four c0 = load(low);
    low += strides[order[0]];
    const Four c1 = load(low);
    low += strides[order[1]];
    const Four c2 = load(low);
    low += strides[order[2]];
    const Four c3 = load(low);
    return c0 + (c1 - c0) * rests[order[0]] + (c2 - c1) * rests[order[1]] +
           (c3 - c2) * rests[order[2]];
}

inline Four tetrahedronSlopes(const float* low, const float* rests, const uint32_t* strides,
                              const std::array<uint32_t, 3>& order, Four* slopes) noexcept {
    const Four c0 = load(low);
    low += strides[order[0]];
    const Four c1 = load(low);
    low += strides[order[1]];
    const Four c2 = load(low);
    low += strides[order[2]];
    const Four c3 = load(low);
    slopes[order[0]] = c1 - c0;
    slopes[order[1]] = c2 - c1;
    slopes[order[2]] = c3 - c2;
    return c0 + (c1 - c0) * rests[order[0]] + (c2 - c1) * rests[order[1]] +
           (c3 - c2) * rests[order[2]];
}

inline Four allCorners(const float* low, const float* rests, const uint32_t* strides) noexcept {
    Four corner[4];
    for (int at = 0; at < 4; ++at) {
        const float* node = low + (at & 2 ? strides[0] : 0) + (at & 1 ? strides[1] : 0);
        const Four a = load(node), b = load(node + strides[2]);
        corner[at] = a + (b - a) * rests[2];
    }
    corner[0] += (corner[1] - corner[0]) * rests[1];
    corner[2] += (corner[3] - corner[2]) * rests[1];
    return corner[0] + (corner[2] - corner[0]) * rests[0];
}

template <size_t inputs>
inline Four gridAt(const Grid& grid, const double* x) noexcept {
    const Cell cell = cellOf<inputs>(grid, x);
    if constexpr (inputs == 3) {
        if (grid.blended) return allCorners(cell.low, cell.rests.data(), grid.strides.data());
        return tetrahedron(cell.low, cell.rests.data(), grid.strides.data(),
                           orderOf(cell.rests.data()));
    } else {
    const auto order = orderOf(&cell.rests[1]);
    const Four a = tetrahedron(cell.low, &cell.rests[1], &grid.strides[1], order);
    const Four b =
        tetrahedron(cell.low + grid.strides[0], &cell.rests[1], &grid.strides[1], order);
    return a + (b - a) * cell.rests[0];
    }
}

template <size_t inputs>
inline Four gridSlopesAt(const Grid& grid, const double* x, Four* slopes) noexcept {
    const Cell cell = cellOf<inputs>(grid, x);
    if constexpr (inputs == 3) {
        return tetrahedronSlopes(cell.low, cell.rests.data(), grid.strides.data(),
                                 orderOf(cell.rests.data()), slopes);
    } else {
    const auto order = orderOf(&cell.rests[1]);
    Four lower[3], upper[3];
    const Four a =
        tetrahedronSlopes(cell.low, &cell.rests[1], &grid.strides[1], order, lower);
    const Four b = tetrahedronSlopes(cell.low + grid.strides[0], &cell.rests[1], &grid.strides[1],
                                     order, upper);
    slopes[0] = b - a;
    for (int axis = 0; axis < 3; ++axis)
        slopes[axis + 1] = lower[axis] + (upper[axis] - lower[axis]) * cell.rests[0];
    return a + slopes[0] * cell.rests[0];
    }
}

bool isDiagonal(const Matrix& matrix) noexcept {
    for (size_t row = 0; row < 3; ++row)
        for (size_t column = 0; column < 3; ++column)
            if (row != column && matrix.rows[row][column] != 0) return false;
    return true;
}

}  // namespace

QuickCurve::QuickCurve(const Curve& curve, double scale, double offset) {
    const size_t count = curve.isSampled() ? curve.entries().size() : 2;
    entries_.resize(count);
    for (size_t at = 0; at < count; ++at) {
        const double value = curve.isSampled() ? curve.entries()[at] : static_cast<double>(at);
        entries_[at] = static_cast<float>(value * scale + offset);
    }
    last_ = static_cast<double>(count - 1);
    top_ = static_cast<int>(count) - 2;
}

Evaluator::Evaluator(Pipeline pipeline) : pipeline_(std::move(pipeline)) { quick_ = prepare(); }

// Looks for anything simple, then curves, a grid, curves, and a diagonal matrix at most.
bool Evaluator::prepare() {
    const auto& stages = pipeline_.stages;
    size_t grid = 0;
    while (grid < stages.size() && stages[grid].step != Step::grid) ++grid;
    if (grid == stages.size()) return false;
    grid_ = &stages[grid].grid;
    if (grid_->inputs < 3) return false;
    for (int axis = 0; axis < grid_->inputs; ++axis)
        if (grid_->points[static_cast<size_t>(axis)] < 2) return false;

    const auto usable = [](const Stage& stage) {
        if (stage.step != Step::curves) return false;
        for (const Curve& curve : stage.curves)
            if (!curve.isSampled() && !curve.isIdentity()) return false;
        return true;
    };
    for (size_t ch = 0; ch < static_cast<size_t>(grid_->inputs); ++ch)
        steps_[ch] = grid_->scale * (grid_->points[ch] - 1);
    const Curve identity;
    lead_ = grid;
    const std::vector<Curve>* first = nullptr;
    if (grid > 0 && usable(stages[grid - 1])) {
        first = &stages[grid - 1].curves;
        --lead_;
    }
    for (size_t ch = 0; ch < static_cast<size_t>(grid_->inputs); ++ch)
        in_[ch] = QuickCurve(first ? (*first)[ch] : identity, 1, 0);

    size_t next = grid + 1;
    const std::vector<Curve>* last = nullptr;
    if (next < stages.size() && usable(stages[next])) last = &stages[next++].curves;
    Matrix matrix;
    for (size_t at = 0; at < 3; ++at) matrix.rows[at][at] = 1;
    if (next < stages.size() && stages[next].step == Step::matrix) {
        matrix = stages[next++].matrix;
        if (!isDiagonal(matrix)) return false;
    }
    if (next != stages.size()) return false;
    for (size_t ch = 0; ch < static_cast<size_t>(grid_->outputs); ++ch)
        out_[ch] = QuickCurve(last ? (*last)[ch] : identity, ch < 3 ? matrix.rows[ch][ch] : 1,
                              ch < 3 ? matrix.offsets[ch] : 0);
    return true;
}

template <size_t inputs, size_t outputs>
Colour Evaluator::quickAt(const Colour& in) const noexcept {
    Colour x;
    for (size_t ch = 0; ch < inputs; ++ch) x[ch] = in_[ch].at(in[ch]);
    const Four sum = gridAt<inputs>(*grid_, x.data());
    Colour out{};
    for (size_t ch = 0; ch < outputs; ++ch) out[ch] = out_[ch].at(sum[ch] * grid_->scale);
    return out;
}

Colour Evaluator::at(const Colour& in) const noexcept {
    if (!quick_) return pipeline_.at(in);
    Colour x = in;
    // A matrix that encodes is all that usually stands here.
    for (size_t stage = 0; stage < lead_; ++stage) x = pipeline_.stageAt(stage, x);
    switch (grid_->inputs * 8 + grid_->outputs) {
        case 3 * 8 + 1: return quickAt<3, 1>(x);
        case 3 * 8 + 3: return quickAt<3, 3>(x);
        case 3 * 8 + 4: return quickAt<3, 4>(x);
        case 4 * 8 + 3: return quickAt<4, 3>(x);
        case 4 * 8 + 4: return quickAt<4, 4>(x);
        default: return pipeline_.at(in);
    }
}

template <size_t inputs>
void Evaluator::quickSlopesAt(const Colour& in, Slopes& result) const noexcept {
    Colour x, steep;
    for (size_t ch = 0; ch < inputs; ++ch) {
        x[ch] = in_[ch].at(in[ch], steep[ch]);
        steep[ch] *= steps_[ch];
    }
    Four slopes[4];
    const Four sum = gridSlopesAt<inputs>(*grid_, x.data(), slopes);
    for (size_t ch = 0; ch < 3; ++ch) {
        double slope;
        result.value[ch] = out_[ch].at(sum[ch] * grid_->scale, slope);
        for (size_t axis = 0; axis < inputs; ++axis)
            result.slopes[ch][axis] = slope * (slopes[axis][ch] * steep[axis]);
    }
}

Slopes Evaluator::slopesAt(const Colour& in) const noexcept {
    Slopes result;
    if (!quick_ || lead_ != 0 || grid_->outputs != 3 || grid_->blended) {
        result = pipeline_.slopesAt(in);
    } else if (grid_->inputs == 4) {
        quickSlopesAt<4>(in, result);
    } else {
        quickSlopesAt<3>(in, result);
    }
    return result;
}

}  // namespace ko::precise
