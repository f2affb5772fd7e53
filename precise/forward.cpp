#include "precise/forward.h"

#include <cstring>
#include <utility>

namespace ko::precise {
namespace {

inline Four load(const float* node) noexcept {
    Four four;
    std::memcpy(&four, node, sizeof four);
    return four;
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

// From the low corner to the high one along the axes in their order. slopes gets the difference
// along each axis, where it is wanted.
template <bool wanted>
inline Four tetrahedron(const float* low, const float* rests, const uint32_t* strides,
                        const std::array<uint32_t, 3>& order, Four* slopes) noexcept {
    const Four c0 = load(low);
    low += strides[order[0]];
    const Four c1 = load(low);
    low += strides[order[1]];
    const Four c2 = load(low);
    low += strides[order[2]];
    const Four a = c1 - c0, b = c2 - c1, c = load(low) - c2;
    if constexpr (wanted) {
        slopes[order[0]] = a;
        slopes[order[1]] = b;
        slopes[order[2]] = c;
    }
    return c0 + a * rests[order[0]] + b * rests[order[1]] + c * rests[order[2]];
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

// The colour in its cell; slopes by axis, in units of a cell, where they are wanted.
template <size_t inputs, bool wanted>
inline Four inCell(const Grid& grid, const float* low, const float* rests,
                   [[maybe_unused]] Four* slopes) noexcept {
    const uint32_t* strides = grid.strides.data();
    if constexpr (inputs == 3) {
        if (!wanted && grid.blended) return allCorners(low, rests, strides);
        return tetrahedron<wanted>(low, rests, strides, orderOf(rests), slopes);
    } else {
        const auto order = orderOf(rests + 1);
        Four lower[3], upper[3];
        const Four a = tetrahedron<wanted>(low, rests + 1, strides + 1, order, lower);
        const Four b = tetrahedron<wanted>(low + strides[0], rests + 1, strides + 1, order, upper);
        if constexpr (wanted) {
            slopes[0] = b - a;
            for (int axis = 0; axis < 3; ++axis)
                slopes[axis + 1] = lower[axis] + (upper[axis] - lower[axis]) * rests[0];
        }
        return a + (b - a) * rests[0];
    }
}

bool isDiagonal(const Matrix& matrix) noexcept {
    for (size_t row = 0; row < 3; ++row)
        for (size_t column = 0; column < 3; ++column)
            if (row != column && matrix.rows[row][column] != 0) return false;
    return true;
}

}  // namespace

void QuickCurves::set(size_t channel, const Curve& curve, double scale, double offset) {
    const size_t count = curve.isSampled() ? curve.entries().size() : 2;
    auto& entries = entries_[channel];
    entries.resize(count);
    for (size_t at = 0; at < count; ++at) {
        const double value = curve.isSampled() ? curve.entries()[at] : static_cast<double>(at);
        entries[at] = static_cast<float>(value * scale + offset);
    }
    last_[channel] = static_cast<float>(count - 1);
    top_[channel] = static_cast<int32_t>(count) - 2;
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
    for (size_t ch = 0; ch < static_cast<size_t>(grid_->inputs); ++ch) {
        top_[ch] = grid_->points[ch] - 2;
        last_[ch] = static_cast<float>(grid_->points[ch] - 1);
        steps_[ch] = static_cast<float>(grid_->scale) * last_[ch];
    }
    const Curve identity;
    lead_ = grid;
    const std::vector<Curve>* first = nullptr;
    if (grid > 0 && usable(stages[grid - 1])) {
        first = &stages[grid - 1].curves;
        --lead_;
    }
    for (size_t ch = 0; ch < static_cast<size_t>(grid_->inputs); ++ch)
        in_.set(ch, first ? (*first)[ch] : identity, 1, 0);

    // A matrix that encodes is all that usually stands there.
    const Stage* const encoding = lead_ == 1 ? &stages[0] : nullptr;
    if (encoding && encoding->step == Step::matrix && isDiagonal(encoding->matrix)) {
        for (size_t ch = 0; ch < 3; ++ch) {
            leadScale_[ch] = static_cast<float>(encoding->matrix.rows[ch][ch]);
            leadOffset_[ch] = static_cast<float>(encoding->matrix.offsets[ch]);
        }
        lead_ = 0;
        scaled_ = true;
    }

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
        out_.set(ch, last ? (*last)[ch] : identity, ch < 3 ? matrix.rows[ch][ch] : 1,
                 ch < 3 ? matrix.offsets[ch] : 0);
    return true;
}

struct Evaluator::Cell {
    const float* low;
    std::array<float, kMostChannels> rests;
};

template <size_t inputs>
inline Evaluator::Cell Evaluator::cellOf(Four x) const noexcept {
    const Four position = limited(x) * loaded(last_);
    FourInt index = __builtin_convertvector(position, FourInt);
    index += index > loaded(top_);
    const Four rest = position - __builtin_convertvector(index, Four);
    Cell cell;
    cell.low = grid_->nodes.data();
    for (size_t axis = 0; axis < inputs; ++axis)
        cell.low += static_cast<size_t>(index[axis]) * grid_->strides[axis];
    std::memcpy(cell.rests.data(), &rest, sizeof rest);
    return cell;
}

Colour Evaluator::at(const Colour& in) const noexcept {
    if (!quick_) return pipeline_.at(in);
    Colour x = in;
    for (size_t stage = 0; stage < lead_; ++stage) x = pipeline_.stageAt(stage, x);
    const Four place = in_.at(narrowed(x) * loaded(leadScale_) + loaded(leadOffset_));
    Four sum;
    if (grid_->inputs == 4) {
        const Cell cell = cellOf<4>(place);
        sum = inCell<4, false>(*grid_, cell.low, cell.rests.data(), nullptr);
    } else {
        const Cell cell = cellOf<3>(place);
        sum = inCell<3, false>(*grid_, cell.low, cell.rests.data(), nullptr);
    }
    return widened(out_.at(sum * static_cast<float>(grid_->scale)));
}

Evaluator::Place Evaluator::placeOf(size_t channel, double value) const noexcept {
    Four x{};
    x[channel] = static_cast<float>(value);
    Four alone{};  // the other channels stand at their axes' beginnings
    alone[channel] = in_.at(x)[channel];
    const Cell cell = cellOf<4>(alone);
    return {static_cast<uint32_t>(cell.low - grid_->nodes.data()), cell.rests[channel]};
}

void Evaluator::slabAt(const Place& first, std::vector<float>& nodes) const {
    const size_t size = grid_->strides[0];
    nodes.resize(size);
    const float *low = grid_->nodes.data() + first.offset, *high = low + size;
    for (size_t at = 0; at < size; ++at) nodes[at] = low[at] + (high[at] - low[at]) * first.rest;
}

Colour Evaluator::inSlab(const std::vector<float>& nodes,
                         const std::array<Place, kMostChannels>& places) const noexcept {
    const float* low = nodes.data();
    std::array<float, 3> rests;
    for (size_t axis = 0; axis < 3; ++axis) {
        low += places[axis + 1].offset;
        rests[axis] = places[axis + 1].rest;
    }
    const Four sum = tetrahedron<false>(low, rests.data(), grid_->strides.data() + 1,
                                        orderOf(rests.data()), nullptr);
    return widened(out_.at(sum * static_cast<float>(grid_->scale)));
}

Slopes Evaluator::slopesAt(const Colour& in) const noexcept {
    if (!quick_ || lead_ != 0 || scaled_ || grid_->blended) return pipeline_.slopesAt(in);
    Four steep, slope, slopes[4] = {};
    const Four place = in_.at(narrowed(in), steep);
    Four sum;
    if (grid_->inputs == 4) {
        const Cell cell = cellOf<4>(place);
        sum = inCell<4, true>(*grid_, cell.low, cell.rests.data(), slopes);
    } else {
        const Cell cell = cellOf<3>(place);
        sum = inCell<3, true>(*grid_, cell.low, cell.rests.data(), slopes);
    }
    steep *= loaded(steps_);
    Slopes result;
    result.value = widened(out_.at(sum * static_cast<float>(grid_->scale), slope));
    for (size_t axis = 0; axis < kMostChannels; ++axis)
        result.slopes[axis] = widened(slope * (slopes[axis] * steep[axis]));
    return result;
}

}  // namespace ko::precise
