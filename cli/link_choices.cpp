#include "cli/link_choices.h"

#include <algorithm>
#include <charconv>

#include "cli/arguments.h"
#include "cli/errors.h"

namespace ko::cli {

int indexOf(std::string_view word, std::initializer_list<std::string_view> words) {
    return static_cast<int>(std::find(words.begin(), words.end(), word) - words.begin());
}

double percent(std::string_view text, double limit, const std::string& option) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '%')) text.remove_suffix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !(value >= 0) || value > limit)
        throw UsageFailure(option + ": '" + std::string(text) + "' is not a percentage from 0 to " +
                           number(limit));
    return value;
}

void LinkChoices::addTo(Command& command, bool withFile) {
    command.option("--base", base,
                        "Correction applied first: an ICC link from CMYK to CMYK, a .lut or an .amt table")
        .called("FILE");
    auto methods = command.option("--method", method,
        withFile ? "precise (solved for on the forward table), tables (the profiles' tables alone, evaluated precisely) or\n"
                   "classic (the library's own arithmetic) [precise]"
                 : "precise, tables, classic (the library's own arithmetic) or system (the system's colour\n"
                   "management), for comparison [precise]");
    if (withFile) methods.called("METHOD").oneOf({"precise", "tables", "classic"}, false);
    else methods.called("METHOD").oneOf({"precise", "tables", "classic", "system"}, false);
    command.option("--intent", intent, "Rendering intent: perceptual, relative, saturation or absolute [relative]")
        .called("INTENT")
        .oneOf({"perceptual", "relative", "saturation", "absolute"}, false);
    command.flag("--bpc", compensatesBlack, "Compensate the black point: the darkest colour becomes the darkest one");
    command.option("--black", black,
                        "Black: plane (the source's separation is kept), match (pure K keeps its look), keep (pure K keeps\n"
                        "its level; from RGB: neutrals to K alone), none, or a .bkc file [plane from CMYK, none from RGB]")
        .called("plane|match|keep|none|FILE");
    command.option("--preserve", preserve,
                        "Keep free of other inks: C, M, Y alone (primaries), mixes of two (secondaries), one ink with\n"
                        "black (duplex), two with black (triplex); each includes the ones before it [none]")
        .called("none|primaries|secondaries|duplex|triplex")
        .oneOf({"none", "primaries", "secondaries", "duplex", "triplex"}, false);
    command.option("--ink-limit", inkLimit,
                        "The most ink of a colour: percent, profile (what the destination's tables ask for) or none [profile]")
        .called("PERCENT|profile|none");
    command.option("--save-ink", saveInk, "From the usual black (0) towards the most black (100) [0]").called("0..100");
    command.option("--save-ink-above", saveInkAbove, "L* above which no ink is saved [70]").called("L");
    command.option("--clip", clip,
                        "Percent of an ink below which it becomes 0; above 100 less twice that it becomes 100 [0]")
        .called("PERCENT");
    command.option("--white", white,
                        "White: as the profiles have it, clean (no ink) or paper (see --paper) [clean]")
        .called("profile|clean|paper")
        .oneOf({"profile", "clean", "paper"}, false);
    command.option("--paper", paper, "Tint of the paper in percent, added to light colours; means --white paper")
        .called("C,M,Y,K");
    command.option("--fade", fade,
                        "Total coverage (sum of the four inks) at which the paper tint has faded out, 0 to 400 [78.4]")
        .called("PERCENT");
    command.option("--grid", grid,
                        withFile ? "Grid points an axis, 9 to 33, from RGB and grey to 65; only 33 can be edited [33]"
                                 : "Grid points an axis of the link that is made for it, 9 to 33, from RGB and grey to 65 [33]")
        .called("POINTS");
    if (!withFile) return;
    command.option("--bits", bits, "Bits of the table, 8 or 16; only 8 can be edited in the dialogs [8]").called("8|16")
        .oneOf({8, 16});
    command.option("--nodes", nodes,
                        "Where the nodes stand: even, as ICC readers meet them, or library, as jKoCmykCMYKtoCMYK16\n"
                        "meets them [even]")
        .called("even|library")
        .oneOf({"even", "library"}, false);
}

int32_t LinkChoices::intentNumber() const {
    return indexOf(intent.value_or("relative"), {"perceptual", "relative", "saturation", "absolute"});
}

std::string LinkChoices::whiteMode() const { return white.value_or(paper ? "paper" : "clean"); }

std::array<double, 4> LinkChoices::paperTint() const {
    std::array<double, 4> tint{};
    if (!paper) return tint;
    size_t at = 0;
    for (size_t ink = 0; ink < 4; ++ink) {
        const size_t comma = paper->find(',', at);
        if ((comma == std::string::npos) != (ink == 3))
            throw UsageFailure("--paper: '" + *paper + "' is not four percentages C,M,Y,K");
        tint[ink] = percent(std::string_view(*paper).substr(at, comma - at), 100, "--paper");
        at = comma + 1;
    }
    return tint;
}

