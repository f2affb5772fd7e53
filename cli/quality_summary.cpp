#include "cli/quality_summary.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <string_view>

#include "cli/text.h"

namespace ko::cli {
namespace {

using namespace quality;
using Gate = GateResult::Gate;

// Every sentence; {1}, {2} ... stand for what it is about. The order is Language's.
enum class Say {
    mean, over, reachable, best, worst, notKnown, pure, nothingPure, impure, white, noInks, black, blackSeen, blackStep,
    noRamp, cast, noGreys, blackStart, ink, inkLess, inkMore, bends, bendsOfInk, neverTurns, turns, jump, noGrid, sound,
    noError, errors, shape, points, leads, judged, bpc, notJudged, gone, changed, untold, gateDe95, gateMean, gateInk,
    gateJump, gatePure, gateWhite, gateConformance, countOf
};
constexpr const char* kSentences[static_cast<size_t>(Say::countOf)][3] = {
    {"mean {1}, median {2}, 95 % {3}, 99 % {4}, worst {5}", "平均 {1}、中央値 {2}、95 % {3}、99 % {4}、最大 {5}", "平均 {1},中位 {2},95 % {3},99 % {4},最大 {5}"},
    {"ΔE00 {1} over {2} colours", "ΔE00 {1} ({2} 色)", "ΔE00 {1}({2} 色)"},
    {"{1} of them: {2}", "そのうち {1}: {2}", "其中 {1}:{2}"},
    {"without any limit {1}", "制限なしの場合 {1}", "无任何限制时 {1}"},
    {"{1} becomes {2}: ΔE00 {3} (best {4})", "{1} が {2} に: ΔE00 {3} (最良 {4})", "{1} 变为 {2}:ΔE00 {3}(最佳 {4})"},
    {"not known without profiles", "プロファイルがないため不明", "没有配置文件,无法得知"},
    {"pure: {1}", "純色: {1}", "纯色:{1}"},
    {"nothing is pure", "純色なし", "没有纯色"},
    {"; foreign ink in {1}", "。混入インキ: {1}", ";混入杂墨:{1}"},
    {"white", "白", "白"},
    {"no inks", "インキなし", "没有油墨"},
    {"100 K becomes {1}", "100 K は {1} に", "100 K 变为 {1}"},
    {", L* {1} (source {2}), ramp ΔE00 mean {3}", "、L* {1} (元 {2})、階調の平均 ΔE00 {3}", ",L* {1}(源 {2}),阶调平均 ΔE00 {3}"},
    {"; from pure to near black at most {1}", "。純黒からその隣まで最大 {1}", ";纯黑到邻近黑最多 {1}"},
    {"no ramp of black: not from CMYK to CMYK", "CMYK 間のリンクではないため墨の階調なし", "不是 CMYK 到 CMYK 的链接,没有黑阶调"},
    {"a*, b* off by {1} at most", "a*, b* のずれは最大 {1}", "a*, b* 偏差最多 {1}"},
    {"the source prints no greys of colour", "元に色インキのグレーなし", "源没有彩色油墨的灰"},
    {"; black from L* {1} on", "。L* {1} から墨が入る", ";从 L* {1} 起有黑"},
    {"highest {1} at {2}; mean {3}", "最大 {1} ({2})、平均 {3}", "最高 {1}({2}),平均 {3}"},
    {", {1} less than the source", "、元より {1} 少ない", ",比源少 {1}"},
    {", {1} more than the source", "、元より {1} 多い", ",比源多 {1}"},
    {"second differences mean {1}, 95 % {2}", "二階差分 平均 {1}、95 % {2}", "二阶差分平均 {1},95 % {2}"},
    {" % of ink", " (インキ %)", "(油墨 %)"},
    {"; L* never turns", "。L* の逆転なし", ";L* 无反转"},
    {"; L* turns {1} times, by {2} at most", "。L* の逆転 {1} 回、最大 {2}", ";L* 反转 {1} 次,最多 {2}"},
    {"; neighbouring nodes at most {1} apart, {2} and {3}", "。隣り合う格子点の差は最大 {1} ({2} と {3})", ";相邻节点最多相差 {1}({2} 与 {3})"},
    {"; no grid", "。格子なし", ";没有网格"},
    {"nothing is wrong with it", "問題なし", "没有问题"},
    {"no error; warnings and notes: {1} (kolink check tells them)", "誤りなし。警告・注記 {1} 件 (kolink check で表示)", "没有错误;警告与提示 {1} 条(由 kolink check 列出)"},
    {"errors: {1} (kolink check tells them)", "誤り {1} 件 (kolink check で表示)", "错误 {1} 处(由 kolink check 列出)"},
    {"{1}: {2}", "{1}: {2}", "{1}:{2}"},
    {", {1} points, {2} bits", "、{1} 点、{2} ビット", ",{1} 点,{2} 位"},
    {"{1} to {2}", "{1} から {2} へ", "{1} 到 {2}"},
    {"{1} and {2}, {3}", "{1} と {2}、{3}", "{1} 与 {2},{3}"},
    {" with black-point compensation", "、黒点補正あり", ",含黑点补偿"},
    {"no profiles, colours are not judged: {1} (--source, --destination)", "プロファイルなし、色は判定していません: {1} (--source, --destination)", "没有配置文件,未评价颜色:{1}(--source, --destination)"},
    {"{1} is not where it was", "{1} は元の場所にありません", "{1} 已不在原处"},
    {"{1} is not the profile that the link was made from", "{1} はリンクの作成に使われたプロファイルではありません", "{1} 不是制作链接时的配置文件"},
    {"the link does not name them", "リンクに記録がありません", "链接中没有记录"},
    {"ΔE00 of reachable colours is {1} at 95 %, more than {2}", "再現可能な色の ΔE00 は 95 % で {1}、上限 {2}", "可再现颜色的 ΔE00 在 95 % 处为 {1},超过 {2}"},
    {"ΔE00 of reachable colours is {1} in the mean, more than {2}", "再現可能な色の平均 ΔE00 は {1}、上限 {2}", "可再现颜色的平均 ΔE00 为 {1},超过 {2}"},
    {"up to {1} % of ink, more than {2} %", "総インキ量は最大 {1} %、上限 {2} %", "总墨量最多 {1} %,超过 {2} %"},
    {"an ink jumps by {1} % between neighbouring nodes, more than {2} %", "隣り合う格子点でインキが {1} % 変わる、上限 {2} %", "相邻节点间油墨跳变 {1} %,超过 {2} %"},
    {"up to {1} % of foreign ink where there must be none", "純色であるべき所に最大 {1} % の混入インキ", "应为纯色处有最多 {1} % 的杂墨"},
    {"white has {1} % of an ink", "白に {1} % のインキ", "白色中有 {1} % 的油墨"},
    {"errors in the file: {1} (kolink check tells them)", "ファイルの誤り {1} 件 (kolink check で表示)", "文件有 {1} 处错误(由 kolink check 列出)"},
};
static_assert(kSentences[static_cast<size_t>(Say::countOf) - 1][2] != nullptr);

constexpr const char* kIntents[4][3] = {{"perceptual", "知覚的", "感知"},
                                        {"relative", "相対的", "相对"},
                                        {"saturation", "彩度", "饱和度"},
                                        {"absolute", "絶対的", "绝对"}};

std::string de(double value) { return number(value, value < 1 ? 3 : 2); }
std::string percentText(double part) { return number(part * 100, 1) + " %"; }
std::string percents(const Colour& colour, int channels) {  // "87, 20, 100, 3"
    std::string text;
    for (int ch = 0; ch < channels; ++ch)
        text += (ch ? ", " : "") + number(colour[static_cast<size_t>(ch)] * 100, 1);
    return text;
}

class Speaker {
public:
    explicit Speaker(Language language) : language_(static_cast<size_t>(language)) {}

