#include "cli/arguments.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>

#include "cli/errors.h"
#include "cli/files.h"

namespace ko::cli {

Option& Option::called(const char* value) { option_->type_name(value); return *this; }
Option& Option::required() { option_->required(); return *this; }
Option& Option::valueMayLack() { option_->expected(0, 1)->default_str(""); return *this; }
Option& Option::between(int lowest, int highest) { option_->check(CLI::Range(lowest, highest)); return *this; }
Option& Option::separatedBy(char delimiter) { option_->delimiter(delimiter); return *this; }
Option& Option::oneOf(std::initializer_list<std::string> words, bool listed) {
    CLI::Validator check = CLI::IsMember(words);
    if (!listed) check.description("");
    option_->check(check);
    return *this;
}
Option& Option::oneOf(std::initializer_list<int> numbers) { option_->check(CLI::IsMember(numbers)); return *this; }
Option& Option::needs(const Option& other) { option_->needs(other.option_); return *this; }
Option& Option::excludes(const Option& other) { option_->excludes(other.option_); return *this; }

Command Command::command(const char* name, const char* help) { return Command(app_->add_subcommand(name, help)); }
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
    app_->set_version_flag("--version", version, "Print the version and exit");
    app_->allow_windows_style_options(false);  // /usr/share is a path everywhere
    needsCommand();
}
Arguments::~Arguments() = default;

void Arguments::parse(std::vector<std::string> arguments) {
    try {
        requireKnownCommand(arguments);
        std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the end
        app_->parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
        writeOut(app_->help());
    } catch (const CLI::CallForVersion& version) {
        writeOut(std::string(version.what()) + '\n');
    } catch (const CLI::ParseError& error) {
        throw UsageFailure(usageLine(error.what()));
    } catch (const UsageFailure& error) {
        throw UsageFailure(usageLine(error.what()));
    }
}

// Said before the parser looks, which would only miss a command.
void Arguments::requireKnownCommand(const std::vector<std::string>& arguments) const {
    if (arguments.empty()) throw UsageFailure("a command is needed");
    const std::string& command = arguments.front();
    if (command.empty() || command[0] == '-') return;
    for (const CLI::App* known : owned_->get_subcommands(nullptr))
        if (known->get_name() == command) return;
    throw UsageFailure("there is no command " + command);
}

// The parser's message in one line, with the command that was meant.
std::string Arguments::usageLine(std::string message) const {
    while (!message.empty() && message.back() == '\n') message.pop_back();
    std::string command = owned_->get_name();
    for (const CLI::App* sub : owned_->get_subcommands()) command += ' ' + sub->get_name();
    return printable(message) + " (see " + command + " --help)";
}

}  // namespace ko::cli
