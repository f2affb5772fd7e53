#include "cli/quality_page.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "cli/svg.h"
#include "cli/swatch.h"
#include "cli/text.h"
#include "quality/gamut.h"

namespace ko::cli {
namespace {

using namespace quality;

// Every text of the page; the order of the languages is Language's.
enum class Word {
    title, comparison, verdict, passes, stopped, noGates, summary, measure, colour, reachable, best, purity, black, grey,
    ink, smoothness, file, ramps, rampsHelp, histogram, histogramHelp, gamut, gamutHelp, inkMap, inkMapHelp, worst,
    worstHelp, groups, prices, pricesHelp, mean, median, worstValue, count, wanted, printed, inks, foreign, levels,
    provenance, key, value, faults, nothingWrong, source, destination, noProfiles, sortBy, name, all, unreachable,
    primaries, secondaries, greys, skin, highlights, shadows, withPurity, withBlack, withInkLimit, withLevels, link,
    pure, impure, white, countOf
};
constexpr const char* kWords[static_cast<size_t>(Word::countOf)][3] = {
    {"Report of a device link", "デバイスリンクの報告", "设备链接报告"},
    {"Comparison of two device links", "二つのデバイスリンクの比較", "两个设备链接的比较"},
    {"Verdict", "判定", "结论"},
    {"Every gate holds.", "すべての条件を満たしています。", "所有条件均满足。"},
    {"Stopped at a gate:", "条件を満たしません:", "未满足条件:"},
    {"No gates were set.", "条件は指定されていません。", "未设定条件。"},
    {"In short", "概要", "概要"},
    {"Measure", "項目", "项目"},
    {"Colour", "色", "颜色"},
    {"Reachable colours", "再現可能な色", "可再现颜色"},
    {"Best possible", "理論上の最良", "理论最佳"},
    {"Purity", "純色", "纯色"},
    {"Black", "墨", "黑"},
    {"Grey", "グレー", "灰"},
    {"Ink", "インキ", "油墨"},
    {"Smoothness", "滑らかさ", "平滑度"},
    {"File", "ファイル", "文件"},
    {"Ramps", "階調", "阶调"},
    {"Lightness L* along the ramp: the source dashed, the print solid. Below, the colours.", "階調に沿う明度 L*。破線は元の色、実線は印刷。下は色見本。", "沿阶调的明度 L*:虚线为源,实线为印刷。下方为颜色。"},
    {"Colour differences", "色差の分布", "色差分布"},
    {"How many colours lie in each step of CIEDE2000.", "CIEDE2000 の各段階に入る色の数。", "各 CIEDE2000 区间内的颜色数。"},
    {"Slice through the gamut", "色域の断面", "色域切片"},
    {"At L* 50: the source dashed, the destination solid.", "L* 50 の断面。破線は元、実線は印刷先。", "L* 50 处:虚线为源,实线为目标。"},
    {"Total ink", "総インキ量", "总墨量"},
    {"Grey of colour to the right, black upwards; percent of total ink.", "右へ CMY のグレー、上へ墨。総インキ量 (%)。", "向右为 CMY 灰,向上为黑;总墨量百分比。"},
    {"Worst colours", "最も外れた色", "偏差最大的颜色"},
    {"Left what the source asks for, right what is printed.", "左は元の色、右は印刷される色。", "左为源要求的颜色,右为印刷的颜色。"},
    {"Kinds of colour", "色の種類", "颜色类别"},
    {"What each choice costs", "設定ごとの代償", "各项选择的代价"},
    {"One bond after the other; the difference to the row above is its price.", "条件を一つずつ加える。上の行との差がその代償。", "逐项增加约束;与上一行之差即为其代价。"},
    {"mean", "平均", "平均"},
    {"median", "中央値", "中位"},
    {"most", "最大", "最大"},
    {"colours", "色数", "颜色数"},
    {"wanted", "元の色", "源色"},
    {"printed", "印刷", "印刷"},
    {"inks", "インキ", "油墨"},
    {"foreign ink", "混入インキ", "杂墨"},
    {"levels with any", "混入する階調数", "含杂墨的级数"},
    {"Provenance", "来歴", "来源"},
    {"key", "項目", "项"},
    {"value", "値", "值"},
    {"Faults of the file", "ファイルの問題", "文件问题"},
    {"Nothing is wrong with the file.", "ファイルに問題はありません。", "文件没有问题。"},
    {"source", "元", "源"},
    {"destination", "印刷先", "目标"},
    {"Colours are not judged without the profiles.", "プロファイルがないため色は判定していません。", "没有配置文件,未评价颜色。"},
    {"Sort by", "並べ替え:", "排序:"},
    {"name", "名前", "名称"},
    {"all", "すべて", "全部"},
    {"not reachable", "再現不能", "不可再现"},
    {"primaries", "一次色", "一次色"},
    {"secondaries", "二次色", "二次色"},
    {"greys", "グレー", "灰色"},
    {"skin tones", "肌色", "肤色"},
    {"highlights", "ハイライト", "高光"},
    {"shadows", "シャドウ", "暗部"},
    {"inks that stay away", "純色の維持", "保持纯色"},
    {"the link's black", "リンクの墨", "链接的黑"},
    {"the ink limit", "インキ制限", "墨量限制"},
    {"rounded levels", "階調の丸め", "级数取整"},
    {"the link", "リンク", "链接"},
    {"pure", "純", "纯"},
    {"not pure", "混入あり", "不纯"},
    {"white", "白", "白"},
};

static_assert(kWords[static_cast<size_t>(Word::countOf) - 1][2] != nullptr);

// Colours of both appearances; what is drawn takes them from here.
constexpr char kStyle[] = R"(
:root{color-scheme:light dark;--ground:#fff;--panel:#f5f6f8;--text:#1b1f27;--soft:#5b6472;--line:#d5d9e0;--mark:#1463c4;--good:#0b7a3e;--bad:#b3261e}
@media(prefers-color-scheme:dark){:root{--ground:#14171c;--panel:#1d222a;--text:#e8ebf0;--soft:#a3adbb;--line:#39414d;--mark:#6fb1ff;--good:#5fd395;--bad:#ff8d85}}
*{box-sizing:border-box}body{margin:0;background:var(--ground);color:var(--text);font:15px/1.5 system-ui,sans-serif}
main{max-width:1100px;margin:0 auto;padding:24px 16px 64px}h1{font-size:26px;line-height:1.25;margin:0 0 8px;overflow-wrap:anywhere}
h2{font-size:19px;margin:40px 0 8px}h3{font-size:15px;margin:16px 0 4px;overflow-wrap:anywhere}p{margin:4px 0 12px;color:var(--soft)}
.verdict{border-left:6px solid var(--line);background:var(--panel);padding:12px 16px;margin:16px 0;font-size:17px;overflow-wrap:anywhere}
.verdict.good{border-color:var(--good)}.verdict.bad{border-color:var(--bad)}.verdict ul{margin:4px 0 0;padding-left:20px}
.scroll{overflow-x:auto}table{border-collapse:collapse;width:100%;font-variant-numeric:tabular-nums}
th,td{border-bottom:1px solid var(--line);padding:6px 10px;text-align:right;vertical-align:top}th:first-child,td:first-child,td.text,th.text{text-align:left}
td.text{overflow-wrap:anywhere;min-width:12em}th button{all:unset;cursor:pointer;font-weight:600}th button:focus-visible{outline:2px solid var(--mark);outline-offset:2px}
th[aria-sort=ascending] button::after{content:" \25B2"}th[aria-sort=descending] button::after{content:" \25BC"}
.grid{display:grid;grid-template-columns:repeat(auto-fit,minmax(min(100%,300px),1fr));gap:16px}
figure{margin:0;width:100%;max-width:520px;background:var(--panel);padding:12px;break-inside:avoid}figcaption{font-weight:600}svg{display:block;width:100%;height:auto}
svg text{fill:var(--soft);font:11px system-ui,sans-serif}.axis{stroke:var(--line);fill:none}.one{stroke:var(--mark);fill:none;stroke-width:2}.two{stroke:var(--soft);fill:none;stroke-width:1.5;stroke-dasharray:5 4}.bar{fill:var(--mark)}
.swatch{display:inline-flex;width:96px;height:32px;border:1px solid var(--line)}.swatch i{flex:1;print-color-adjust:exact}
@media print{body{font-size:11px}main{max-width:none;padding:0}h2{break-after:avoid}.scroll{overflow:visible}th button{cursor:auto}}
)";

// Sorts a table by the column whose button is pressed; numbers by data-v.
constexpr char kScript[] = R"(
for(const table of document.querySelectorAll('table.sorts')){const body=table.tBodies[0];
table.querySelectorAll('th button').forEach((button,column)=>button.addEventListener('click',()=>{
const head=button.closest('th'),down=head.getAttribute('aria-sort')==='ascending';
for(const other of table.querySelectorAll('th'))other.removeAttribute('aria-sort');
head.setAttribute('aria-sort',down?'descending':'ascending');
const key=row=>row.cells[column].dataset.v??row.cells[column].textContent;
const rows=[...body.rows].sort((a,b)=>{const x=key(a),y=key(b),n=x-y;return(isNaN(n)?x.localeCompare(y):n)*(down?-1:1)});
body.append(...rows)}))}
)";

std::string escaped(std::string_view text) { return Svg::escaped(text); }

std::string de(double value) { return number(value, value < 1 ? 3 : 2); }

std::string point(double x, double y) { return number(x, 1) + ',' + number(y, 1) + ' '; }

std::string inksText(const Colour& colour, int channels) {
    std::string text;
    for (int ch = 0; ch < channels; ++ch)
        text += (ch ? ", " : "") + number(colour[static_cast<size_t>(ch)] * 100, 1);
    return text;
}

std::string labHex(const Triple& lab) { return hexColour(labColour(lab[0], lab[1], lab[2])); }

class Page {
public:
    Page(std::span<const ReportedLink> links, Language language) : links_(links), language_(language) {}

    std::string make() {
        constexpr const char* kTags[] = {"en", "ja", "zh"};
        const std::string title = word(links_.size() > 1 ? Word::comparison : Word::title);
        out_ = "<!doctype html>\n<html lang=\"" + std::string(kTags[static_cast<size_t>(language_)]) +
               "\"><head><meta charset=\"utf-8\"><meta name=\"viewport\" content=\"width=device-width,initial-scale=1\">"
               "<link rel=\"icon\" href=\"data:,\"><title>" + title + "</title><style>" + kStyle +
               "</style></head><body><main><h1>" + title + "</h1>";
        verdict();
        summary();
        for (const ReportedLink& link : links_) colourSections(link);
        for (const ReportedLink& link : links_) fileSections(link);
        out_ += "</main><script>" + std::string(kScript) + "</script></body></html>\n";
        return std::move(out_);
    }

private:
    const char* word(Word which) const { return kWords[static_cast<size_t>(which)][static_cast<size_t>(language_)]; }
    void section(const char* id, Word heading, const ReportedLink* link) {
        out_ += "<section class=\"" + std::string(id) + "\"><h2>" + word(heading) + "</h2>";
        if (link && links_.size() > 1) out_ += "<h3>" + escaped(link->path) + "</h3>";
    }
    void note(Word text) { out_ += std::string("<p>") + word(text) + "</p>"; }

    void verdict() {
        for (const ReportedLink& link : links_) {
            std::string failing;
            for (const GateResult& gate : link.gates)
                if (!gate.holds) failing += "<li>" + escaped(gateLine(gate, language_)) + "</li>";
            const char* const kind = link.gates.empty() ? "" : failing.empty() ? " good" : " bad";
            out_ += "<div class=\"verdict" + std::string(kind) + "\"><strong>" + escaped(link.path) + "</strong><br>";
            if (link.gates.empty()) out_ += word(Word::noGates);
            else if (failing.empty()) out_ += word(Word::passes);
            else out_ += std::string(word(Word::stopped)) + "<ul>" + failing + "</ul>";
            out_ += "</div>";
        }
    }

    // The summary's lines, one link a column, so that two are read side by side.
    void summary() {
        section("summary", Word::summary, nullptr);
        out_ += "<div class=\"scroll\"><table><thead><tr><th>" + std::string(word(Word::measure)) + "</th>";
        for (const ReportedLink& link : links_) out_ += "<th class=\"text\">" + escaped(link.path) + "</th>";
        out_ += "</tr></thead><tbody>";
        std::vector<Summary> columns;
        for (const ReportedLink& link : links_) columns.push_back(summaryOf(link, language_));
        const std::string rows[] = {word(Word::link), std::string(word(Word::source)) + ", " + word(Word::destination),
                                    word(Word::colour), word(Word::reachable), word(Word::best), word(Word::worst),
                                    word(Word::purity), word(Word::black), word(Word::grey), word(Word::ink),
                                    word(Word::smoothness), word(Word::file)};
        static_assert(std::size(rows) == static_cast<size_t>(Row::countOf));
        for (size_t row = 0; row < std::size(rows); ++row) {
            out_ += "<tr><td>" + rows[row] + "</td>";
            for (const Summary& lines : columns) out_ += "<td class=\"text\">" + escaped(lines[row]) + "</td>";
            out_ += "</tr>";
        }
        out_ += "</tbody></table></div></section>";
    }

    void colourSections(const ReportedLink& link) {
        if (!link.findings.colour) {
            section("colour", Word::colour, &link);
            note(Word::noProfiles);
            out_ += "</section>";
            inkMap(link);
            purity(link);
            return;
        }
        ramps(link);
        section("pictures", Word::histogram, &link);
        out_ += "<div class=\"grid\">";
        histogram(*link.findings.colour);
        gamut(link.subject);
        out_ += "</div></section>";
        inkMap(link);
        worst(link);
        groups(link);
        prices(link);
        purity(link);
    }

    static std::string axes(double width, double height) {
        return "<rect class=\"axis\" x=\"30\" y=\"6\" width=\"" + number(width) + "\" height=\"" + number(height) + "\"/>";
    }
    static std::string label(double x, double y, const std::string& text, const char* anchor = "middle") {
        return "<text x=\"" + number(x, 1) + "\" y=\"" + number(y, 1) + "\" text-anchor=\"" + anchor + "\">" + text + "</text>";
    }
    static std::string openSvg(const char* title, double width, double height) {
        return "<svg role=\"img\" aria-label=\"" + std::string(title) + "\" viewBox=\"0 0 " + number(width) + ' ' +
               number(height) + "\">";
    }

    void ramps(const ReportedLink& link) {
        const Subject& subject = link.subject;
        section("ramps", Word::ramps, &link);
        note(Word::rampsHelp);
        out_ += "<div class=\"grid\">";
        constexpr int kSteps = 32;
        for (const Colour& ramp : rampsOf(subject.facts().sourceSpace)) {
            std::string wanted, printed, strips;
            for (int step = 0; step <= kSteps; ++step) {
                Colour in = ramp;
                for (double& value : in) value *= static_cast<double>(step) / kSteps;
                const Triple a = subject.wanted(in), b = subject.printed(subject.through(in));
                const double x = 30 + 260.0 * step / kSteps;
                const auto y = [](double lightness) { return 6 + 130 * (1 - std::clamp(lightness, 0.0, 100.0) / 100); };
                wanted += point(x, y(a[0]));
                printed += point(x, y(b[0]));
                const double left = 30 + 260.0 * step / (kSteps + 1);
                for (const auto& [top, lab] : {std::pair{158.0, &a}, {172.0, &b}})
                    strips += "<rect x=\"" + number(left, 1) + "\" y=\"" + number(top) + "\" width=\"8.4\" height=\"14\" fill=\"" +
                              labHex(*lab) + "\"/>";
            }
            out_ += "<figure><figcaption>" + inksText(ramp, subject.facts().inputs) + " %</figcaption>" +
                    openSvg(word(Word::ramps), 300, 192) + axes(260, 130) + label(26, 14, "100", "end") +
                    label(26, 136, "0", "end") + label(30, 150, "0", "start") + label(290, 150, "100 %", "end") +
                    "<polyline class=\"two\" points=\"" + wanted + "\"/><polyline class=\"one\" points=\"" + printed +
                    "\"/>" + strips + "</svg></figure>";
        }
        out_ += "</div></section>";
    }

    void histogram(const ColourReport& report) {
        constexpr size_t kBins = 20;
        constexpr double kStep = 0.25;
        std::array<size_t, kBins> bins{};
        for (const JudgedColour& colour : report.colours)
            ++bins[std::min(kBins - 1, static_cast<size_t>(colour.difference / kStep))];
        const auto most = static_cast<double>(*std::max_element(bins.begin(), bins.end()));
        out_ += std::string("<figure class=\"histogram\"><figcaption>ΔE00</figcaption>") +
                openSvg(word(Word::histogram), 300, 192) + axes(260, 160) + label(286, 18, number(most), "end");
        for (size_t at = 0; at < kBins; ++at) {
            const double height = 160 * static_cast<double>(bins[at]) / most;
            out_ += "<rect class=\"bar\" x=\"" + number(31 + 13.0 * static_cast<double>(at), 1) + "\" y=\"" +
                    number(166 - height, 1) + "\" width=\"11\" height=\"" + number(height, 1) + "\"><title>" +
                    number(kStep * static_cast<double>(at)) + ": " + std::to_string(bins[at]) + "</title></rect>";
        }
        for (int at = 0; at <= 4; ++at)
            out_ += label(30 + 52.0 * at, 180, number(at * 4 * kStep));
        out_ += label(292, 180, "4.75 +", "end") + "</svg><p>" + word(Word::histogramHelp) + "</p></figure>";
    }

    void gamut(const Subject& subject) {
        constexpr double kLightness = 50, kWide = 110;
        const auto path = [&](const precise::Evaluator& forward, const char* kind) {
            std::string points;
            for (const Triple& lab : gamutBorder(forward, kLightness))
                points += point(150 + lab[1] * 90 / kWide, 96 - lab[2] * 90 / kWide);
            return "<polygon class=\"" + std::string(kind) + "\" points=\"" + points + "\"/>";
        };
        out_ += std::string("<figure class=\"gamut\"><figcaption>") + word(Word::gamut) + "</figcaption>" +
                openSvg(word(Word::gamut), 300, 192) +
                "<path class=\"axis\" d=\"M60 96H240M150 6V186\"/>" + label(246, 100, "a*", "start") + label(156, 14, "b*", "start");
        // A grey source has no area.
        if (subject.facts().inputs > 1) out_ += path(subject.source(), "two");
        out_ += path(subject.press(), "one") + "</svg><p>" + word(Word::gamutHelp) + "</p></figure>";
    }

    void inkMap(const ReportedLink& link) {
        const Subject& subject = link.subject;
        if (!subject.toInk() || !subject.fromInk()) return;
        constexpr int kCells = 20;
        section("inkmap", Word::inkMap, &link);
        note(Word::inkMapHelp);
        out_ += "<div class=\"grid\"><figure>" + openSvg(word(Word::inkMap), 300, 192) + axes(260, 160);
        double most = 0;
        for (int row = 0; row <= kCells; ++row)
            for (int column = 0; column <= kCells; ++column) {
                const double colour = static_cast<double>(column) / kCells, black = static_cast<double>(row) / kCells;
                const Colour out = subject.through({colour, colour, colour, black});
                const double ink = out[0] + out[1] + out[2] + out[3];
                most = std::max(most, ink);
                out_ += "<rect x=\"" + number(30 + 260.0 * column / (kCells + 1), 1) + "\" y=\"" +
                        number(6 + 160.0 * (kCells - row) / (kCells + 1), 1) + "\" width=\"12.6\" height=\"7.9\" fill=\"" +
                        hexColour({1 - 0.25 * ink * 0.9, 1 - 0.25 * ink * 0.65, 1 - 0.25 * ink * 0.25}) + "\"><title>" +
                        number(ink * 100, 0) + " %</title></rect>";
            }
        out_ += label(26, 14, "K", "end") + label(30, 180, "CMY 0", "start") + label(290, 180, "100 %", "end") +
                "</svg><p>" + word(Word::worstValue) + ": " + number(most * 100, 0) + " %</p></figure></div></section>";
    }

    static constexpr char kTextColumn = '\t';  // before the heads of columns that hold texts
    std::string textHead(Word head) const { return kTextColumn + std::string(word(head)); }
    void openTable(std::initializer_list<std::string> heads) {
        out_ += "<div class=\"scroll\"><table class=\"sorts\"><thead><tr>";
        for (const std::string& named : heads) {
            const bool isText = named[0] == kTextColumn;
            const std::string head = named.substr(isText);
            out_ += std::string("<th scope=\"col\"") + (isText ? " class=\"text\"" : "") +
                    "><button type=\"button\" title=\"" + word(Word::sortBy) + ' ' + head + "\">" + head +
                    "</button></th>";
        }
        out_ += "</tr></thead><tbody>";
    }
    void closeTable() { out_ += "</tbody></table></div></section>"; }
    static std::string cell(double value, const std::string& shown) {
        return "<td data-v=\"" + number(value, 6) + "\">" + shown + "</td>";
    }
    static std::string cell(double value) { return cell(value, de(value)); }
    static std::string text(const std::string& shown) { return "<td class=\"text\">" + escaped(shown) + "</td>"; }

    void worst(const ReportedLink& link) {
        const ColourReport& report = *link.findings.colour;
        const LinkFacts& facts = link.subject.facts();
        section("worst", Word::worst, &link);
        note(Word::worstHelp);
        openTable({word(Word::colour), "ΔE00", "ΔE76", word(Word::best), textHead(Word::source),
                   textHead(Word::inks), textHead(Word::wanted), textHead(Word::printed)});
        const auto lab = [](const Triple& of) {
            return number(of[0], 1) + ", " + number(of[1], 1) + ", " + number(of[2], 1);
        };
        for (size_t rank = 0; rank < report.worst.size(); ++rank) {
            const JudgedColour& colour = report.colours[report.worst[rank]];
            out_ += "<tr>" + cell(static_cast<double>(rank), "<span class=\"swatch\"><i style=\"background:" +
                    labHex(colour.wanted) + "\"></i><i style=\"background:" + labHex(colour.printed) + "\"></i></span>") +
                    cell(colour.difference) + cell(colour.difference76) + cell(colour.best) +
                    text(inksText(colour.in, facts.inputs)) + text(inksText(colour.out, facts.outputs)) +
                    text(lab(colour.wanted)) + text(lab(colour.printed)) + "</tr>";
        }
        closeTable();
    }

    void spreadCells(const Spread& of) {
        for (const double value : {of.mean, of.median, of.p95, of.p99, of.worst}) out_ += cell(value);
    }
    void groups(const ReportedLink& link) {
        constexpr Word kNames[] = {Word::all, Word::reachable, Word::unreachable, Word::primaries, Word::secondaries,
                                   Word::greys, Word::skin, Word::highlights, Word::shadows};
        section("groups", Word::groups, &link);
        openTable({word(Word::name), word(Word::count), word(Word::mean), word(Word::median), "95 %", "99 %",
                   word(Word::worstValue), std::string(word(Word::best)) + ", " + word(Word::mean)});
        size_t at = 0;
        for (const ColourGroup& group : link.findings.colour->groups) {
            out_ += "<tr>" + text(word(kNames[at++])) +
                    cell(static_cast<double>(group.difference.count), grouped(group.difference.count));
            spreadCells(group.difference);
            out_ += cell(group.best.mean) + "</tr>";
        }
        closeTable();
    }
    void prices(const ReportedLink& link) {
        section("prices", Word::prices, &link);
        note(Word::pricesHelp);
        openTable({word(Word::name), word(Word::mean), word(Word::median), "95 %", "99 %", word(Word::worstValue)});
        for (const PriceStep& step : link.findings.colour->prices) {
            const std::string_view name = step.name;
            const Word shown = name == "best" ? Word::best : name == "purity" ? Word::withPurity
                             : name == "black" ? Word::withBlack : name == "inkLimit" ? Word::withInkLimit
                             : name == "levels" ? Word::withLevels : Word::link;
            out_ += "<tr>" + text(word(shown));
            spreadCells(step.difference);
            out_ += "</tr>";
        }
        closeTable();
    }
    void purity(const ReportedLink& link) {
        if (link.findings.purity.ramps.empty()) return;
        section("purity", Word::purity, &link);
        openTable({word(Word::inks), textHead(Word::purity), word(Word::foreign), word(Word::levels)});
        for (const PureRamp& ramp : link.findings.purity.ramps) {
            const double foreign = std::max(ramp.foreign, ramp.foreignByLevels) * 100;
            out_ += "<tr>" + text(*ramp.inks ? ramp.inks : word(Word::white)) + text(word(ramp.pure() ? Word::pure : Word::impure)) +
                    cell(foreign, number(foreign, 2) + " %") + cell(ramp.impureLevels, std::to_string(ramp.impureLevels)) +
                    "</tr>";
        }
        closeTable();
    }

    void fileSections(const ReportedLink& link) {
        section("file", Word::faults, &link);
        for (const Fault& fault : link.findings.faults)
            out_ += "<p>" + escaped(std::string(levelName(fault.level)) + ": " +
                                    (fault.tag ? precise::signatureText(fault.tag) + ": " : "") + fault.text + "; " +
                                    fault.remedy) + "</p>";
        if (link.findings.faults.empty()) note(Word::nothingWrong);
        out_ += "</section>";
        if (link.subject.facts().provenance.empty()) return;
        section("provenance", Word::provenance, &link);
        openTable({word(Word::key), textHead(Word::value)});
        for (const auto& [key, value] : link.subject.facts().provenance)
            out_ += "<tr>" + text(wellFormed(key)) + text(wellFormed(value)) + "</tr>";
        closeTable();
    }

    std::span<const ReportedLink> links_;
    Language language_;
    std::string out_;
};

}  // namespace

std::string qualityPage(std::span<const ReportedLink> links, Language language) {
    return Page(links, language).make();
}

}  // namespace ko::cli
