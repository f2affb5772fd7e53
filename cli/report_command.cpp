// kolink report: what a link costs and where it is wrong, in numbers, and gates that stop it.
#include <filesystem>
#include <memory>

#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/gate_options.h"
#include "cli/measured_link.h"
#include "cli/quality_page.h"
#include "cli/report.h"
#include "frame/arithmetic_mode.h"

namespace ko::cli {
namespace {

namespace fs = std::filesystem;

constexpr char kExamples[] =
    "The profiles that a link was made from are looked for beside it, by what it says of itself:\n"
    "  kolink report proof.icc\n"
    "  kolink report proof.icc --source press.icc --destination printer.icc --full\n"
    "\n"
    "A link that is not good enough ends with status 3 and a line for each gate:\n"
    "  kolink report proof.icc --max-de95 2 --max-ink 300 --require-pure black --require-white\n"
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

std::string hex(const std::array<uint8_t, 16>& id) {
    std::string text;
    for (const uint8_t byte : id) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

// A profile that the link was made from, where it lies beside the link or in the current folder:
// of that name, and with that ID. Empty: there is none.
std::string placeOf(const quality::LinkFacts& facts, const std::string& link, const std::string& side) {
    const std::string name = facts.from(side + "-file"), id = facts.from(side + "-id");
    if (name.empty() || id.empty() || fs::path(name).has_parent_path() || name == "." || name == "..") return {};
    for (const fs::path& folder : {toPath(link).parent_path(), fs::path()}) {
        const fs::path place = folder / toPath(name);
        std::error_code error;
        if (!fs::is_regular_file(place, error)) continue;
        try {
            const InputFile file = openInput(fromPath(place));
            if (file.type == FileType::icc && hex(precise::profileId(file.bytes)) == id) return file.path;
        } catch (const Failure&) {  // one that cannot be read is not the one
        }
    }
    return {};
}

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
            : file(openInput(path)), link(file, reporting.nodes()), judgedBy(reporting.judgesOf(path, link.facts())) {
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
        const PageLanguage language = options_.language == "ja"   ? PageLanguage::japanese
                                      : options_.language == "zh" ? PageLanguage::chinese
                                                                  : PageLanguage::english;
        const ArithmeticMode arithmetic;
        writeText(*options_.page, qualityPage(links, language), inputs);
    }

    std::optional<JudgedBy> judgesOf(const std::string& link, const quality::LinkFacts& facts) const {
        JudgedBy by;
        if (options_.source) {
            by.source = *options_.source;
            by.destination = *options_.destination;
        } else {
            by.source = placeOf(facts, link, "source");
            by.destination = placeOf(facts, link, "destination");
            by.found = true;
            if (by.source.empty() || by.destination.empty()) return std::nullopt;
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
