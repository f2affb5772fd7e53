#include "cli/arguments.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>
#include <numeric>
#include <sstream>

#include "cli/errors.h"
#include "cli/files.h"
#include "cli/report.h"

namespace ko::cli {
namespace {

constexpr size_t kColumns = 80, kOfDescriptions = 26;

// Text in lines of so many characters at most, between blanks; a longer word stands alone.
std::string wrapped(std::string text, size_t width) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    std::string out, line;
    const auto end = [&] {
        if (!out.empty()) out += '\n';
        out += line;
        line.clear();
    };
    for (const std::string& word : CLI::detail::split(text, ' ')) {
        if (word.empty()) continue;
        if (!line.empty() && line.size() + 1 + word.size() > width) end();
        line += (line.empty() ? "" : " ") + word;
    }
    end();
    return out;
}

// Paragraphs are wrapped; lines that begin with a blank, such as examples, stay as they are.
std::string wrappedParagraphs(const std::string& text) {
    std::string out, paragraph;
    const auto end = [&] {
        if (!paragraph.empty()) out += wrapped(paragraph, kColumns) + '\n';
        paragraph.clear();
    };
    for (const std::string& line : CLI::detail::split(text, '\n')) {
        if (!line.empty() && line[0] != ' ') {
            paragraph += line + ' ';
            continue;
        }
        end();
        out += line + '\n';
    }
    end();
    while (out.ends_with("\n\n")) out.pop_back();
    return out;
}

// The parser's name of a value is "TEXT", "FLOAT", "TEXT:{RGB,CMYK}", "INT:INT in [1 - 16]".
// For people: "RGB|CMYK", "1..16". Empty for a flag.
std::string valueName(const CLI::Option& option) {
    if (option.get_expected_max() == 0 || option.get_type_size_max() == 0) return {};
    const std::string whole = option.get_type_name();
    const size_t colon = whole.find(':');
    std::string name = whole.substr(0, colon);
    if (name != "TEXT" && name != "INT" && name != "FLOAT") return name;
    const std::string check = colon == std::string::npos ? "" : whole.substr(colon + 1);
    if (check.starts_with('{')) {
        name = check.substr(1, check.find('}') - 1);
        std::replace(name.begin(), name.end(), ',', '|');
    } else if (const size_t range = check.find(" in ["); range != std::string::npos) {
        name = check.substr(range + 5, check.find(']') - range - 5);
        name.replace(name.find(" - "), 3, "..");
    } else if (name != "TEXT") {
        name = "NUMBER";
    }
    return name;
}

// The words that can be given, where they are known.
std::vector<std::string> wordsOf(CLI::Option& option) {
    std::string list = valueName(option);
    const bool isChecked = option.get_type_name().find(":{") != std::string::npos;
    try {
        const std::string& name = option.get_validator(0)->get_name();
        if (!name.empty()) list = name;
    } catch (const CLI::OptionNotFound&) {
        // anything can be given, or what the name of the value says
    }
    std::vector<std::string> words;
    if (list.find('|') == std::string::npos) return words;
    for (const std::string& word : CLI::detail::split(list, '|'))  // FILE stands for something
        if (isChecked || std::none_of(word.begin(), word.end(), [](char c) { return c >= 'A' && c <= 'Z'; }))
            words.push_back(word);
    return words;
}

std::string joined(const std::set<CLI::Option*>& options, const char* before) {
    std::string text;
    for (const CLI::Option* option : options) text += (text.empty() ? before : ", ") + option->get_name();
    return text;
}

// Help that fits a terminal of 80 columns.
class NarrowFormatter : public CLI::Formatter {
public:
    NarrowFormatter() {
        column_width(kOfDescriptions);
        label("SUBCOMMAND", "COMMAND");
    }
    std::string make_description(const CLI::App* app) const override {
        return wrappedParagraphs(CLI::Formatter::make_description(app));
    }
    std::string make_footer(const CLI::App* app) const override { return wrappedParagraphs(app->get_footer()); }
    std::string make_option_opts(const CLI::Option* option) const override {
        const std::string value = valueName(*option);
        return (value.empty() ? "" : ' ' + value) +
               (option->get_expected_max() == CLI::detail::expected_max_vector_size ? " ..." : "") +
               (option->get_required() ? " REQUIRED" : "");
    }
    std::string make_option_desc(const CLI::Option* option) const override {
        return wrapped(option->get_description() + joined(option->get_needs(), "; needs ") +
                       joined(option->get_excludes(), "; not with "), kColumns - kOfDescriptions);
    }
    std::string make_subcommand(const CLI::App* command) const override {
        std::ostringstream out;
        CLI::detail::format_help(out, command->get_name(),
                                 wrapped(command->get_description(), kColumns - kOfDescriptions), kOfDescriptions);
        return out.str();
    }
};

// Letters to be changed, put in or left out.
size_t distance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i + 1;
        for (size_t j = 0; j < b.size(); ++j) {
            const size_t changed = diagonal + (a[i] != b[j]);
            diagonal = row[j + 1];
            row[j + 1] = std::min({row[j] + 1, row[j + 1] + 1, changed});
        }
    }
    return row[b.size()];
}

