// Pictures of ICC profiles and CMYK tables.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <optional>

#include "cli/errors.h"
#include "cli/icc_input.h"
#include "cli/link_page.h"
#include "cli/plot.h"
#include "cli/system.h"
#include "cmyk/cmyk.h"
#include "cmyk/description.h"
#include "icc/power.h"

namespace ko::cli {
namespace {

std::string fileName(const InputFile& file) { return fromPath(toPath(file.path).filename()); }

std::string firstLine(const std::string& text) { return text.substr(0, text.find_first_of("\r\n")); }

void addDots(InkCurve& curve, const CmykProfile& profile, int32_t index) {
    const cmyk::ControlPoints control = cmyk::controlPoints(profile, index);
    for (int32_t at = 0; at < control.count; ++at)
        curve.dots.emplace_back(control.points[at].x / 255.0, control.points[at].y / 255.0);
}

std::vector<double> tableOf(const IccLut& lut, const void* tables, int32_t entries, int32_t channel) {
    std::vector<double> values;
    const int32_t step = std::max(1, entries / 512);
    for (int32_t i = 0; i < entries; i += step) {
        const int64_t at = int64_t{channel} * entries + i;
        values.push_back(lut.precision == 1 ? static_cast<const uint8_t*>(tables)[at] / 255.0
                                            : static_cast<const uint16_t*>(tables)[at] / 65535.0);
    }
    return values;
}

std::string description(const IccInput& icc) {
    const auto* text = icc.tag<const char>(fourcc("desc"));
    return text ? fromForeignText(text) : std::string();
}

std::string plotLink(const IccInput& icc, IccLut* lut) {
    LinkPage page;
    const InputFile& file = icc.file();
    const std::string text = description(icc);
    const bool isOwn = cmyk::holdsEditingData(text);
    page.head.title = isOwn ? fileName(file) : text.empty() ? fileName(file) : firstLine(text);
    page.head.lines = {fileName(file) + "     ·     ICC device link, CMYK to CMYK, " + std::to_string(lut->gridPoints) +
                       " grid points an ink, " + std::to_string(lut->precision * 8) + " bits"};
    if (isOwn) {
        const CmykProfilePtr profile = cmykProfile(icc);
        page.head.title = fieldText(profile->name);
        const std::string comment = fieldText(profile->comment);
        if (!comment.empty()) page.head.lines.push_back(firstLine(comment));
        for (int32_t i = 0; i < 8; ++i) addDots(page.curves[static_cast<size_t>(i)], *profile, i);
    }
    for (int32_t i = 0; i < 4; ++i) {
        page.curves[static_cast<size_t>(i)].values = tableOf(*lut, lut->inputTables, lut->inputEntries, i);
        page.curves[static_cast<size_t>(4 + i)].values = tableOf(*lut, lut->outputTables, lut->outputEntries, i);
    }
    const ReadyLut ready(lut);
    if (!ready) failOn(file.path, "its table cannot be evaluated");
    page.convert = [&ready](const Cmyk& colour) { return ready.convert(colour); };
    return drawLinkPage(page);
}

// ---- Profiles that connect a device with Lab or XYZ --------------------------------------------

constexpr double kWidth = 1280;

struct Curves {
    std::string title;
    std::vector<std::vector<double>> values;
    std::vector<std::string> names, colours;
};

std::vector<std::string> channelNames(int32_t channels, uint32_t space) {
    if (space == fourcc("CMYK")) return {"C", "M", "Y", "K"};
    if (space == fourcc("RGB ")) return {"R", "G", "B"};
    if (space == fourcc("Lab ")) return {"L*", "a*", "b*"};
    if (space == fourcc("XYZ ")) return {"X", "Y", "Z"};
    std::vector<std::string> names;
    for (int32_t i = 0; i < channels; ++i) names.push_back("channel " + std::to_string(i + 1));
    return names;
}

std::string channelColour(size_t index, uint32_t space) {
    if (space == fourcc("CMYK")) return kInkLines[index % 4];
    static constexpr const char* kOthers[4] = {"#d92d20", "#039855", "#1570ef", "#20242b"};
    static constexpr const char* kLab[3] = {"#20242b", "#d81b7d", "#1570ef"};
    return space == fourcc("Lab ") ? kLab[index % 3] : kOthers[index % 4];
}

Curves tablesOf(const IccLut& lut, bool input, uint32_t space, const std::string& title) {
    Curves curves{title, {}, {}, {}};
    const int32_t channels = input ? lut.inputChannels : lut.outputChannels;
    const auto names = channelNames(channels, space);
    for (int32_t i = 0; i < channels; ++i) {
        const auto index = static_cast<size_t>(i);
        curves.values.push_back(input ? tableOf(lut, lut.inputTables, lut.inputEntries, i)
                                      : tableOf(lut, lut.outputTables, lut.outputEntries, i));
        curves.names.push_back(index < names.size() ? names[index] : std::to_string(i + 1));
        curves.colours.push_back(channelColour(index, space));
    }
    return curves;
}

struct ColourRamp {
    std::string name;
    std::vector<Rgb> colours;
    std::vector<double> lightness;  // 0..1; empty when not known
};

// Connection-space values of a table as L*, a*, b*.
std::array<double, 3> toLab(const std::array<double, 4>& values, const ReadyLut& lut, uint32_t space) {
    const int32_t bits = lut.record().precision == 1 ? 8 : 16;
    double colour[3];
    for (size_t i = 0; i < 3; ++i) colour[i] = values[i] * lut.fullScale();
    if (space == fourcc("XYZ ")) {
        jIccXYZDecode(colour, bits);
        jIccXYZtoLab(colour, kD50);
    } else {
        jIccLabDecode(colour, bits);
    }
    return {colour[0], colour[1], colour[2]};
}

using ToLab = std::function<std::array<double, 3>(const Cmyk&)>;

std::vector<ColourRamp> colourRamps(uint32_t space, int32_t channels, const ToLab& toLabOf) {
    static constexpr Ramp kRgbRamps[] = {
        {"R", {1, 0, 0, 0}},     {"G", {0, 1, 0, 0}},     {"B", {0, 0, 1, 0}},
        {"R + G", {1, 1, 0, 0}}, {"R + B", {1, 0, 1, 0}}, {"G + B", {0, 1, 1, 0}},
        {"Grey of R + G + B", {1, 1, 1, 0}},
    };
    static constexpr Ramp kOneRamp[] = {{"Channel 1", {1, 0, 0, 0}}};
    const std::span<const Ramp> chosen =
        space == fourcc("CMYK") && channels == 4  ? std::span<const Ramp>(kCmykRamps)
        : space == fourcc("RGB ") && channels == 3 ? std::span<const Ramp>(kRgbRamps)
                                                        : std::span<const Ramp>(kOneRamp);
    std::vector<ColourRamp> ramps;
    for (const Ramp& ramp : chosen) {
        ColourRamp out{ramp.name, {}, {}};
        for (size_t level = 0; level < kRampLevels; level += 3) {
            const auto lab = toLabOf(levelOf(ramp, level));
            out.lightness.push_back(lab[0] / 100);
            out.colours.push_back(labColour(lab[0], lab[1], lab[2]));
        }
        ramps.push_back(std::move(out));
    }
    return ramps;
}

// The device's channels along the neutral axis, from white to black: how black is generated.
Curves neutralAxis(const ReadyLut& lut, const IccHeader& header, const std::string& tag) {
    Curves curves{tag + ": neutral axis, white to black", {}, {}, {}};
    const auto channels = static_cast<size_t>(lut.record().outputChannels);
    const auto names = channelNames(lut.record().outputChannels, header.colourSpace);
    curves.values.resize(channels);
    const int32_t bits = lut.record().precision == 1 ? 8 : 16;
    for (int step = 0; step <= 100; ++step) {
        double colour[3] = {100.0 - step, 0, 0};
        if (header.connectionSpace == fourcc("XYZ ")) {
            jIccLabtoXYZ(colour, kD50);
            jIccXYZEncode(colour, bits);
        } else {
            jIccLabEncode(colour, bits);
        }
        std::array<double, 4> values{};
        for (size_t i = 0; i < 3; ++i) values[i] = colour[i] / lut.fullScale();
        const auto out = lut.convert(values);
        for (size_t i = 0; i < channels; ++i) curves.values[i].push_back(out[i]);
    }
    for (size_t i = 0; i < channels; ++i) {
        curves.names.push_back(i < names.size() ? names[i] : std::to_string(i + 1));
        curves.colours.push_back(channelColour(i, header.colourSpace));
    }
    return curves;
}

std::string drawProfilePage(const PageHead& head, const std::vector<Curves>& curves, const std::vector<ColourRamp>& ramps) {
    constexpr double kColumns = 4, kGap = 16;
    constexpr double kCard = (kWidth - 2 * kMargin - (kColumns - 1) * kGap) / kColumns;
    constexpr double kCurvesHeight = 320, kRampHeight = 300;
    const auto rowsOf = [](size_t cards) { return static_cast<double>((cards + 3) / 4); };
    const double curvesTop = headHeight(head.lines.size()) + 30;
    const double rampsTop = curvesTop + rowsOf(curves.size()) * (kCurvesHeight + kGap) + (curves.empty() ? 0 : 40);
    const double height = rampsTop + rowsOf(ramps.size()) * (kRampHeight + kGap) + 16;
    const auto cardAt = [&](size_t index, double top, double cardHeight) {
        return Point{kMargin + static_cast<double>(index % 4) * (kCard + kGap),
                     top + static_cast<double>(index / 4) * (cardHeight + kGap)};
    };

    Svg svg(kWidth, height, head.title);
    drawHead(svg, head);
    if (!curves.empty()) svg.text({kMargin, curvesTop - 12}, "Curves", R"(class="section")");
    for (size_t i = 0; i < curves.size(); ++i) {
        const auto [x, y] = cardAt(i, curvesTop, kCurvesHeight);
        svg.rect(x, y, kCard, kCurvesHeight, R"(class="card" rx="6")");
        svg.text({x + 16, y + 24}, curves[i].title, R"(class="name")");
        Chart chart(svg, x + 46, y + 38, kCard - 62, 220, Labels::full, "in, %", "out, %");
        for (size_t c = 0; c < curves[i].values.size(); ++c) chart.curve(curves[i].values[c], curves[i].colours[c]);
        std::vector<std::pair<std::string, std::string>> legend;
        for (size_t c = 0; c < curves[i].names.size(); ++c) legend.emplace_back(curves[i].names[c], curves[i].colours[c]);
        drawLegend(svg, {x + 46, y + kCurvesHeight - 14}, legend);
    }
    if (!ramps.empty()) svg.text({kMargin, rampsTop - 12}, "Ramps: lightness L* and colour", R"(class="section")");
    for (size_t i = 0; i < ramps.size(); ++i) {
        const auto [x, y] = cardAt(i, rampsTop, kRampHeight);
        svg.rect(x, y, kCard, kRampHeight, R"(class="card" rx="6")");
        svg.text({x + 16, y + 24}, ramps[i].name, R"(class="name")");
        if (!ramps[i].lightness.empty()) {
            Chart chart(svg, x + 46, y + 38, kCard - 62, 180, Labels::full, "in, %", "L*");
            chart.curve(ramps[i].lightness, kInkLines[3]);
        }
        drawStrip(svg, x + 46, y + kRampHeight - 42, kCard - 62, 24, ramps[i].colours);
    }
    return svg.finish();
}

double toneAt(const IccCurve& curve, double x) {  // 0..1 in and out
    if (curve.count == 0) return x;
    if (curve.count == 1) return icc::power(x, curve.entries[0] / 256.0);
    const double place = x * (curve.count - 1);
    const auto low = std::min(static_cast<uint32_t>(place), curve.count - 2);
    const uint16_t* entries = curve.entries;
    return (entries[low] + (entries[low + 1] - entries[low]) * (place - low)) / 65535;
}

struct Matrix {
    std::array<const IccCurve*, 3> tones{};
    std::array<const float*, 3> columns{};
    bool isWhole() const { return std::ranges::all_of(tones, [](auto* tone) { return tone; }) &&
                                  std::ranges::all_of(columns, [](auto* column) { return column; }); }
    std::array<double, 3> toLab(const Cmyk& colour) const {
        double xyz[3] = {};
        for (size_t i = 0; i < 3; ++i)
            for (size_t part = 0; part < 3; ++part)
                xyz[part] += columns[i][part] * toneAt(*tones[i], colour[i]);
        jIccXYZtoLab(xyz, kD50);
        return {xyz[0], xyz[1], xyz[2]};
    }
};

Matrix matrixOf(const IccInput& icc) {
    static constexpr uint32_t kTones[3] = {fourcc("rTRC"), fourcc("gTRC"), fourcc("bTRC")};
    static constexpr uint32_t kColumns[3] = {fourcc("rXYZ"), fourcc("gXYZ"), fourcc("bXYZ")};
    Matrix matrix;
    for (size_t i = 0; i < 3; ++i) {
        matrix.tones[i] = icc.tag<const IccCurve>(kTones[i]);
        matrix.columns[i] = icc.tag<const float>(kColumns[i]);
    }
    return matrix;
}

std::string plotDevice(const IccInput& icc) {
    const IccHeader& header = icc.header();
    const InputFile& file = icc.file();
    const std::string text = firstLine(description(icc));
    PageHead head;
    head.title = text.empty() ? fileName(file) : text;
    head.lines = {fileName(file) + "     ·     ICC profile, " + signatureText(header.colourSpace) + " to " +
                  signatureText(header.connectionSpace)};
    std::vector<Curves> curves;
    std::vector<ColourRamp> ramps;

    const auto firstOf = [&](std::initializer_list<uint32_t> tags) -> std::optional<uint32_t> {
        for (const uint32_t tag : tags)
            if (icc.find(tag)) return tag;
        return std::nullopt;
    };
    if (const auto tag = firstOf({fourcc("A2B0"), fourcc("A2B1"), fourcc("A2B2")})) {
        IccLut* lut = icc.lut(*tag);
        const std::string name = signatureText(*tag);
        curves.push_back(tablesOf(*lut, true, header.colourSpace, name + ": input tables"));
        curves.push_back(tablesOf(*lut, false, header.connectionSpace, name + ": output tables"));
        const ReadyLut ready(lut);
        const bool connects = header.connectionSpace == fourcc("Lab ") || header.connectionSpace == fourcc("XYZ ");
        if (ready && connects && lut->outputChannels == 3)
            ramps = colourRamps(header.colourSpace, lut->inputChannels, [&](const Cmyk& colour) {
                return toLab(ready.convert(colour), ready, header.connectionSpace);
            });
    }
    if (const auto tag = firstOf({fourcc("B2A0"), fourcc("B2A1"), fourcc("B2A2")})) {
        IccLut* lut = icc.lut(*tag);
        curves.push_back(tablesOf(*lut, false, header.colourSpace, signatureText(*tag) + ": output tables"));
        const ReadyLut ready(lut);
        if (ready && lut->inputChannels == 3) curves.push_back(neutralAxis(ready, header, signatureText(*tag)));
    }
    const Matrix matrix = matrixOf(icc);
    Curves tones{"Tone curves", {}, {}, {}};
    for (size_t i = 0; i < 3; ++i) {
        const IccCurve* tone = matrix.tones[i];
        if (!tone) continue;
        std::vector<double> values;
        for (size_t level = 0; level < kRampLevels; ++level)
            values.push_back(toneAt(*tone, static_cast<double>(level) / (kRampLevels - 1)));
        tones.values.push_back(std::move(values));
        tones.names.push_back(std::string(1, "RGB"[i]) + (tone->count == 1 ? ' ' + number(tone->entries[0] / 256.0) : ""));
        tones.colours.push_back(kLightLines[i]);
        if (tone->count == 1) tones.title = "Tone curves and their gamma";
    }
    if (!tones.values.empty()) curves.push_back(std::move(tones));
    if (ramps.empty() && matrix.isWhole())
        ramps = colourRamps(header.colourSpace, 3, [&](const Cmyk& colour) { return matrix.toLab(colour); });
    if (curves.empty()) failOn(file.path, "holds no table or tone curve that can be drawn");
    return drawProfilePage(head, curves, ramps);
}

}  // namespace

std::string plotIcc(const InputFile& file) {
    const IccInput icc(file);
    if (icc.find(fourcc("A2B0"))) {
        IccLut* lut = icc.lut(fourcc("A2B0"));
        if (lut->inputChannels == 4 && lut->outputChannels == 4) return plotLink(icc, lut);
    }
    return plotDevice(icc);
}

std::string plotTable(const InputFile& file) {
    const CmykProfilePtr profile = cmykProfile(file);
    LinkPage page;
    page.head.title = fieldText(profile->name);
    if (page.head.title.empty()) page.head.title = fileName(file);
    page.head.lines = {fileName(file) + "     ·     CMYK table, " + std::to_string(KOLINK_CMYK_GRID_POINTS) + " grid points an ink, 8 bits"};
    const std::string comment = fieldText(profile->comment);
    if (!comment.empty()) page.head.lines.push_back(firstLine(comment));
    CmykCurveTables tables;
    cmyk::makeCurveTables(*profile, tables);
    for (size_t i = 0; i < 8; ++i) {
        for (const uint8_t level : tables.levels[i]) page.curves[i].values.push_back(level / 255.0);
        addDots(page.curves[i], *profile, static_cast<int32_t>(i));
    }
    page.convert = [&profile](const Cmyk& colour) {
        int32_t levels[4];
        for (size_t ink = 0; ink < 4; ++ink) levels[ink] = static_cast<int32_t>(colour[ink] * 255 + 0.5);
        jKoCmykCMYKtoCMYK16(profile.get(), levels);
        return Cmyk{levels[0] / 4080.0, levels[1] / 4080.0, levels[2] / 4080.0, levels[3] / 4080.0};
    };
    return drawLinkPage(page);
}

}  // namespace ko::cli
