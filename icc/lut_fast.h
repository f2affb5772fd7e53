// A LUT prepared for many colours. Gives the same bits as lutColor, quicker: curves and cells are
// tables, and a run of colours that differ in their last channel shares its work.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "icc/lut.h"

namespace ko::icc {

class FastLut {
public:
    using Colour = std::array<int32_t, kMaxLutChannels>;

    // lut is ready and outlives this. Throws std::bad_alloc.
    explicit FastLut(const IccLut& lut);

    // lutColor for every colour, in place. Allocates nothing; several threads may call it.
    void colours(Colour* values, size_t count) const noexcept;

private:
    using Kernel = void (FastLut::*)(Colour*, size_t) const noexcept;

    // Where a row of the work table leads to on one axis of the grid.
    struct Cell {
        uint32_t offset;  // of the cell's lower end, in entries
        int32_t near;     // weights of the lower and the upper end; they add up to the width
        int32_t far;
    };
    // The same on the last axis of a run.
    struct LastCell {
        double near, far;   // as fractions of the width where sums are not exact
        double reciprocal;  // of the width
        size_t offset;
    };
    // The same for tetrahedra.
    struct Fraction {
        uint32_t offset;  // in entries of padded_
        float fraction;
    };

    size_t rowOf(int32_t value) const noexcept;
    template <int32_t Outputs>
    void writeOutputs(const int32_t* blended, Colour& values) const noexcept;

    void prepareTetrahedra();
    template <int32_t Outputs>
    void throughTetrahedra(Colour* values, size_t count) const noexcept;

    void prepareRuns();
    template <class Entry, bool Exact>
    Kernel runsKernel() const noexcept;
    template <class Entry, bool Exact, int32_t Outputs>
    void throughRun(Colour* values, size_t count) const noexcept;
    template <class Entry, bool Exact, int32_t Outputs>
    void throughRuns(Colour* values, size_t count) const noexcept;

    const IccLut& lut_;
    Kernel kernel_ = nullptr;  // null: one by one
    int32_t outputs_, gridPoints_, maximum_, shift_;
    std::array<std::vector<uint16_t>, kMaxLutChannels> outputCurves_;

    // Three inputs.
    std::array<std::vector<Fraction>, 3> fractions_;
    std::array<uint32_t, 8> firstStep_{}, secondStep_{};  // by the order of the fractions
    uint32_t diagonal_ = 0;
    std::vector<uint16_t> padded_;  // the grid with four entries a node
    bool hasMatrix_ = false;

    // Four inputs.
    std::array<std::vector<Cell>, 3> cells_;
    std::vector<LastCell> lastCells_;
    std::array<size_t, 8> lines_{};  // offsets of the corners of the first three axes
};

}  // namespace ko::icc
