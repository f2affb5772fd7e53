// CMYK profiles and the small tables: one colour, rows, files.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bench/pixels.h"
#include "kolink.h"

namespace {
using namespace ko::bench;

struct Free {
    void operator()(void* block) const { jMemFree(block); }
};
template <class Record>
using Owned = std::unique_ptr<Record, Free>;

template <class Record>
Owned<Record> randomised(Record* record, uint32_t* nodes, size_t count) {
    std::mt19937 random(1);
    for (size_t at = 0; at < count; ++at) nodes[at] = static_cast<uint32_t>(random());
    return Owned<Record>(record);
}
Owned<CmykProfile> randomProfile() {
    auto* profile = jKoCmykCreateProfile();
    return randomised(profile, profile->grid, KOLINK_CMYK_NODES);
}
Owned<CmykLut> randomCmykLut() {
    auto* table = jKoCmykCreateCmykLut();
    return randomised(table, table->nodes, KOLINK_CMYK_LUT_NODES);
}
Owned<RgbLut> randomRgbLut() {
    auto* table = jKoRgbCreateRgbLut();
    return randomised(table, table->nodes, KOLINK_RGB_LUT_NODES);
}

template <class Record, class Convert>
void oneByOne(benchmark::State& state, size_t channels, const Record& record, Convert convert) {
    const auto pixels = makePixels(channels);
    for (auto _ : state)
        for (size_t at = 0; at < pixels.size(); at += channels) {
            int32_t values[4];
            for (size_t channel = 0; channel < channels; ++channel) values[channel] = pixels[at + channel];
            convert(record.get(), values);
            benchmark::DoNotOptimize(values);
        }
    state.SetItemsProcessed(state.iterations() << 20);
}

template <class Record, class Convert>
void inRows(benchmark::State& state, size_t channels, const Record& record, Convert convert,
            int64_t kind = kRandom) {
    const auto pixels = makePixels(channels, kind);
    std::vector<uint16_t> output(channels << 20);
    for (auto _ : state) {
        convert(record.get(), pixels.data(), 1 << 20, output.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() << 20);
}

void CmykProfileColour(benchmark::State& state) { oneByOne(state, 4, randomProfile(), jKoCmykCMYKtoCMYK16); }
void CmykProfileRow(benchmark::State& state) { inRows(state, 4, randomProfile(), jKoCmykCMYKtoCMYK16Row, state.range(0)); }
void CmykTableColour(benchmark::State& state) { oneByOne(state, 4, randomCmykLut(), jKoCmykLutCMYKtoCMYK16); }
void CmykTableRow(benchmark::State& state) { inRows(state, 4, randomCmykLut(), jKoCmykLutCMYKtoCMYK16Row); }
void RgbTableColour(benchmark::State& state) { oneByOne(state, 3, randomRgbLut(), jKoRgbRGBtoRGB16); }
void RgbTableRow(benchmark::State& state) { inRows(state, 3, randomRgbLut(), jKoRgbRGBtoRGB16Row); }
BENCHMARK(CmykProfileColour)->Unit(benchmark::kMillisecond);
BENCHMARK(CmykProfileRow)->Arg(kRandom)->Arg(kSmooth)->Arg(kRuns)->Unit(benchmark::kMillisecond);
BENCHMARK(CmykTableColour)->Unit(benchmark::kMillisecond);
BENCHMARK(CmykTableRow)->Unit(benchmark::kMillisecond);
BENCHMARK(RgbTableColour)->Unit(benchmark::kMillisecond);
BENCHMARK(RgbTableRow)->Unit(benchmark::kMillisecond);

// A file in the temporary folder for the length of a benchmark.
struct BenchFile {
    std::string path = (std::filesystem::temp_directory_path() / "kolink-bench-").string() +
                       std::to_string(std::random_device()());
    explicit BenchFile(const char* extension) { path += extension; }
    ~BenchFile() { std::filesystem::remove(path); }
};

void CmykTableSave(benchmark::State& state) {
    const BenchFile file(".txt");
    const auto table = randomCmykLut();
    for (auto _ : state) jKoCmykSaveCmykLut(table.get(), file.path.c_str());
}
BENCHMARK(CmykTableSave)->Unit(benchmark::kMillisecond);

void CmykTableLoad(benchmark::State& state) {
    const BenchFile file(".txt");
    const auto table = randomCmykLut();
    jKoCmykSaveCmykLut(table.get(), file.path.c_str());
    for (auto _ : state) jKoCmykLoadCmykLut(table.get(), file.path.c_str());
}
BENCHMARK(CmykTableLoad)->Unit(benchmark::kMillisecond);

void CmykProfileSave(benchmark::State& state) {
    const BenchFile file(".icc");
    const auto profile = randomProfile();
    for (auto _ : state) jKoCmykSaveProfile(profile.get(), file.path.c_str());
}
BENCHMARK(CmykProfileSave)->Unit(benchmark::kMillisecond);

void CmykProfileLoad(benchmark::State& state) {  // its grid is copied
    const BenchFile file(".icc");
    const auto profile = randomProfile();
    jKoCmykSaveProfile(profile.get(), file.path.c_str());
    for (auto _ : state) jKoCmykLoadProfile(profile.get(), file.path.c_str());
}
BENCHMARK(CmykProfileLoad)->Unit(benchmark::kMillisecond);

void CmykProfileLoadFromLut(benchmark::State& state) {  // its grid is evaluated
    const BenchFile file(".icc");
    IccProfile* source = jIccCreate(1);
    const auto precision = static_cast<size_t>(state.range(0));
    const size_t tables = 2 * 4 * 256 * precision, grid = 9 * 9 * 9 * 9 * 4 * precision;
    auto* lut = static_cast<IccLut*>(jMemAlloc(static_cast<uint32_t>(sizeof(IccLut) + tables + grid)));
    *lut = {4, 4, 9, {1, 0, 0, 0, 1, 0, 0, 0, 1}, static_cast<uint8_t>(precision), 0, 256, 256, {}, {}, {}, {}};
    auto* bytes = reinterpret_cast<uint8_t*>(lut + 1);
    std::mt19937 random(1);
    for (size_t at = 0; at < tables + grid; ++at) bytes[at] = static_cast<uint8_t>(random());
    lut->inputTables = bytes;
    lut->clut = bytes + tables / 2;
    lut->outputTables = bytes + tables / 2 + grid;
    jIccBindTag(source, 0x41324230, lut);
    jIccSaveLinkProfile(source, file.path.c_str());
    jIccRelease(source);
    const Owned<CmykProfile> profile(jKoCmykCreateProfile());
    for (auto _ : state) jKoCmykLoadProfile(profile.get(), file.path.c_str());
}
BENCHMARK(CmykProfileLoadFromLut)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

}  // namespace