bool LinkChoices::blackIsFile() const {
    return black && indexOf(*black, {"plane", "match", "keep", "none"}) == 4;
}

void LinkChoices::check() const {
    const std::string mode = whiteMode();
    if (mode == "paper" && !paper) throw UsageFailure("--white paper needs --paper C,M,Y,K");
    if (mode != "paper" && paper) throw UsageFailure("--paper contradicts --white " + mode);
    if (fade && !paper) throw UsageFailure("--fade needs --paper C,M,Y,K");
    (void)paperTint();
    (void)preciseOptions();
    if (saveInkAbove && !saveInk) throw UsageFailure("--save-ink-above needs --save-ink");
    if (isClassic() || method == "system") {
        if (const std::string option = onlyPrecise(); !option.empty())
            throw UsageFailure("--method " + *method + " knows no " + option);
        return;
    }
    const int32_t chosen = intentNumber();
    const bool solves = methodOr("precise") == "precise" &&
                        (chosen == KO_PRECISE_RELATIVE || chosen == KO_PRECISE_ABSOLUTE);
    const std::string tables = methodOr("precise") == "tables" ? "--method tables" : "--intent " + intent.value_or("");
    if (!solves && black == "plane")
        throw UsageFailure("--black plane needs colours that are solved for, and " + tables + " follows the tables");
    if (!solves && saveInk)
        throw UsageFailure("--save-ink needs colours that are solved for, and " + tables + " follows the tables");
    if (compensatesBlack && chosen == KO_PRECISE_ABSOLUTE)
        throw UsageFailure("--bpc contradicts --intent absolute");
}

std::string LinkChoices::onlyPrecise() const {
    if (black == "plane" || black == "match") return "--black " + *black;
    if (preserve == "duplex" || preserve == "triplex") return "--preserve " + *preserve;
    if (intent == "absolute" && method != "system") return "--intent absolute";
    if (compensatesBlack) return "--bpc";
    if (inkLimit) return "--ink-limit";
    if (saveInk) return "--save-ink";
    if (clip) return "--clip";
    if (bits.value_or(8) != 8) return "--bits 16";
    if (grid.value_or(33) != 33) return "--grid " + std::to_string(*grid);
    if (nodes == "even") return "--nodes even";
    return {};
}

std::string LinkChoices::first() const {
    const std::pair<bool, const char*> all[] = {
        {base.has_value(), "--base"}, {method.has_value(), "--method"}, {intent.has_value(), "--intent"},
        {compensatesBlack, "--bpc"}, {black.has_value(), "--black"}, {preserve.has_value(), "--preserve"},
        {inkLimit.has_value(), "--ink-limit"}, {saveInk.has_value(), "--save-ink"},
        {saveInkAbove.has_value(), "--save-ink-above"}, {clip.has_value(), "--clip"},
        {white.has_value(), "--white"}, {paper.has_value(), "--paper"}, {fade.has_value(), "--fade"},
        {grid.has_value(), "--grid"}};
    for (const auto& [given, name] : all)
        if (given) return name;
    return {};
}

KoPreciseOptions LinkChoices::preciseOptions() const {
    KoPreciseOptions options;
    koPreciseInitOptions(&options);
    options.method = method == "tables" ? KO_PRECISE_TABLES_ALONE : KO_PRECISE_INVERTED;
    options.intent = intentNumber();
    options.blackPointCompensation = compensatesBlack;
    if (black)
        options.black = KO_PRECISE_BLACK_PLANE + indexOf(*black, {"plane", "match", "keep", "none"});
    options.preserve = indexOf(preserve.value_or("none"), {"none", "primaries", "secondaries", "duplex", "triplex"});
    options.white = indexOf(whiteMode(), {"clean", "profile", "paper"});
    options.bits = bits.value_or(8);
    options.gridPoints = grid.value_or(0);
    if (grid == 0) throw UsageFailure("--grid: 0 points are no grid");
    options.nodes = nodes == "library" ? KO_PRECISE_NODES_LIBRARY : KO_PRECISE_NODES_EVEN;
    if (clip) options.clip = percent(*clip, 10, "--clip");
    if (inkLimit == "none") options.inkLimit = KO_PRECISE_LIMIT_NONE;
    else if (inkLimit && inkLimit != "profile") {
        options.inkLimit = percent(*inkLimit, 400, "--ink-limit");
        if (options.inkLimit < 100)
            throw UsageFailure("--ink-limit: " + *inkLimit + " is below what black needs, 100 percent");
    }
    if (saveInk) options.saveInk = percent(*saveInk, 100, "--save-ink");
    if (saveInkAbove) options.saveInkAbove = percent(*saveInkAbove, 100, "--save-ink-above");
    const auto tint = paperTint();
    std::copy(tint.begin(), tint.end(), options.paper);
    if (fade) options.paperFade = percent(*fade, 400, "--fade");
    return options;
}

}  // namespace ko::cli