// "; the nearest is NAME", or nothing where none is near.
std::string nearest(const std::string& given, const std::vector<std::string>& names) {
    size_t least = std::max<size_t>(2, given.size() / 3) + 1;
    std::string found;
    if (given.size() > 60) return found;  // no name, and long to compare
    for (const std::string& name : names) {
        const size_t away = given.size() > 3 && name.starts_with(given) ? 1 : distance(given, name);
        if (away >= least) continue;
        least = away;
        found = "; the nearest is " + name;
    }
    return found;
}

std::vector<std::string> commandNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands(nullptr)) names.push_back(command->get_name());
    return names;
}

// The command that the arguments chose.
const CLI::App& chosen(const CLI::App& app) {
    const auto commands = app.get_subcommands();
    return commands.empty() ? app : chosen(*commands.front());
}

// What is wrong with arguments that the parser could do nothing with; empty when there are none.
std::string complaintAboutExtras(const CLI::App& app) {
    const CLI::App& command = chosen(app);
    const std::vector<std::string> extras = app.remaining(true);
    for (const std::string& extra : extras) {
        if (extra.size() < 2 || extra[0] != '-' || extra == "--") continue;
        const std::string name = extra.substr(0, extra.find('='));
        std::vector<std::string> known;
        for (const CLI::Option* option : command.get_options())
            for (const std::string& one : option->get_lnames()) known.push_back("--" + one);
        return "there is no option " + name + nearest(name, known);
    }
    if (extras.empty()) return {};
    const auto commands = commandNames(command);
    if (!commands.empty()) return "there is no command " + extras.front() + nearest(extras.front(), commands);
    return "'" + extras.front() + "' is one argument too many";
}

// A command with all that its help tells.
Json tree(CLI::App& app) {
    Json command;
    command["name"] = app.get_name();
    command["description"] = app.get_description();
    command["footer"] = app.get_footer();
    command["options"] = Json::array();
    for (CLI::Option* option : app.get_options()) {
        const std::string value = valueName(*option);
        Json entry;
        entry["names"] = Json::array();
        for (const std::string& name : option->get_snames()) entry["names"].push_back('-' + name);
        for (const std::string& name : option->get_lnames()) entry["names"].push_back("--" + name);
        entry["place"] = option->nonpositional() ? Json(nullptr) : Json(option->get_name(true));
        entry["value"] = value.empty() ? Json(nullptr) : Json(value);
        entry["words"] = wordsOf(*option);
        entry["several"] = option->get_expected_max() == CLI::detail::expected_max_vector_size;
        entry["required"] = option->get_required();
        entry["description"] = option->get_description() + joined(option->get_needs(), "; needs ") +
                               joined(option->get_excludes(), "; not with ");
        command["options"].push_back(entry);
    }
    command["commands"] = Json::array();
    for (CLI::App* sub : app.get_subcommands(nullptr)) command["commands"].push_back(tree(*sub));
    return command;
}

}  // namespace

Option& Option::called(const char* value) { option_->type_name(value); return *this; }
Option& Option::required() { option_->required(); return *this; }
Option& Option::valueMayLack() { option_->expected(0, 1)->default_str(""); return *this; }
Option& Option::between(int lowest, int highest) { option_->check(CLI::Range(lowest, highest)); return *this; }
Option& Option::separatedBy(char delimiter) { option_->delimiter(delimiter); return *this; }
Option& Option::oneOf(std::initializer_list<std::string> words, bool listed) {
    CLI::Validator check = CLI::IsMember(words);
    if (!listed) {  // what completes a command line knows them by this name
        check.name(CLI::detail::join(std::vector<std::string>(words), "|"));
        check.description("");
    }
    option_->check(check);
    return *this;
}
Option& Option::oneOf(std::initializer_list<int> numbers) { option_->check(CLI::IsMember(numbers)); return *this; }
Option& Option::needs(const Option& other) { option_->needs(other.option_); return *this; }
Option& Option::excludes(const Option& other) { option_->excludes(other.option_); return *this; }

