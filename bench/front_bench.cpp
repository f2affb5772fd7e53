// The host's conversions: one colour and rows, through the built-in tables and through links.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "kolink/colour.h"

namespace {

constexpr int32_t kPixels = 1 << 20;
constexpr char kRgb[] = "/usr/share/color/icc/ghostscript/default_rgb.icc";
constexpr char kCmyk[] = "/usr/share/color/icc/ghostscript/default_cmyk.icc";

std::vector<uint8_t> randomBytes(size_t count) {
    std::mt19937 random(3);
    std::vector<uint8_t> bytes(count);
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
    return bytes;
}

// Argument 1: through links; 0: through the built-in tables.
bool setUp(benchmark::State& state) {
    jColorEndProfile();
    if (state.range(0) == 0 || jColorSetupProfile(kRgb, kCmyk, 0) == 1) return true;
    state.SkipWithError("the profiles cannot be set up");
    return false;
}

void FrontRgbToCmyk(benchmark::State& state) {
    if (!setUp(state)) return;
    const auto pixels = randomBytes(size_t{3} * kPixels);
    for (auto _ : state)
        for (size_t at = 0; at < pixels.size(); at += 3)
            benchmark::DoNotOptimize(jColorRGBtoCMYK(pixels[at], pixels[at + 1], pixels[at + 2]));
    state.SetItemsProcessed(state.iterations() * kPixels);
    jColorEndProfile();
}
BENCHMARK(FrontRgbToCmyk)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void FrontRgbToCmykRow(benchmark::State& state) {
    if (!setUp(state)) return;
    const auto pixels = randomBytes(size_t{3} * kPixels);
    std::vector<uint8_t> output(size_t{4} * kPixels);
    for (auto _ : state) {
        jColorRGBtoCMYKRow(pixels.data(), kPixels, output.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kPixels);
    jColorEndProfile();
}
BENCHMARK(FrontRgbToCmykRow)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void FrontCmykToRgbRow(benchmark::State& state) {
    if (!setUp(state)) return;
    const auto pixels = randomBytes(size_t{4} * kPixels);
    std::vector<uint8_t> output(size_t{3} * kPixels);
    for (auto _ : state) {
        jColorCMYKtoRGBRow(pixels.data(), kPixels, output.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kPixels);
    jColorEndProfile();
}
BENCHMARK(FrontCmykToRgbRow)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace
