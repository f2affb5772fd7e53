// Pictures of calibration sets and of small colour tables.
#include <algorithm>
#include <array>

#include "cli/calib.h"
#include "cli/chart.h"
#include "cli/plot.h"
#include "cli/table_file.h"
#include "cli/text.h"

namespace ko::cli {
namespace {

constexpr double kChart = 480, kCard = kChart + 96, kCardHeight = kChart + 110;

struct Line {
    std::string name, colour;
    std::vector<double> values;                       // over the whole width, parts of the full scale
    std::vector<std::pair<double, double>> points;
};

std::string hex(uint32_t lrgb) {  // red is the low byte
    return hexColour({(lrgb & 255) / 255.0, (lrgb >> 8 & 255) / 255.0, (lrgb >> 16 & 255) / 255.0});
}

std::string page(const PageHead& head, const std::string& title, const std::vector<Line>& lines) {
    // Legends run from left to right; as many entries as fit stand in one.
    constexpr size_t kPerRow = 5;
    const double top = headHeight(head.lines.size()) + 8;
    const double legendHeight = 22.0 * static_cast<double>((lines.size() + kPerRow) / kPerRow);
    Svg svg(2 * kMargin + kCard, top + kCardHeight + legendHeight + kMargin, head.title);
    drawHead(svg, head);
    svg.rect(kMargin, top, kCard, kCardHeight + legendHeight, R"(class="card" rx="6")");
    svg.text({kMargin + 16, top + 24}, title, R"(class="name")");
    Chart chart(svg, kMargin + 56, top + 40, kChart, kChart, Labels::full, "in, %", "out, %");
    chart.diagonal();
    std::vector<std::pair<std::string, std::string>> legend;
    for (const Line& line : lines) {
        chart.curve(line.values, line.colour);
        for (const auto& [x, y] : line.points) chart.dot(x, y, line.colour);
        legend.emplace_back(cutTo(line.name, 12), line.colour);
    }
    legend.emplace_back("out = in", "");
    double y = top + kCardHeight;
    for (size_t at = 0; at < legend.size(); at += kPerRow, y += 22)
        drawLegend(svg, {kMargin + 56, y}, std::span(legend).subspan(at, std::min(kPerRow, legend.size() - at)));
    return svg.finish();
}

}  // namespace

std::string plotCalib(const InputFile& file) {
    const CalibPtr set = loadCalib(file);
    const double range = std::max(1, set->range), limit = std::max(1, set->limit);
    std::vector<Line> lines;
    for (int32_t at = 0; at < set->channelCount; ++at) {
        const CalibChannel& channel = set->channels[at];
        // Channels that share a colour, as new ones do, are told apart by the inks' own.
        static constexpr const char* kSpare[] = {kInkLines[0], kInkLines[1], kInkLines[2], kInkLines[3],
                                                 "#7a5af8", "#0e9384", "#d92d20", "#667085"};
        Line line{fieldText(channel.name),
                  channel.lrgb ? hex(channel.lrgb) : kSpare[at % 8], {}, {}};
        for (int step = 0; step <= 256; ++step)
            line.values.push_back(static_cast<double>(jKoCalibGetToneValue(set.get(), at, static_cast<float>(range * step / 256))) / limit);
        for (int32_t tone = 0; tone < channel.toneCount; ++tone)
            line.points.emplace_back(std::clamp(static_cast<double>(channel.tones[tone].x) / range, 0.0, 1.0),
                                     std::clamp(static_cast<double>(channel.tones[tone].y) / limit, 0.0, 1.0));
        lines.push_back(std::move(line));
    }
    const std::string name = fromPath(toPath(file.path).filename());
    const std::string title = fieldText(set->title);
    return page({title.empty() ? name : title,
                 {name + "     ·     calibration set, tones 0 to " + std::to_string(set->range) + " in, 0 to " +
                  std::to_string(set->limit) + " out"}},
                "Channels", lines);
}

std::string plotColourTable(const InputFile& file) {
    const Table table = loadTable(file, std::nullopt);
    const size_t channels = table.cmyk ? 4 : 3;
    std::vector<Line> lines;
    // Each channel's own ramp, and for RGB the grey one.
    for (size_t at = 0; at < channels; ++at) {
        Line line{table.cmyk ? kInkNames[at] : std::array{"R", "G", "B"}[at],
                  table.cmyk ? kInkLines[at] : kLightLines[at], {}, {}};
        for (int32_t level = 0; level < 256; ++level) {
            int32_t values[4] = {};
            values[at] = level;
            if (table.cmyk) jKoCmykLutCMYKtoCMYK16(table.cmyk.get(), values);
            else jKoRgbRGBtoRGB16(table.rgb.get(), values);
            line.values.push_back(values[at] / 4080.0);
        }
        lines.push_back(std::move(line));
    }
    const std::string name = fromPath(toPath(file.path).filename());
    return page({name, {table.cmyk ? "CMYK to CMYK table, 17 grid points" : "RGB to RGB table, 17 grid points"}},
                "Each channel's own ramp", lines);
}

}  // namespace ko::cli
