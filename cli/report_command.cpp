// kolink report: what a link costs and where it is wrong, in numbers, and gates that stop it.
#include <memory>

#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/gate_options.h"
#include "cli/measured_link.h"
#include "cli/origin.h"
#include "cli/quality_page.h"
#include "cli/report.h"
#include "frame/arithmetic_mode.h"

namespace ko::cli {
namespace {

constexpr char kExamples[] =
    "The profiles that a link was made from are looked for where they were and beside it:\n"
    "  kolink report proof.icc\n"
    "  kolink report proof.icc --source press.icc --destination printer.icc --full\n"
    "\n"
    "A link that is not good enough ends with status 3 and a line for each gate:\n"
    "  kolink report proof.icc --max-de95 2 --max-ink 300 --require-pure black\n"
    "  kolink report proof.icc --gates coated.json --json\n"
    "\n"
    "A page for a browser, of one link or of two side by side:\n"
    "  kolink report proof.icc older.icc --html proof.html\n";

struct Options {
    std::vector<std::string> links;
    std::optional<std::string> source, destination, intent, nodes, page;
    std::string language = "en";
    bool compensatesBlack = false, full = false, json = false;
    GateOptions gates;
};

precise::Intent intentNamed(const std::string& word) {
    constexpr const char* kIntents[] = {"perceptual", "relative", "saturation", "absolute"};
    int at = 0;
    while (word != kIntents[at]) ++at;
    return static_cast<precise::Intent>(at);
}

class Reporting {
public:
    explicit Reporting(const Options& options) : options_(options), gates_(options.gates.gates()) {
        if (options.source.has_value() != options.destination.has_value())
            throw UsageFailure(options.source ? "--source needs --destination" : "--destination needs --source");
        if (options.links.size() > 2) throw UsageFailure("one link is reported, or two are compared");
    }

    void run() {
        std::vector<std::unique_ptr<Measured>> all;
        for (const std::string& path : options_.links) all.push_back(std::make_unique<Measured>(*this, path));
        if (options_.page) writePage(all);
        if (options_.page != "-") writeNumbers(all);
        finishOut();  // what is found stands before what does not hold
        bool passes = true;
        for (const auto& one : all) passes = one->link.passes() && passes;
        if (!passes) throw Found{kStoppedByGate};
    }

private:
    struct Measured {
        Measured(const Reporting& reporting, const std::string& path)
            : file(openInput(path)), link(file, reporting.nodes()), judgedBy(reporting.judgesOf(path, link)) {
            if (judgedBy) link.judgeBy(*judgedBy, openInput(judgedBy->source), openInput(judgedBy->destination));
            link.measure(reporting.gates_);
        }
        InputFile file;
        MeasuredLink link;
        std::optional<JudgedBy> judgedBy;
    };

    std::optional<precise::Nodes> nodes() const {
        if (!options_.nodes) return std::nullopt;
        return *options_.nodes == "library" ? precise::Nodes::library : precise::Nodes::even;
    }

    void writeNumbers(const std::vector<std::unique_ptr<Measured>>& all) const {
        Json json = Json::array();
        for (const auto& one : all) {
            if (options_.json) json.push_back(one->link.json());
            else if (options_.full) writeOut(toLines(one->link.json()));
            else writeOut(one->link.summary());
        }
        if (options_.json) writeOut(toJson(all.size() == 1 ? json[0] : json));
    }

    void writePage(const std::vector<std::unique_ptr<Measured>>& all) const {
        std::vector<ReportedLink> links;
        std::vector<std::string> inputs = options_.links;
        for (const auto& one : all) {
            links.push_back(one->link.reported());
            if (!one->judgedBy) continue;
            inputs.push_back(one->judgedBy->source);
            inputs.push_back(one->judgedBy->destination);
        }
        const Language language = options_.language == "ja"   ? Language::japanese
                                  : options_.language == "zh" ? Language::chinese
                                                              : Language::english;
        const ArithmeticMode arithmetic;
        writeText(*options_.page, qualityPage(links, language), inputs);
    }

    // Without profiles the link keeps what stands in the way.
    std::optional<JudgedBy> judgesOf(const std::string& path, MeasuredLink& link) const {
        const quality::LinkFacts& facts = link.facts();
        JudgedBy by;
        if (options_.source) {
            by.source = *options_.source;
            by.destination = *options_.destination;
        } else {
            for (auto& [side, place] : {std::pair("source", &by.source), std::pair("destination", &by.destination)}) {
                Origin origin = originOf(facts, path, side);
                if (!origin.found()) {
                    link.leaveColours(std::move(origin));
                    return std::nullopt;
                }
                *place = std::move(origin.path);
            }
            by.found = true;
        }
        by.intent = options_.intent ? intentNamed(*options_.intent) : facts.intent;
        by.compensateBlack = options_.compensatesBlack || facts.from("bpc") == "yes";
        return by;
    }

    const Options& options_;
    quality::Gates gates_;
};

}  // namespace

void addReportCommand(Command& app) {
    const auto options = std::make_shared<Options>();
    Command command = app.command("report", "Measure what a link costs and where it is wrong");
    command.examples(kExamples);
    command.option("links", options->links, "An ICC device link of any maker; two are compared")
        .called("LINK...").required();
    command.option("--source", options->source, "The profile that the link leads from").called("FILE");
    command.option("--destination", options->destination, "The profile that it leads to").called("FILE");
    command.option("--intent", options->intent, "Judge by this intent instead of the link's own")
        .oneOf({"perceptual", "relative", "saturation", "absolute"});
    command.flag("--bpc", options->compensatesBlack, "Judge with black-point compensation");
    command.option("--nodes", options->nodes, "Read the grid so, whatever the link says")
        .oneOf({"even", "library"});
    command.flag("--full", options->full, "Everything that is measured");
    command.flag("--json", options->json, "JSON for programs");
    command.option("--html", options->page, "Write a page for a browser as well; - is standard output").called("FILE");
    command.option("--language", options->language, "The page's language [en]").oneOf({"en", "ja", "zh"});
    options->gates.addTo(command);
    command.does([options] { Reporting(*options).run(); });
}

}  // namespace ko::cli
