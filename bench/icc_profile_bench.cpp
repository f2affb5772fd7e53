// ICC profiles: loading each kind, saving, colour arithmetic, powers.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "icc/icc.h"
#include "icc/power.h"

namespace {

using namespace ko::icc;
using ko::fourcc;

std::string benchPath(const char* name) {
    return (std::filesystem::temp_directory_path() / name).string();
}

// A printer profile of the size that presses have.
struct SavedProfile {
    std::string path = benchPath("kolink-bench-profile.icc");
    ProfilePtr profile = create(kCreatePrinter);

    explicit SavedProfile(const LutShape& shape) {
        (void)bindBlock(*profile, fourcc("A2B0"), makeLut(shape));
        saveProfile(profile.get(), path.c_str());
    }
    ~SavedProfile() { std::filesystem::remove(path); }
};

const LutShape kForward16 = {4, 3, 9, 2};   // A2B of a press profile
const LutShape kBackward8 = {3, 4, 33, 1};  // B2A
const LutShape kLink8 = {4, 4, 33, 1};      // what this library writes

void IccLoadHeader(benchmark::State& state) {
    const SavedProfile saved(kForward16);
    for (auto _ : state) benchmark::DoNotOptimize(loadHeader(saved.path.c_str()));
}
BENCHMARK(IccLoadHeader);

void IccLoadLut(benchmark::State& state, const LutShape& shape) {
    const SavedProfile saved(shape);
    for (auto _ : state) {
        const auto profile = loadHeader(saved.path.c_str());
        benchmark::DoNotOptimize(loadTag(*profile, fourcc("A2B0")));
    }
}
BENCHMARK_CAPTURE(IccLoadLut, forward16, kForward16);
BENCHMARK_CAPTURE(IccLoadLut, backward8, kBackward8);
BENCHMARK_CAPTURE(IccLoadLut, link8, kLink8);

void IccSaveLut(benchmark::State& state, const LutShape& shape) {
    const SavedProfile saved(shape);
    for (auto _ : state)
        benchmark::DoNotOptimize(saveProfile(saved.profile.get(), saved.path.c_str()));
}
BENCHMARK_CAPTURE(IccSaveLut, forward16, kForward16);
BENCHMARK_CAPTURE(IccSaveLut, link8, kLink8);

std::vector<double> levels() {
    std::mt19937_64 random(1);
    std::vector<double> values(3 * 1024);
    for (double& value : values) value = 0.01 + static_cast<double>(random() >> 11) * 0x1p-53;
    return values;
}

constexpr double kWhite[3] = {0.9642, 1.0, 0.8249};

void IccXyzToLab(benchmark::State& state) {
    const auto values = levels();
    for (auto _ : state)
        for (size_t at = 0; at < values.size(); at += 3) {
            double colour[3] = {values[at], values[at + 1], values[at + 2]};
            xyzToLab(colour, kWhite);
            benchmark::DoNotOptimize(colour);
        }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(values.size() / 3));
}
BENCHMARK(IccXyzToLab);

void IccLabToXyz(benchmark::State& state) {
    auto values = levels();
    for (size_t at = 0; at < values.size(); at += 3) xyzToLab(&values[at], kWhite);
    for (auto _ : state)
        for (size_t at = 0; at < values.size(); at += 3) {
            double colour[3] = {values[at], values[at + 1], values[at + 2]};
            labToXyz(colour, kWhite);
            benchmark::DoNotOptimize(colour);
        }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(values.size() / 3));
}
BENCHMARK(IccLabToXyz);

template <class Function>
void IccPower(benchmark::State& state, Function function) {
    const auto values = levels();
    for (auto _ : state)
        for (const double value : values) benchmark::DoNotOptimize(function(value));
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(values.size()));
}
BENCHMARK_CAPTURE(IccPower, third, powerOfThird);
BENCHMARK_CAPTURE(IccPower, cube, cube);
BENCHMARK_CAPTURE(IccPower, general, [](double value) { return power(value, 2.2); });

}  // namespace
