// LUT records made by hand: any shape, any entries, in one byte-packed block like a loaded one.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <random>
#include <vector>

#include "kolink/icc_lut.h"

namespace ko::test {

struct LutSpec {
    int32_t inputs = 4, outputs = 3, gridPoints = 9, precision = 2;
    int32_t inputEntries = 256, outputEntries = 256;
    size_t misalignment = 0;  // bytes that the block is moved by
};

class MadeLut {
public:
    using Close = std::function<void(IccLut*)>;
    // close: tests of the engine pass its own
    explicit MadeLut(const LutSpec& spec, Close close = jIccLutClose) : spec_(spec), close_(close) {
        nodes_ = 1;
        for (int32_t axis = 0; axis < spec.inputs; ++axis) nodes_ *= spec.gridPoints;
        const size_t width = static_cast<size_t>(spec.precision);
        const size_t inputBytes = width * spec.inputs * spec.inputEntries;
        const size_t gridBytes = width * nodes_ * spec.outputs;
        const size_t outputBytes = width * spec.outputs * spec.outputEntries;
        block_.resize(spec.misalignment + sizeof(IccLut) + inputBytes + gridBytes + outputBytes);
        uint8_t* tables = block_.data() + spec.misalignment + sizeof(IccLut);
        IccLut& lut = *get();
        lut.inputChannels = spec.inputs;
        lut.outputChannels = spec.outputs;
        lut.gridPoints = spec.gridPoints;
        for (int32_t i = 0; i < 9; ++i) lut.matrix[i] = i % 4 == 0 ? 1.0f : 0.0f;
        lut.precision = static_cast<uint8_t>(spec.precision);
        lut.inputEntries = spec.inputEntries;
        lut.outputEntries = spec.outputEntries;
        lut.inputTables = tables;
        lut.clut = tables + inputBytes;
        lut.outputTables = tables + inputBytes + gridBytes;
    }
    MadeLut(const MadeLut&) = delete;
    ~MadeLut() { close_(get()); }

    IccLut* get() { return reinterpret_cast<IccLut*>(block_.data() + spec_.misalignment); }
    IccLut* operator->() { return get(); }
    void* workTable() { return get()->workTable; }
    const LutSpec& spec() const { return spec_; }
    size_t nodes() const { return nodes_; }
    int32_t maximum() const { return spec_.precision == 2 ? 65535 : 255; }

    void setInput(int32_t channel, int32_t entry, int32_t value) {
        set(get()->inputTables, static_cast<size_t>(channel) * spec_.inputEntries + entry, value);
    }
    void setOutput(int32_t channel, int32_t entry, int32_t value) {
        set(get()->outputTables, static_cast<size_t>(channel) * spec_.outputEntries + entry, value);
    }
    void setNode(size_t node, int32_t output, int32_t value) {
        set(get()->clut, node * spec_.outputs + output, value);
    }

    MadeLut& identityCurves() {
        for (int32_t i = 0; i < spec_.inputs; ++i)
            for (int32_t e = 0; e < spec_.inputEntries; ++e)
                setInput(i, e, straight(e, spec_.inputEntries));
        for (int32_t k = 0; k < spec_.outputs; ++k)
            for (int32_t e = 0; e < spec_.outputEntries; ++e)
                setOutput(k, e, straight(e, spec_.outputEntries));
        return *this;
    }
    // Every output k of a node is the scaled index of input axis k (the last axis when there
    // are more outputs than inputs).
    MadeLut& identityGrid() {
        for (size_t node = 0; node < nodes_; ++node) {
            for (int32_t k = 0; k < spec_.outputs; ++k) {
                int32_t axis = k < spec_.inputs ? k : spec_.inputs - 1;
                size_t index = node;
                for (int32_t i = spec_.inputs - 1; i > axis; --i) index /= spec_.gridPoints;
                index %= spec_.gridPoints;
                setNode(node, k, static_cast<int32_t>(index * maximum() / (spec_.gridPoints - 1)));
            }
        }
        return *this;
    }
    MadeLut& identity() { return identityCurves().identityGrid(); }

    // Entries of every table from a seeded generator.
    MadeLut& wild(uint32_t seed) { return wildCurves(seed).wildGrid(seed + 1); }
    MadeLut& wildCurves(uint32_t seed) {
        std::mt19937 random(seed);
        for (int32_t i = 0; i < spec_.inputs; ++i)
            for (int32_t e = 0; e < spec_.inputEntries; ++e) setInput(i, e, any(random));
        for (int32_t k = 0; k < spec_.outputs; ++k)
            for (int32_t e = 0; e < spec_.outputEntries; ++e) setOutput(k, e, any(random));
        return *this;
    }
    MadeLut& wildGrid(uint32_t seed) {
        std::mt19937 random(seed);
        for (size_t node = 0; node < nodes_; ++node)
            for (int32_t k = 0; k < spec_.outputs; ++k) setNode(node, k, any(random));
        return *this;
    }
    MadeLut& flatGrid(int32_t value) {
        for (size_t node = 0; node < nodes_; ++node)
            for (int32_t k = 0; k < spec_.outputs; ++k) setNode(node, k, value);
        return *this;
    }

private:
    int32_t any(std::mt19937& random) const {
        return static_cast<int32_t>(random() >> 8) % (maximum() + 1);
    }
    int32_t straight(int32_t entry, int32_t entries) const {
        return entries < 2 ? maximum() : static_cast<int32_t>(int64_t{entry} * maximum() / (entries - 1));
    }
    void set(void* table, size_t index, int32_t value) {
        if (spec_.precision == 1) {
            static_cast<uint8_t*>(table)[index] = static_cast<uint8_t>(value);
        } else {
            const auto entry = static_cast<uint16_t>(value);
            std::memcpy(static_cast<uint8_t*>(table) + index * 2, &entry, 2);
        }
    }
    LutSpec spec_;
    Close close_;
    size_t nodes_;
    std::vector<uint8_t> block_;
};

}  // namespace ko::test
