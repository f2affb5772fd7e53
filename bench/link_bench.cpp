// Links: one colour, rows, beside lcms2 on a table of the same size.
#include <benchmark/benchmark.h>
#include <lcms2.h>

#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "bench/pixels.h"
#include "kolink/link.h"

namespace {
using namespace ko::bench;

struct LinkRelease {
    void operator()(LinkProfile* link) const { jKoLinkReleaseProfile(link); }
};

std::unique_ptr<LinkProfile, LinkRelease> randomLink(int32_t channels) {
    std::unique_ptr<LinkProfile, LinkRelease> link(jKoLinkCreateProfile(channels, 17));
    std::mt19937 random(1);
    const size_t entries = channels == 3 ? 17 * 17 * 17 * 4 : 17 * 17 * 17 * 17 * 4;
    for (size_t i = 0; i < entries; ++i) link->grid[i] = static_cast<uint16_t>(random() % 4096);
    return link;
}

void LinkColour(benchmark::State& state) {
    const auto channels = static_cast<int32_t>(state.range(0));
    const auto link = randomLink(channels);
    const auto pixels = makePixels(static_cast<size_t>(channels));
    for (auto _ : state)
        for (size_t at = 0; at < pixels.size(); at += static_cast<size_t>(channels)) {
            int32_t values[4] = {pixels[at], pixels[at + 1], pixels[at + 2],
                                 channels == 4 ? pixels[at + 3] : 0};
            jKoLinkCOLtoCMYK16(link.get(), values);
            benchmark::DoNotOptimize(values);
        }
    state.SetItemsProcessed(state.iterations() << 20);
}
BENCHMARK(LinkColour)->Arg(3)->Arg(4)->Unit(benchmark::kMillisecond);

void LinkRow(benchmark::State& state) {
    const auto channels = static_cast<int32_t>(state.range(0));
    const auto link = randomLink(channels);
    const auto pixels = makePixels(static_cast<size_t>(channels), state.range(1));
    std::vector<uint16_t> output(size_t{4} << 20);
    for (auto _ : state) {
        jKoLinkCOLtoCMYK16Row(link.get(), pixels.data(), 1 << 20, output.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() << 20);
}
BENCHMARK(LinkRow)->ArgsProduct({{3, 4}, {kRandom, kSmooth, kRuns}})->Unit(benchmark::kMillisecond);

// The same conversion in lcms2: 8 bits, no cache, a device link of as many points.
class LittleCmsLink {
public:
    LittleCmsLink(cmsUInt32Number channels, cmsUInt32Number points) {
        pipeline_ = cmsPipelineAlloc(nullptr, channels, 4);
        cmsStage* clut = cmsStageAllocCLut16bit(nullptr, points, channels, 4, nullptr);
        std::mt19937 random(1);
        cmsStageSampleCLut16bit(
            clut,
            [](const cmsUInt16Number*, cmsUInt16Number* out, void* cargo) {
                for (int k = 0; k < 4; ++k)
                    out[k] = static_cast<cmsUInt16Number>((*static_cast<std::mt19937*>(cargo))());
                return 1;
            },
            &random, 0);
        cmsPipelineInsertStage(pipeline_, cmsAT_BEGIN, clut);
        profile_ = cmsCreateProfilePlaceholder(nullptr);
        cmsSetProfileVersion(profile_, 2.1);
        cmsSetDeviceClass(profile_, cmsSigLinkClass);
        cmsSetColorSpace(profile_, channels == 3 ? cmsSigRgbData : cmsSigCmykData);
        cmsSetPCS(profile_, cmsSigCmykData);
        cmsWriteTag(profile_, cmsSigAToB0Tag, pipeline_);
        transform_ = cmsCreateTransform(profile_, channels == 3 ? TYPE_RGB_8 : TYPE_CMYK_8, nullptr,
                                        TYPE_CMYK_8, 0, cmsFLAGS_NOCACHE);
    }
    ~LittleCmsLink() {
        if (transform_) cmsDeleteTransform(transform_);
        cmsPipelineFree(pipeline_);
        cmsCloseProfile(profile_);
    }
    LittleCmsLink(const LittleCmsLink&) = delete;
    LittleCmsLink& operator=(const LittleCmsLink&) = delete;
    explicit operator bool() const { return transform_ != nullptr; }
    void convert(const uint8_t* input, uint8_t* output, cmsUInt32Number pixels) const {
        cmsDoTransform(transform_, input, output, pixels);
    }

private:
    cmsPipeline* pipeline_;
    cmsHPROFILE profile_;
    cmsHTRANSFORM transform_;
};

void LittleCmsRow(benchmark::State& state) {
    const auto channels = static_cast<cmsUInt32Number>(state.range(0));
    const LittleCmsLink link(channels, static_cast<cmsUInt32Number>(state.range(1)));
    const auto pixels = makePixels(channels, state.range(2));
    std::vector<uint8_t> output(size_t{4} << 20);
    if (!link) return state.SkipWithError("no transform");
    for (auto _ : state) {
        link.convert(pixels.data(), output.data(), 1 << 20);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() << 20);
}
BENCHMARK(LittleCmsRow)
    ->ArgsProduct({{3, 4}, {17}, {kRandom, kSmooth, kRuns}})
    ->ArgsProduct({{4}, {33}, {kRandom, kSmooth, kRuns}})
    ->Unit(benchmark::kMillisecond);

void LittleCmsColour(benchmark::State& state) {
    const auto channels = static_cast<cmsUInt32Number>(state.range(0));
    const LittleCmsLink link(channels, 17);
    const auto pixels = makePixels(channels);
    if (!link) return state.SkipWithError("no transform");
    for (auto _ : state)
        for (size_t at = 0; at < pixels.size(); at += channels) {
            uint8_t output[4];
            link.convert(&pixels[at], output, 1);
            benchmark::DoNotOptimize(output);
        }
    state.SetItemsProcessed(state.iterations() << 20);
}
BENCHMARK(LittleCmsColour)->Arg(3)->Arg(4)->Unit(benchmark::kMillisecond);

// A link from two of Debian's press profiles, or a monitor and a press.
void LinkBuild(benchmark::State& state, LinkProfile* (*build)(const CmsLinkSettings*),
               const char* source) {
    CmsLinkSettings settings;
    jCmsInitCms(&settings);
    std::strcpy(settings.sourcePath, source);
    std::strcpy(settings.destinationPath, "/usr/share/color/icc/ghostscript/default_cmyk.icc");
    for (auto _ : state) {
        const std::unique_ptr<LinkProfile, LinkRelease> link(build(&settings));
        if (!link) {
            state.SkipWithError("the link cannot be built");
            break;
        }
    }
}
constexpr char kRgb[] = "/usr/share/color/icc/ghostscript/default_rgb.icc";
constexpr char kCmyk[] = "/usr/share/color/icc/ghostscript/default_cmyk.icc";
BENCHMARK_CAPTURE(LinkBuild, own_rgb, jKoLinkCombineRgbProfile, kRgb)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LinkBuild, own_cmyk, jKoLinkCombineCmykProfile, kCmyk)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LinkBuild, system_rgb, jKoLinkCombineIcmRgbProfile, kRgb)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LinkBuild, system_cmyk, jKoLinkCombineIcmCmykProfile, kCmyk)
    ->Unit(benchmark::kMillisecond);

}  // namespace
