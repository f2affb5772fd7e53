// Many colours through one LUT, with the bits of the plain evaluators.
#include "icc/lut_fast.h"

#include <algorithm>
#include <cstring>

#include "frame/arithmetic.h"
#include "grid/cell.h"

namespace ko::icc {
namespace {

// Four lanes: two SSE2 registers of doubles, or one AVX register where that is to be had.
using Doubles = double __attribute__((vector_size(32)));
using Ints = int32_t __attribute__((vector_size(16)));
using Shorts = uint16_t __attribute__((vector_size(8)));

constexpr size_t kLanes = 4;
constexpr int32_t kMaxPlanes = 64;                    // of the last axis in a run
constexpr uint64_t kMaxPaddedNodes = uint64_t{1} << 21;  // 16 MiB

// The cells of one axis for every row of its input curve.
template <class Use>
void forEachRow(const IccLut& lut, int32_t axis, Use use) {
    const grid::EvenAxis cells(lut.gridPoints, lutMaximum(lut.precision));
    const auto* slots = static_cast<const int32_t*>(lut.workTable) + axis;
    for (int32_t row = 0; row < lutRows(lut.precision); ++row)
        use(row, cells.cellOf(slots[size_t{kLutSlots} * row]));
}

bool isIdentity(const IccLut& lut) noexcept {
    for (int32_t i = 0; i < 9; ++i)
        if (lut.matrix[i] != (i % 4 == 0 ? 1.0f : 0.0f)) return false;
    return true;
}

// sum += four entries * weight. No vector crosses a function's border by value, where its form
// would depend on the processor that is compiled for.
inline void addWeighted(Doubles& sum, const uint16_t* entries, double weight) noexcept {
    Shorts shorts;
    std::memcpy(&shorts, entries, sizeof shorts);
    sum += __builtin_convertvector(__builtin_convertvector(shorts, Ints), Doubles) * weight;
}

}  // namespace

FastLut::FastLut(const IccLut& lut)
    : lut_(lut),
      outputs_(lut.outputChannels),
      gridPoints_(lut.gridPoints),
      maximum_(lutMaximum(lut.precision)),
      shift_(lut.precision == 2 ? 2 : 0) {
    const auto rows = static_cast<size_t>(lutRows(lut.precision));
    const auto* slots = static_cast<const int32_t*>(lut.workTable) + kMaxLutChannels;
    for (int32_t k = 0; k < outputs_; ++k) {
        outputCurves_[k].resize(rows);
        for (size_t row = 0; row < rows; ++row)
            outputCurves_[k][row] = static_cast<uint16_t>(slots[kLutSlots * row + k]);
    }
    if (lut.inputChannels == 3) prepareTetrahedra();
    if (lut.inputChannels == 4) prepareRuns();
}

void FastLut::colours(Colour* values, size_t count) const noexcept {
    if (kernel_) {
        (this->*kernel_)(values, count);
    } else {
        for (size_t i = 0; i < count; ++i) lutColor(lut_, values[i].data());
    }
}

inline size_t FastLut::rowOf(int32_t value) const noexcept {
    return static_cast<size_t>(clampTo(value, 0, maximum_) >> shift_);
}

template <int32_t Outputs>
inline void FastLut::writeOutputs(const int32_t* blended, Colour& values) const noexcept {
    for (int32_t k = 0; k < Outputs; ++k) values[k] = outputCurves_[k][blended[k] >> shift_];
}

// Three inputs: the tetrahedra of lutColor, all outputs at once.

void FastLut::prepareTetrahedra() {
    const auto grid = static_cast<uint64_t>(gridPoints_);
    const uint64_t nodes = grid * grid * grid;
    if (grid > 1024 || nodes > kMaxPaddedNodes) return;
    padded_.resize(static_cast<size_t>(nodes) * kLanes);
    for (size_t node = 0; node < nodes; ++node)
        for (int32_t k = 0; k < outputs_; ++k)
            padded_[node * kLanes + static_cast<size_t>(k)] = static_cast<uint16_t>(
                lutEntry(lut_.clut, node * static_cast<size_t>(outputs_) + static_cast<size_t>(k),
                         lut_.precision));

    const uint32_t step[3] = {static_cast<uint32_t>(grid * grid * kLanes),
                              static_cast<uint32_t>(grid * kLanes), kLanes};
    for (int32_t axis = 0; axis < 3; ++axis) {
        fractions_[axis].resize(static_cast<size_t>(lutRows(lut_.precision)));
        forEachRow(lut_, axis, [&](int32_t row, const grid::Cell& cell) {
            fractions_[axis][row] = {
                static_cast<uint32_t>(cell.index) * step[axis],
                static_cast<float>(cell.distance) / static_cast<float>(cell.width)};
        });
    }
    diagonal_ = step[0] + step[1] + step[2];
    // Bit 0: f0 >= f1, bit 1: f1 >= f2, bit 2: f0 >= f2; two of the eight cannot be. Which of
    // two equal fractions goes first changes nothing: the corner between them weighs 0.
    constexpr int32_t kOrder[8][2] = {{2, 1}, {2, 0}, {1, 2}, {0, 1},
                                      {0, 1}, {0, 2}, {1, 0}, {0, 1}};
    for (int32_t order = 0; order < 8; ++order) {
        firstStep_[order] = step[kOrder[order][0]];
        secondStep_[order] = firstStep_[order] + step[kOrder[order][1]];
    }
    hasMatrix_ = !isIdentity(lut_);
    constexpr Kernel kKernels[] = {&FastLut::throughTetrahedra<1>, &FastLut::throughTetrahedra<2>,
                                   &FastLut::throughTetrahedra<3>, &FastLut::throughTetrahedra<4>};
    kernel_ = kKernels[outputs_ - 1];
}

template <int32_t Outputs>
void FastLut::throughTetrahedra(Colour* values, size_t count) const noexcept {
    const uint16_t* const grid = padded_.data();
    double e[9];
    for (int32_t i = 0; i < 9; ++i) e[i] = lut_.matrix[i];
    for (size_t i = 0; i < count; ++i) {
        Colour& colour = values[i];
        int32_t in[3] = {colour[0], colour[1], colour[2]};
        if (hasMatrix_) {
            const double c0 = in[0], c1 = in[1], c2 = in[2];
            for (int32_t j = 0; j < 3; ++j)
                in[j] = truncateToInt32(e[3 * j] * c0 + e[3 * j + 1] * c1 + e[3 * j + 2] * c2);
        }
        const Fraction p0 = fractions_[0][rowOf(in[0])];
        const Fraction p1 = fractions_[1][rowOf(in[1])];
        const Fraction p2 = fractions_[2][rowOf(in[2])];
        const float f0 = p0.fraction, f1 = p1.fraction, f2 = p2.fraction;
        const float high = std::max(f0, f1), low = std::min(f0, f1);
        const double a = std::max(high, f2), b = std::max(low, std::min(high, f2));
        const double c = std::min(low, f2);
        const uint32_t order = (f0 >= f1) | (f1 >= f2) << 1 | (f0 >= f2) << 2;
        const uint16_t* const corner = grid + (p0.offset + p1.offset + p2.offset);
        Doubles sum = {};
        addWeighted(sum, corner, 1 - a);
        addWeighted(sum, corner + firstStep_[order], a - b);
        addWeighted(sum, corner + secondStep_[order], b - c);
        addWeighted(sum, corner + diagonal_, c);
        int32_t blended[kLanes];
        const Ints whole = __builtin_convertvector(sum, Ints);
        std::memcpy(blended, &whole, sizeof blended);
        writeOutputs<Outputs>(blended, colour);
    }
}

// Four inputs. The plain sum of sixteen corners is made in another order: along the first three
// axes once for a run, along the last for each colour. Where every sum is a whole number that a
// double holds, order does not matter; elsewhere the result is taken only when it is so far from
// a whole number that rounding cannot have moved either of the two sums across one.

void FastLut::prepareRuns() {
    const auto grid = static_cast<uint64_t>(gridPoints_);
    const uint64_t entries = grid * grid * grid * grid * static_cast<uint64_t>(outputs_);
    if (gridPoints_ > kMaxPlanes || entries > UINT32_MAX) return;
    if (lut_.precision == 2 && reinterpret_cast<uintptr_t>(lut_.clut) % alignof(uint16_t) != 0)
        return;
    const uint64_t step[3] = {grid * grid * grid * static_cast<uint64_t>(outputs_),
                              grid * grid * static_cast<uint64_t>(outputs_),
                              grid * static_cast<uint64_t>(outputs_)};
    for (size_t corner = 0; corner < 8; ++corner)
        lines_[corner] = static_cast<size_t>((corner >> 2 & 1) * step[0] +
                                             (corner >> 1 & 1) * step[1] + (corner & 1) * step[2]);
    for (int32_t axis = 0; axis < 3; ++axis) {
        cells_[axis].resize(static_cast<size_t>(lutRows(lut_.precision)));
        forEachRow(lut_, axis, [&](int32_t row, const grid::Cell& cell) {
            cells_[axis][row] = {static_cast<uint32_t>(cell.index * step[axis]),
                                 cell.width - cell.distance, cell.distance};
        });
    }

    // Sums stay whole, and half a unit of the volume stands out of the roundings of a product.
    const double width = maximum_ / (gridPoints_ - 1) + 1;
    const bool exact = width * width * width * width * (maximum_ + 1) < 0x1p46;
    lastCells_.resize(static_cast<size_t>(lutRows(lut_.precision)));
    forEachRow(lut_, 3, [&](int32_t row, const grid::Cell& cell) {
        const double reciprocal = 1.0 / cell.width, scale = exact ? 1 : reciprocal;
        lastCells_[row] = {(cell.width - cell.distance) * scale, cell.distance * scale, reciprocal,
                           static_cast<size_t>(cell.index * outputs_)};
    });
    if (lut_.precision == 1) {
        kernel_ = runsKernel<uint8_t, true>();  // 256^4 * 256 < 2^46
    } else {
        kernel_ = exact ? runsKernel<uint16_t, true>() : runsKernel<uint16_t, false>();
    }
}

template <class Entry, bool Exact>
FastLut::Kernel FastLut::runsKernel() const noexcept {
    constexpr Kernel kKernels[] = {
        &FastLut::throughRuns<Entry, Exact, 1>, &FastLut::throughRuns<Entry, Exact, 2>,
        &FastLut::throughRuns<Entry, Exact, 3>, &FastLut::throughRuns<Entry, Exact, 4>};
    return kKernels[outputs_ - 1];
}

template <class Entry, bool Exact, int32_t Outputs>
void FastLut::throughRuns(Colour* values, size_t count) const noexcept {
    size_t begin = 0;
    while (begin < count) {
        const Colour& first = values[begin];
        size_t end = begin + 1;
        while (end < count && values[end][0] == first[0] && values[end][1] == first[1] &&
               values[end][2] == first[2])
            ++end;
        // Below this the sums along the planes cost more than they save.
        if ((end - begin) * 2 > static_cast<size_t>(gridPoints_)) {
            throughRun<Entry, Exact, Outputs>(values + begin, end - begin);
        } else {
            for (size_t i = begin; i < end; ++i) lutColor(lut_, values[i].data());
        }
        begin = end;
    }
}

template <class Entry, bool Exact, int32_t Outputs>
void FastLut::throughRun(Colour* values, size_t count) const noexcept {
    const Cell c0 = cells_[0][rowOf(values[0][0])];
    const Cell c1 = cells_[1][rowOf(values[0][1])];
    const Cell c2 = cells_[2][rowOf(values[0][2])];
    const Entry* const base = static_cast<const Entry*>(lut_.clut) +
                              (size_t{c0.offset} + c1.offset + c2.offset);
    const double reciprocal = 1 / (static_cast<double>(c0.near + c0.far) * (c1.near + c1.far) *
                                   (c2.near + c2.far));
    const double scale = Exact ? 1 : reciprocal;
    const double n0 = c0.near * scale, f0 = c0.far * scale;
    const double n1 = c1.near, f1 = c1.far, n2 = c2.near, f2 = c2.far;
    const double weight[8] = {n0 * n1 * n2, n0 * n1 * f2, n0 * f1 * n2, n0 * f1 * f2,
                              f0 * n1 * n2, f0 * n1 * f2, f0 * f1 * n2, f0 * f1 * f2};
    const Entry* line[8];
    for (size_t corner = 0; corner < 8; ++corner) line[corner] = base + lines_[corner];

    // The first three axes, for every plane of the last.
    double planes[kMaxPlanes * Outputs + kLanes];
    const auto length = static_cast<size_t>(gridPoints_ * Outputs);
    for (size_t j = 0; j < length; ++j) {
        planes[j] = weight[0] * line[0][j] + weight[1] * line[1][j] + weight[2] * line[2][j] +
                    weight[3] * line[3][j] + weight[4] * line[4][j] + weight[5] * line[5][j] +
                    weight[6] * line[6][j] + weight[7] * line[7][j];
    }
    std::fill_n(planes + length, kLanes, 0.0);  // lanes beyond the outputs read on

    constexpr Ints kUsed = {-1, Outputs > 1 ? -1 : 0, Outputs > 2 ? -1 : 0, Outputs > 3 ? -1 : 0};
    for (size_t i = 0; i < count; ++i) {
        const LastCell& last = lastCells_[rowOf(values[i][3])];
        Doubles low, high;
        std::memcpy(&low, planes + last.offset, sizeof low);
        std::memcpy(&high, planes + last.offset + Outputs, sizeof high);
        const Doubles sum = low * last.near + high * last.far;
        Ints whole;
        if constexpr (Exact) {
            // Half a unit away from the whole numbers, no rounding crosses one.
            whole = __builtin_convertvector((sum + 0.5) * (reciprocal * last.reciprocal), Ints);
        } else {
            // Both sums are within 32 roundings of the true one, far below a millionth.
            constexpr double kTooNear = 1e-6;
            whole = __builtin_convertvector(sum + kTooNear, Ints);
            const Ints unsure = (whole ^ __builtin_convertvector(sum - kTooNear, Ints)) & kUsed;
            uint64_t halves[2];
            std::memcpy(halves, &unsure, sizeof halves);
            if (halves[0] | halves[1]) {
                lutColor(lut_, values[i].data());
                continue;
            }
        }
        int32_t blended[kLanes];
        std::memcpy(blended, &whole, sizeof blended);
        writeOutputs<Outputs>(blended, values[i]);
    }
}

}  // namespace ko::icc
