// LUT tags: setting one up, one colour through every evaluator, a row through the prepared one;
// colours between connection spaces.
#include <benchmark/benchmark.h>

#include <array>
#include <random>
#include <vector>

#include "icc/icc.h"
#include "icc/lut_fast.h"

namespace {

using ko::icc::FastLut;
using Colour = FastLut::Colour;

// A table of any shape with seeded entries that rise along the curves.
struct SeededLut {
    ko::Block<IccLut> lut;
    SeededLut(int32_t inputs, int32_t outputs, int32_t gridPoints, int32_t precision)
        : lut(ko::icc::makeLut({inputs, outputs, gridPoints, precision})) {
        std::mt19937 random(1);
        const int32_t maximum = ko::icc::lutMaximum(precision);
        const auto put = [&](void* table, size_t index, int32_t value) {
            if (precision == 1) {
                static_cast<uint8_t*>(table)[index] = static_cast<uint8_t>(value);
            } else {
                const auto entry = static_cast<uint16_t>(value);
                std::memcpy(static_cast<uint8_t*>(table) + 2 * index, &entry, sizeof entry);
            }
        };
        for (int32_t i = 0; i < inputs * 256; ++i)
            put(lut->inputTables, static_cast<size_t>(i), i % 256 * maximum / 255);
        for (int32_t i = 0; i < outputs * 256; ++i)
            put(lut->outputTables, static_cast<size_t>(i), i % 256 * maximum / 255);
        size_t entries = static_cast<size_t>(outputs);
        for (int32_t i = 0; i < inputs; ++i) entries *= static_cast<size_t>(gridPoints);
        for (size_t i = 0; i < entries; ++i)
            put(lut->clut, i, static_cast<int32_t>(random() >> 1) % (maximum + 1));
    }
    ~SeededLut() { ko::icc::lutClose(lut.get()); }
};

std::vector<Colour> seededColours(int32_t maximum) {
    std::mt19937 random(2);
    std::vector<Colour> colours(4096);
    for (Colour& colour : colours)
        for (int32_t& value : colour) value = static_cast<int32_t>(random() >> 1) % (maximum + 1);
    return colours;
}

// inputs, outputs, grid points, bytes an entry: as press profiles have them, and a small one
void shapes(benchmark::internal::Benchmark* bench) {
    bench->Args({4, 3, 9, 2})->Args({3, 4, 33, 1})->Args({3, 4, 33, 2})->Args({4, 4, 17, 1});
}

void LutSetup(benchmark::State& state) {
    SeededLut made(4, 3, 9, static_cast<int32_t>(state.range(0)));
    for (auto _ : state) {
        ko::icc::lutSetup(made.lut.get());
        ko::icc::lutClose(made.lut.get());
    }
}
BENCHMARK(LutSetup)->ArgName("bytes")->Arg(1)->Arg(2);

template <int32_t Evaluate(const IccLut&, int32_t*) noexcept>
void oneColour(benchmark::State& state, int32_t maximum) {
    SeededLut made(static_cast<int32_t>(state.range(0)), static_cast<int32_t>(state.range(1)),
                   static_cast<int32_t>(state.range(2)), static_cast<int32_t>(state.range(3)));
    ko::icc::lutSetup(made.lut.get());
    const auto colours = seededColours(maximum);
    for (auto _ : state)
        for (auto colour : colours) {  // a copy: the call works in place
            Evaluate(*made.lut, colour.data());
            benchmark::DoNotOptimize(colour);
        }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(colours.size()));
}
void LutColor(benchmark::State& state) {
    oneColour<ko::icc::lutColor>(state, state.range(3) == 2 ? 65535 : 255);
}
BENCHMARK(LutColor)->Apply(shapes);
void LutColor16(benchmark::State& state) { oneColour<ko::icc::lutColor16>(state, 65535); }
BENCHMARK(LutColor16)->Apply(shapes);

void LutPrepare(benchmark::State& state) {  // what a FastLut costs before its first colour
    SeededLut made(static_cast<int32_t>(state.range(0)), static_cast<int32_t>(state.range(1)),
                   static_cast<int32_t>(state.range(2)), static_cast<int32_t>(state.range(3)));
    ko::icc::lutSetup(made.lut.get());
    for (auto _ : state) benchmark::DoNotOptimize(FastLut(*made.lut));
}
BENCHMARK(LutPrepare)->Apply(shapes)->Unit(benchmark::kMicrosecond);

void LutRow(benchmark::State& state) {  // 33 colours that differ in their last channel
    SeededLut made(static_cast<int32_t>(state.range(0)), static_cast<int32_t>(state.range(1)),
                   static_cast<int32_t>(state.range(2)), static_cast<int32_t>(state.range(3)));
    ko::icc::lutSetup(made.lut.get());
    const FastLut fast(*made.lut);
    const auto colours = seededColours(ko::icc::lutMaximum(made.lut->precision));
    std::array<Colour, 33> row;
    for (auto _ : state)
        for (size_t first = 0; first + row.size() <= colours.size(); first += row.size()) {
            for (size_t i = 0; i < row.size(); ++i) {
                row[i] = colours[first];
                row[i][static_cast<size_t>(made.lut->inputChannels) - 1] = colours[first + i][3];
            }
            fast.colours(row.data(), row.size());
            benchmark::DoNotOptimize(row);
        }
    state.SetItemsProcessed(state.iterations() *
                            static_cast<int64_t>(colours.size() / row.size() * row.size()));
}
BENCHMARK(LutRow)->Apply(shapes);

template <void Convert(double*, const double*) noexcept>
void betweenSpaces(benchmark::State& state, bool lab) {
    const double white[3] = {96.42, 100, 82.49};
    std::mt19937 random(3);
    std::vector<std::array<double, 3>> colours(4096);
    for (auto& colour : colours)
        for (size_t i = 0; i < 3; ++i)
            colour[i] = static_cast<double>(random()) / 4294967296.0 * 100 - (lab && i > 0 ? 50 : 0);
    for (auto _ : state)
        for (auto colour : colours) {
            Convert(colour.data(), white);
            benchmark::DoNotOptimize(colour);
        }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(colours.size()));
}
void XyzToLab(benchmark::State& state) { betweenSpaces<ko::icc::xyzToLab>(state, false); }
BENCHMARK(XyzToLab);
void LabToXyz(benchmark::State& state) { betweenSpaces<ko::icc::labToXyz>(state, true); }
BENCHMARK(LabToXyz);

}  // namespace
