// The arguments of the commands: a small face of the parser, CLI11. Its headers take longer to
// compile than all of a command, so arguments.cpp alone includes them.
#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}

namespace ko::cli {

// One option of a command, to say more about it. What it is given goes to the command's variable.
class Option {
public:
    explicit Option(CLI::Option* option) : option_(option) {}
    Option& called(const char* value);  // what stands for the value in the help
    Option& required();
    Option& valueMayLack();  // an empty text then
    Option& between(int lowest, int highest);
    Option& separatedBy(char delimiter);
    // One of these words; listed: the help names them after the option.
    Option& oneOf(std::initializer_list<std::string> words, bool listed = true);
    Option& oneOf(std::initializer_list<int> numbers);
    Option& needs(const Option& other);
    Option& excludes(const Option& other);

private:
    CLI::Option* option_;
};

// A command, or a command of a command.
class Command {
public:
    explicit Command(CLI::App* app) : app_(app) {}
    Command command(const char* name, const char* help);
    // names: "-o,--output", or "file" for one that goes by its place. Value is one of the types
    // that arguments.cpp lists: std::string, int, double, those optional, a list of words.
    template <typename Value>
    Option option(const char* names, Value& value, const char* help);
    Option flag(const char* names, bool& value, const char* help);
    void examples(const char* text);  // what the help ends with
    void needsCommand();
    void takesAnything();
    void does(std::function<void()> work);  // once everything is read

protected:
    CLI::App* app_;
};

// The whole command line.
class Arguments : public Command {
public:
    Arguments(const char* description, const char* name, const char* version);
    ~Arguments();
    // Reads the arguments and does what the command says, or writes what --help and --version ask
    // for. Throws UsageFailure with a line that names the command.
    void parse(std::vector<std::string> arguments);

private:
    void addHelpCommand();
    void requireKnownCommand(const std::vector<std::string>& arguments) const;
    std::string usageLine(std::string message) const;
    std::unique_ptr<CLI::App> owned_;
};

}  // namespace ko::cli