Command Command::command(const char* name, const char* help) {
    return Command(app_->add_subcommand(name, help)->group("Commands"));
}
template <typename Value>
Option Command::option(const char* names, Value& value, const char* help) {
    return Option(app_->add_option(names, value, help));
}
template Option Command::option(const char*, std::string&, const char*);
template Option Command::option(const char*, int&, const char*);
template Option Command::option(const char*, double&, const char*);
template Option Command::option(const char*, std::optional<std::string>&, const char*);
template Option Command::option(const char*, std::optional<int>&, const char*);
template Option Command::option(const char*, std::optional<double>&, const char*);
template Option Command::option(const char*, std::vector<std::string>&, const char*);
Option Command::flag(const char* names, bool& value, const char* help) {
    return Option(app_->add_flag(names, value, help));
}
void Command::examples(const char* text) { app_->footer(text); }
void Command::needsCommand() { app_->require_subcommand(1); }
void Command::takesAnything() { app_->allow_extras(); }
void Command::does(std::function<void()> work) { app_->callback(std::move(work)); }

Arguments::Arguments(const char* description, const char* name, const char* version)
    : Command(nullptr), owned_(std::make_unique<CLI::App>(description, name)) {
    app_ = owned_.get();
    app_->formatter(std::make_shared<NarrowFormatter>());
    app_->set_help_flag("-h,--help", "Print this help and exit");
    app_->set_version_flag("--version", version, "Print the version and exit");
    app_->allow_windows_style_options(false);  // /usr/share is a path everywhere
    needsCommand();
}
Arguments::~Arguments() = default;

// "help link" is "link --help"; "help --json" is the whole tree.
void Arguments::addHelpCommand() {
    CLI::App* const help = app_->add_subcommand("help", "Tell about a command: kolink help COMMAND");
    help->group("Commands")->footer(
        "Examples:\n"
        "  kolink help link\n"
        "  kolink help calib set\n"
        "  kolink help --json\n");
    help->add_flag("--json")->description("All commands with their options, for programs");
    help->add_option("command", "The command")->type_name("COMMAND")->expected(0, 2);
}

void Arguments::parse(std::vector<std::string> arguments) {
    addHelpCommand();
    if (!arguments.empty() && arguments[0] == "help") {
        if (arguments.size() == 2 && arguments[1] == "--json") return writeOut(toJson(tree(*owned_)));
        if (arguments.size() < 2 || arguments[1][0] != '-') {
            arguments.erase(arguments.begin());
            arguments.push_back("--help");
        }
    }
    try {
        requireKnownCommand(arguments);
        std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the end
        app_->parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
        writeOut(app_->help());
    } catch (const CLI::CallForVersion& version) {
        writeOut(std::string(version.what()) + '\n');
    } catch (const CLI::ParseError& error) {
        const std::string extras = complaintAboutExtras(*owned_);
        throw UsageFailure(usageLine(extras.empty() ? error.what() : extras));
    } catch (const UsageFailure& error) {
        throw UsageFailure(usageLine(error.what()));
    }
}

// Said before the parser looks, which would only miss a command.
void Arguments::requireKnownCommand(const std::vector<std::string>& arguments) const {
    if (arguments.empty()) throw UsageFailure("a command is needed");
    const std::string& command = arguments.front();
    if (command.empty() || command[0] == '-') return;
    const auto known = commandNames(*owned_);
    if (std::find(known.begin(), known.end(), command) == known.end())
        throw UsageFailure("there is no command " + command + nearest(command, known));
}

// The parser's message in one line, with the command that was meant.
std::string Arguments::usageLine(std::string message) const {
    while (!message.empty() && message.back() == '\n') message.pop_back();
    std::string name = owned_->get_name();
    for (const CLI::App* at = owned_.get(); !at->get_subcommands().empty();) {
        at = at->get_subcommands().front();
        name += ' ' + at->get_name();
    }
    if (message == "A subcommand is required") message = "a command is needed after " + name;
    return printable(message) + " (see " + name + " --help)";
}

}  // namespace ko::cli
