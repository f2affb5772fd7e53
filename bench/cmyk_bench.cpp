// CMYK profiles: a colour, the whole combination in both modes, its node loop.
#include <benchmark/benchmark.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <random>
#include <string>

#include "cmyk/combine_fast.h"
#include "icc/icc.h"
#include "kolink.h"

namespace {

struct Release {
    void operator()(CmykProfile* profile) const { jKoCmykReleaseProfile(profile); }
};
using Profile = std::unique_ptr<CmykProfile, Release>;

// A folder with a press profile as they come: A2B 9 points in 16 bits, B2A 33 points in 8.
class Files {
public:
    Files() : folder_(std::filesystem::temp_directory_path() / "kolink_cmyk_bench") {
        std::filesystem::create_directories(folder_);
        const auto profile = ko::icc::create(ko::icc::kCreatePrinter);
        bind(*profile, ko::fourcc("A2B0"), {4, 3, 9, 2});
        bind(*profile, ko::fourcc("B2A0"), {3, 4, 33, 1});
        ko::icc::saveProfile(profile.get(), path("press.icc").c_str());
        jKoCmykSaveProfile(Profile(jKoCmykCreateProfile()).get(), path("link.icc").c_str());
    }
    ~Files() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    std::string path(const char* name) const { return (folder_ / name).string(); }

private:
    static void straighten(void* curves, int32_t channels, int32_t precision) {
        for (int32_t i = 0; i < 256 * channels; ++i) {
            const auto entry = static_cast<uint16_t>(i % 256 * 257);  // its bytes are equal
            std::memcpy(static_cast<uint8_t*>(curves) + precision * i, &entry,
                        static_cast<size_t>(precision));
        }
    }
    static void bind(IccProfile& profile, uint32_t signature, const ko::icc::LutShape& shape) {
        auto lut = ko::icc::makeLut(shape);
        const auto sizes = ko::icc::sizesOf(shape);
        std::mt19937 random(signature);
        auto* bytes = static_cast<uint8_t*>(lut->inputTables);
        for (uint64_t i = 0; i < sizes.tables(); ++i) bytes[i] = static_cast<uint8_t>(random());
        // Straight curves: the grid is what is read everywhere.
        straighten(lut->inputTables, shape.inputChannels, shape.precision);
        straighten(lut->outputTables, shape.outputChannels, shape.precision);
        (void)ko::icc::bindBlock(profile, signature, std::move(lut));
    }
    std::filesystem::path folder_;
};

void CmykColour(benchmark::State& state) {
    const Profile profile(jKoCmykCreateProfile());
    std::mt19937 random(1);
    std::vector<std::array<int32_t, 4>> colours(4096);
    for (auto& colour : colours)
        for (int32_t& level : colour) level = static_cast<int32_t>(random() & 255);
    for (auto _ : state)
        for (auto colour : colours) {
            jKoCmykCMYKtoCMYK16(profile.get(), colour.data());
            benchmark::DoNotOptimize(colour);
        }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(colours.size()));
}
BENCHMARK(CmykColour);

void combine(benchmark::State& state, const Files& files, const char* source, const char* base) {
    CmsLinkSettings settings;
    std::memset(&settings, 0, sizeof settings);
    settings.limit = 200;
    if (*source) {
        std::strcpy(settings.sourcePath, files.path(source).c_str());
        std::strcpy(settings.destinationPath, files.path(source).c_str());
    }
    if (*base) std::strcpy(settings.basePath, files.path(base).c_str());
    for (auto _ : state) {
        const Profile result(jKoCmykCombineProfile(&settings));
        if (!result) state.SkipWithError("nothing was combined");
    }
}
void CombineIccPair(benchmark::State& state) {  // files, set-up and 33^4 nodes
    const Files files;
    combine(state, files, "press.icc", "");
}
BENCHMARK(CombineIccPair)->Unit(benchmark::kMillisecond);
void CombineIccPairOverBase(benchmark::State& state) {
    const Files files;
    combine(state, files, "press.icc", "link.icc");
}
BENCHMARK(CombineIccPairOverBase)->Unit(benchmark::kMillisecond);
void CombineWithoutSource(benchmark::State& state) {  // the plug-in's mode, less the plug-in
    const Files files;
    combine(state, files, "", "link.icc");
}
BENCHMARK(CombineWithoutSource)->Unit(benchmark::kMillisecond);

// The node loop alone, the plain one and the one by rows.
void nodeLoop(benchmark::State& state, bool fast) {
    const Files files;
    const auto profile = ko::icc::loadHeader(files.path("press.icc").c_str());
    auto* source = static_cast<IccLut*>(ko::icc::loadTag(*profile, ko::fourcc("A2B0")));
    auto* destination = static_cast<IccLut*>(ko::icc::loadTag(*profile, ko::fourcc("B2A0")));
    ko::icc::lutSetup(source);
    ko::icc::lutSetup(destination);
    const ko::cmyk::IccPair pair(*source, *destination, ko::icc::Bridge::none);
    const auto base = ko::cmyk::createProfile(), result = ko::cmyk::createProfile();
    const CmsLinkSettings settings{};
    const ko::cmyk::NodeChain chain(settings, base.get(), nullptr);
    for (auto _ : state) {
        if (fast) {
            ko::cmyk::combineNodesFast(chain, pair, *result);
        } else {
            ko::cmyk::combineNodes(
                chain, [&](ko::cmyk::Cmyk& cmyk) { convertThroughIcc(pair, cmyk); }, *result);
        }
    }
    state.SetItemsProcessed(state.iterations() * KOLINK_CMYK_NODES);
    ko::icc::lutClose(source);
    ko::icc::lutClose(destination);
}
void NodeLoopPlain(benchmark::State& state) { nodeLoop(state, false); }
BENCHMARK(NodeLoopPlain)->Unit(benchmark::kMillisecond);
void NodeLoopFast(benchmark::State& state) { nodeLoop(state, true); }
BENCHMARK(NodeLoopFast)->Unit(benchmark::kMillisecond);

}  // namespace
