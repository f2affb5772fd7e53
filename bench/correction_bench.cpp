// The colour-correction page: what every move of the mouse costs, and the change itself.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>

#include "cmyk/dialog/colour_correction.h"
#include "front/front.h"

namespace {

using ko::cmyk::ColourCorrection;
using ko::cmyk::Surface;

void display(std::span<const uint32_t> cmyk, std::span<uint32_t> rgb) {  // as the dialog's own
    for (size_t at = 0; at < cmyk.size(); ++at) {
        const auto level = [&](int shift) { return static_cast<int32_t>(cmyk[at] >> shift & 255); };
        const auto colour = ko::front::cmykToRgb(level(24), level(16), level(8), level(0));
        rgb[at] = ko::packRgb(colour.r, colour.g, colour.b);
    }
}

// A page on a profile; the whole range takes in every node.
struct Page {
    explicit Page(bool whole) : profile(ko::cmyk::createProfile()), model(*profile, history) {
        if (whole) {
            model.setHueReach("180");
            model.setSaturationReach("100");
        }
        for (int32_t ink = 0; ink < 4; ++ink) model.setChanged(ink, "40");
    }
    ko::Block<CmykProfile> profile;
    ko::dialog::History history;
    ColourCorrection model;
};

void count(benchmark::State& state, bool whole) {
    Page page(whole);
    for (auto _ : state) {
        page.model.setHueReach(whole ? "180" : "30");
        benchmark::DoNotOptimize(page.model.nodesInRange());
    }
    state.SetItemsProcessed(state.iterations() * page.model.nodesInRange());
}
void CorrectionCount(benchmark::State& state) { count(state, false); }
BENCHMARK(CorrectionCount)->Unit(benchmark::kMicrosecond);
void CorrectionCountWhole(benchmark::State& state) { count(state, true); }
BENCHMARK(CorrectionCountWhole)->Unit(benchmark::kMicrosecond);

void CorrectionPick(benchmark::State& state) {  // a move of the mouse in the area
    Page page(false);
    int32_t x = 0;
    for (auto _ : state) page.model.press(Surface::area, {360, 201}, {x = (x + 7) % 360, 50});
}
BENCHMARK(CorrectionPick)->Unit(benchmark::kMicrosecond);

void CorrectionAreaPicture(benchmark::State& state) {  // another lightness or black
    Page page(false);
    for (auto _ : state) benchmark::DoNotOptimize(page.model.areaCells(display));
}
BENCHMARK(CorrectionAreaPicture)->Unit(benchmark::kMicrosecond);

void CorrectionChangeWhole(benchmark::State& state) {
    Page page(true);
    int32_t changed = 0;
    for (auto _ : state) {
        changed = page.model.change();
        state.PauseTiming();
        page.history.undo();
        page.model.profileChanged();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * changed);
}
BENCHMARK(CorrectionChangeWhole)->Unit(benchmark::kMillisecond);

}  // namespace