    std::string say(Say what, std::initializer_list<std::string> parts = {}) const {
        const std::string_view sentence = kSentences[static_cast<size_t>(what)][language_];
        std::string text;
        for (size_t at = 0; at < sentence.size(); ++at) {
            const size_t part = sentence[at] == '{' ? static_cast<size_t>(sentence[at + 1] - '1') : parts.size();
            if (part >= parts.size()) {
                text += sentence[at];
                continue;
            }
            text += parts.begin()[part];
            at += 2;
        }
        return text;
    }
    std::string intent(precise::Intent intent) const { return kIntents[static_cast<size_t>(intent)][language_]; }
    std::string space(uint32_t space) const {
        constexpr const char* kGrey[] = {"grey", "グレー", "灰"};
        return space == fourcc("GRAY") ? kGrey[language_] : precise::signatureText(space);
    }
    std::string spread(const Spread& of) const {
        return say(Say::mean, {de(of.mean), de(of.median), de(of.p95), de(of.p99), de(of.worst)});
    }

    std::string link(const ReportedLink& of) const {
        const LinkFacts& facts = of.subject.facts();
        std::string text = say(Say::leads, {space(facts.sourceSpace), space(facts.destinationSpace)});
        if (facts.bits > 0) {
            std::string points = std::to_string(facts.points[0]);
            bool same = true;
            for (int axis = 1; axis < facts.inputs; ++axis)
                same = same && facts.points[static_cast<size_t>(axis)] == facts.points[0];
            for (int axis = 1; axis < facts.inputs && !same; ++axis)
                points += " x " + std::to_string(facts.points[static_cast<size_t>(axis)]);
            text += say(Say::points, {points, std::to_string(facts.bits)});
        }
        text += ", " + intent(facts.intent) + ", ICC " + std::to_string(facts.version >> 24) + '.' +
                std::to_string(facts.version >> 20 & 15);
        return say(Say::shape, {printable(of.path), text});
    }
    std::string missing(const Origin& of) const {
        switch (of.state) {
            case Origin::State::gone: return say(Say::gone, {printable(of.path)});
            case Origin::State::changed: return say(Say::changed, {printable(of.path)});
            default: return say(Say::untold);
        }
    }
    std::string judgedBy(const ReportedLink& of) const {
        if (!of.judgedBy) return say(Say::notJudged, {missing(of.missing)});
        const JudgedBy& by = *of.judgedBy;
        return say(Say::judged, {printable(by.source), printable(by.destination), intent(by.intent)}) +
               (by.compensateBlack ? say(Say::bpc) : "");
    }
    std::string purity(const PurityReport& report, bool toInk) const {
        if (!toInk) return say(Say::noInks);
        std::string pure, impure;
        for (const PureRamp& ramp : report.ramps) {
            const std::string name = *ramp.inks ? ramp.inks : say(Say::white);
            std::string& list = ramp.pure() ? pure : impure;
            list += (list.empty() ? "" : ", ") + name;
            if (!ramp.pure()) list += " (" + number(std::max(ramp.foreign, ramp.foreignByLevels) * 100, 1) + " %)";
        }
        if (impure.empty()) return say(Say::pure, {pure});
        return (pure.empty() ? say(Say::nothingPure) : say(Say::pure, {pure})) + say(Say::impure, {impure});
    }
    std::string black(const BlackReport& report, bool seen) const {
        if (!report.hasRamp) return say(Say::noRamp);
        const BlackPoint& full = report.ramp.back();
        std::string text = say(Say::black, {percents(full.out, 4)});
        if (seen)
            text += say(Say::blackSeen, {number(full.lightness, 1), number(full.wantedLightness, 1), de(report.difference.mean)});
        return text + say(Say::blackStep, {percentText(report.step)});
    }
    std::string grey(const BlackReport& report, bool seen) const {
        if (!seen) return say(Say::notKnown);
        if (report.greys.empty()) return say(Say::noGreys);
        return say(Say::cast, {number(report.cast, 2)}) +
               (report.blackStart >= 0 ? say(Say::blackStart, {number(report.blackStart, 1)}) : "");
    }
    std::string ink(const InkReport& report, const Subject& subject) const {
        if (!subject.toInk()) return say(Say::noInks);
        std::string text = say(Say::ink, {percentText(report.most), percents(report.mostAt, subject.facts().inputs),
                                          percentText(report.mean)});
        const double saving = report.saving();
        if (subject.fromInk()) text += say(saving < 0 ? Say::inkMore : Say::inkLess, {percentText(std::abs(saving))});
        return text;
    }
    std::string smoothness(const SmoothReport& report, const Subject& subject) const {
        std::string text = say(Say::bends, {number(report.bends.mean, 3), number(report.bends.p95, 3)});
        if (!report.ofColours) text += say(Say::bendsOfInk);
        else if (report.reversals == 0) text += say(Say::neverTurns);
        else text += say(Say::turns, {std::to_string(report.reversals), number(report.worstReversal, 2)});
        const NodeFacts& nodes = subject.nodes();
        if (nodes.nodes == 0) return text + say(Say::noGrid);
        const int inputs = subject.facts().inputs;
        return text + say(Say::jump, {percentText(nodes.jump), percents(nodes.jumpFrom, inputs), percents(nodes.jumpTo, inputs)});
    }
    std::string file(const Findings& findings) const {
        if (findings.faults.empty()) return say(Say::sound);
        if (const size_t errors = findings.errors()) return say(Say::errors, {std::to_string(errors)});
        return say(Say::noError, {std::to_string(findings.faults.size())});
    }

private:
    size_t language_;
};

}  // namespace

Summary summaryOf(const ReportedLink& link, Language language) {
    const Speaker speaker(language);
    const Findings& findings = link.findings;
    const bool seen = findings.colour.has_value();
    Summary summary;
    const auto row = [&](Row which) -> std::string& { return summary[static_cast<size_t>(which)]; };
    row(Row::link) = speaker.link(link);
    row(Row::judgedBy) = speaker.judgedBy(link);
    if (seen) {
        const ColourReport& colour = *findings.colour;
        const Spread &all = colour.group("all").difference, &near = colour.group("reachable").difference;
        const JudgedColour& worst = colour.colours[colour.worst.front()];
        row(Row::colour) = speaker.say(Say::over, {speaker.spread(all), grouped(all.count)});
        row(Row::reachable) = speaker.say(
            Say::reachable, {percentText(static_cast<double>(near.count) / static_cast<double>(all.count)), speaker.spread(near)});
        row(Row::best) = speaker.say(Say::best, {speaker.spread(colour.group("all").best)});
        row(Row::worst) = speaker.say(Say::worst, {percents(worst.in, link.subject.facts().inputs),
                                                   percents(worst.out, link.subject.facts().outputs),
                                                   de(worst.difference), de(worst.best)});
    } else {
        for (const Row which : {Row::colour, Row::reachable, Row::best, Row::worst}) row(which) = speaker.say(Say::notKnown);
    }
    row(Row::purity) = speaker.purity(findings.purity, link.subject.toInk());
    row(Row::black) = speaker.black(findings.black, seen);
    row(Row::grey) = speaker.grey(findings.black, seen);
    row(Row::ink) = speaker.ink(findings.ink, link.subject);
    row(Row::smoothness) = speaker.smoothness(findings.smoothness, link.subject);
    row(Row::file) = speaker.file(findings);
    return summary;
}

std::string qualitySummary(const ReportedLink& link) {
    constexpr const char* kLabels[] = {"Link", "Judged by", "Colour", "Reachable", "Best", "Worst", "Purity",
                                       "Black", "Grey", "Ink", "Smoothness", "File"};
    static_assert(std::size(kLabels) == static_cast<size_t>(Row::countOf));
    constexpr size_t kWidth = 12;
    std::string out;
    const Summary summary = summaryOf(link, Language::english);
    for (size_t row = 0; row < summary.size(); ++row) {
        std::string label = kLabels[row];
        label.resize(kWidth, ' ');
        out += label + summary[row] + '\n';
    }
    return out;
}

std::string gateLine(const GateResult& gate, Language language) {
    const Speaker speaker(language);
    const auto sentence = [&] {
        switch (gate.gate) {
            case Gate::de95: return speaker.say(Say::gateDe95, {de(gate.found), de(gate.limit)});
            case Gate::deMean: return speaker.say(Say::gateMean, {de(gate.found), de(gate.limit)});
            case Gate::ink: return speaker.say(Say::gateInk, {number(gate.found, 1), number(gate.limit, 1)});
            case Gate::jump: return speaker.say(Say::gateJump, {number(gate.found, 1), number(gate.limit, 1)});
            case Gate::pure: return speaker.say(Say::gatePure, {number(gate.found, 2)});
            case Gate::white: return speaker.say(Say::gateWhite, {number(gate.found, 2)});
            case Gate::conformance: return speaker.say(Say::gateConformance, {number(gate.found, 0)});
        }
        return std::string();
    };
    return std::string("gate ") + gateName(gate.gate) + ": " + sentence();
}

std::string missingText(const Origin& missing, Language language) { return Speaker(language).missing(missing); }

}  // namespace ko::cli
