// Tone curves: the spline's table, one value, a colour, a file.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tone/tone.h"

namespace {

// count control points over the 256 levels, bent a little.
std::vector<TonePoint> pointsOf(int32_t count) {
    std::vector<TonePoint> points;
    for (int32_t j = 0; j < count; ++j) {
        const int32_t x = j * 255 / (count - 1);
        points.push_back({x, x + x * (255 - x) / 300});
    }
    return points;
}

void ToneSplineValue(benchmark::State& state) {
    const auto points = pointsOf(static_cast<int32_t>(state.range(0)));
    int32_t x = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(ko::tone::splineTone(points, x));
        x = (x + 1) % 256;
    }
}
BENCHMARK(ToneSplineValue)->Arg(3)->Arg(17);

void ToneSplineTable(benchmark::State& state) {  // 256 values, each by itself
    const auto points = pointsOf(static_cast<int32_t>(state.range(0)));
    for (auto _ : state)
        for (int32_t x = 0; x < 256; ++x) benchmark::DoNotOptimize(ko::tone::splineTone(points, x));
}
BENCHMARK(ToneSplineTable)->Arg(3)->Arg(17)->Arg(65);

void ToneSplineTableSweep(benchmark::State& state) {  // the same values in one sweep
    const auto points = pointsOf(static_cast<int32_t>(state.range(0)));
    for (auto _ : state) {
        ko::tone::SplineSweep sweep(points);
        for (int32_t x = 0; x < 256; ++x) benchmark::DoNotOptimize(sweep.at(x));
    }
}
BENCHMARK(ToneSplineTableSweep)->Arg(3)->Arg(17)->Arg(65)->Arg(256);

void ToneRgbThroughDcc(benchmark::State& state) {
    const auto curve = ko::tone::createToneCurve(6);
    int32_t cmyk[4];
    uint8_t level = 0;
    for (auto _ : state) {
        ko::tone::rgbToCmyk16(*curve, level, 100, 200, cmyk);
        benchmark::DoNotOptimize(cmyk);
        ++level;
    }
}
BENCHMARK(ToneRgbThroughDcc);

void ToneLoadDcc(benchmark::State& state) {  // file, guard and six tables
    const auto curve = ko::tone::createToneCurve(6);
    const auto path = (std::filesystem::temp_directory_path() / "kolink-bench.dcc").string();
    DccSettings settings{600, 600, 200, 33, curve.get()};
    ko::tone::saveDcc(settings, path.c_str());
    for (auto _ : state) benchmark::DoNotOptimize(ko::tone::loadDccCurve(*curve, path.c_str()));
    std::filesystem::remove(path);
}
BENCHMARK(ToneLoadDcc);

}  // namespace
