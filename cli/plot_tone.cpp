// Pictures of tone curve files.
#include <algorithm>
#include <cstring>

#include "cli/chart.h"
#include "cli/errors.h"
#include "cli/icc_input.h"
#include "cli/plot.h"
#include "cli/system.h"

namespace ko::cli {
namespace {

constexpr double kChart = 360, kCard = 456, kCardHeight = 470, kGap = 20;
constexpr const char* kGcrLine = "#7a5af8";
constexpr const char* kUcrLine = "#0e9384";

struct Channel {
    const char* name;
    const char* colour;
};

double valueAt(const ToneCurve& curve, size_t channel, size_t x) {
    return tone::valuesOf(curve, static_cast<int32_t>(channel))[x] / 255.0;
}

void drawCurves(Svg& svg, double x, double y, const std::string& title, const ToneCurve& curve, size_t first,
                std::span<const Channel> channels) {
    svg.rect(x, y, kCard, kCardHeight, R"(class="card" rx="6")");
    svg.text({x + 16, y + 24}, title, R"(class="name")");
    Chart chart(svg, x + 56, y + 40, kChart, kChart, Labels::full, "in, %", "out, %");
    chart.diagonal();
    std::vector<std::pair<std::string, std::string>> legend;
    for (size_t i = 0; i < channels.size(); ++i) {
        std::vector<double> values;
        for (size_t level = 0; level < 256; ++level) values.push_back(valueAt(curve, first + i, level));
        chart.curve(values, channels[i].colour);
        legend.emplace_back(channels[i].name, channels[i].colour);
    }
    for (size_t i = 0; i < channels.size(); ++i)
        for (size_t level = 0; level < 256; ++level)
            if (tone::flagsOf(curve, static_cast<int32_t>(first + i))[level])
                chart.dot(static_cast<double>(level) / 255, valueAt(curve, first + i, level), channels[i].colour);
    legend.emplace_back("out = in", "");
    drawLegend(svg, {x + 56, y + kCardHeight - 16}, legend);
}

struct Strip {
    std::string name;
    std::vector<Rgb> in, out;
};

void drawStrips(Svg& svg, double x, double y, double height, const std::vector<Strip>& strips) {
    svg.rect(x, y, kCard, height, R"(class="card" rx="6")");
    svg.text({x + 16, y + 24}, "Ramps", R"(class="name")");
    double top = y + 40;
    for (const Strip& strip : strips) {
        svg.text({x + 16, top + 26}, strip.name, R"(class="name")");
        svg.text({x + 104, top + 13}, "in", R"(class="tick" text-anchor="end")");
        drawStrip(svg, x + 110, top, kCard - 128, 20, strip.in);
        svg.text({x + 104, top + 37}, "out", R"(class="tick" text-anchor="end")");
        drawStrip(svg, x + 110, top + 24, kCard - 128, 20, strip.out);
        top += 62;
    }
}

Strip inkStrip(const ToneCurve& curve, size_t channel, size_t ink) {
    Strip strip{kInkNames[ink], {}, {}};
    for (size_t level = 0; level < 256; level += 3) {
        Cmyk in{}, out{};
        in[ink] = static_cast<double>(level) / 255;
        out[ink] = std::clamp(valueAt(curve, channel, level), 0.0, 1.0);
        strip.in.push_back(inkColour(in));
        strip.out.push_back(inkColour(out));
    }
    return strip;
}

// A DCC file turns RGB into inks; its ramps run from white to the full light taken away.
Strip lightStrip(const ToneCurve& curve, const char* name, const std::array<int, 3>& falls) {
    Strip strip{name, {}, {}};
    for (int level = 0; level < 256; level += 3) {
        uint8_t rgb[3];
        for (size_t i = 0; i < 3; ++i) rgb[i] = static_cast<uint8_t>(falls[i] ? 255 - level : 255);
        int32_t inks[4] = {};
        jKoToneRGBtoCMYK16(&curve, rgb[0], rgb[1], rgb[2], inks);
        Cmyk out;
        for (size_t ink = 0; ink < 4; ++ink) out[ink] = std::clamp(inks[ink] / 4080.0, 0.0, 1.0);
        strip.in.push_back({rgb[0] / 255.0, rgb[1] / 255.0, rgb[2] / 255.0});
        strip.out.push_back(inkColour(out));
    }
    return strip;
}

std::string page(const PageHead& head, size_t charts, const auto& drawCharts, const std::vector<Strip>& strips) {
    const double top = headHeight(head.lines.size()) + 8;
    const double stripsHeight = 48 + 62 * static_cast<double>(strips.size());
    const double width = 2 * kMargin + static_cast<double>(charts + 1) * (kCard + kGap) - kGap;
    Svg svg(width, top + std::max(kCardHeight, stripsHeight) + kMargin, head.title);
    drawHead(svg, head);
    drawCharts(svg, top);
    drawStrips(svg, kMargin + static_cast<double>(charts) * (kCard + kGap), top, stripsHeight, strips);
    return svg.finish();
}

}  // namespace

std::string plotTone(const InputFile& file) {
    static constexpr Channel kInks[] = {{"C", kInkLines[0]}, {"M", kInkLines[1]}, {"Y", kInkLines[2]}, {"K", kInkLines[3]}};
    static constexpr Channel kBlack[] = {{"K", kInkLines[3]}};
    static constexpr Channel kReplacement[] = {{"GCR", kGcrLine}, {"UCR", kUcrLine}};
    const std::string name = fromPath(toPath(file.path).filename());
    if (file.type == FileType::blackCurve) {
        const ToneCurvePtr curve = newToneCurve(1);
        tone::readBkcCurve(*curve, file.text());
        const PageHead head{fieldText(curve->title), {name + "     ·     black correction"}};
        return page(head, 1, [&](Svg& svg, double y) { drawCurves(svg, kMargin, y, "Black", *curve, 0, kBlack); },
                    {inkStrip(*curve, 0, 3)});
    }
    if (file.type == FileType::cmykToneCurve) {
        const ToneCurvePtr curve = newToneCurve(4);
        tone::readCmykToneCurve(*curve, file.text());
        std::vector<Strip> strips;
        for (size_t ink = 0; ink < 4; ++ink) strips.push_back(inkStrip(*curve, ink, ink));
        return page({name, {"CMYK tone curves"}}, 1,
                    [&](Svg& svg, double y) { drawCurves(svg, kMargin, y, "Tone curves", *curve, 0, kInks); }, strips);
    }
    const ToneCurvePtr curve = newToneCurve(6);
    DccSettings settings{};
    settings.curves = curve.get();
    tone::readDcc(settings, file.text());
    const PageHead head{fieldText(curve->title),
                        {name + "     ·     DCC settings, " + std::to_string(settings.DPIX) + " x " +
                         std::to_string(settings.DPIY) + " dpi, total ink " + std::to_string(settings.WINK) + " of 255"}};
    const ToneCurvePtr conversion = newToneCurve(6);
    tone::readDccCurve(*conversion, file.text());
    const std::vector<Strip> strips = {
        lightStrip(*conversion, "Cyan", {1, 0, 0}),  lightStrip(*conversion, "Magenta", {0, 1, 0}),
        lightStrip(*conversion, "Yellow", {0, 0, 1}), lightStrip(*conversion, "Red", {0, 1, 1}),
        lightStrip(*conversion, "Green", {1, 0, 1}), lightStrip(*conversion, "Blue", {1, 1, 0}),
        lightStrip(*conversion, "Grey", {1, 1, 1}),
    };
    return page(head, 2, [&](Svg& svg, double y) {
        drawCurves(svg, kMargin, y, "Inks", *curve, 0, kInks);
        drawCurves(svg, kMargin + kCard + kGap, y, "Grey replacement and under-colour removal", *curve, 4, kReplacement);
    }, strips);
}

}  // namespace ko::cli
