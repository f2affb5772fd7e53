// kolink: ICC device links from CMYK profiles, on the command line.
#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>
#include <cstdio>
#include <new>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/system.h"

namespace ko::cli {
namespace {

constexpr char kExamples[] =
    "Examples:\n"
    "  kolink link --source press.icc --destination printer.icc --output proof.icc\n"
    "  kolink info proof.icc\n"
    "  kolink plot proof.icc -o proof.svg\n"
    "  kolink convert --link proof.icc 0,0,0,255\n"
    "  kolink image photo.tif print.tif --source srgb.icc --destination press.icc\n"
    "\n"
    "kolink COMMAND --help tells more about one command.\n";

void addCommands(CLI::App& app) {
    constexpr void (*kCommands[])(CLI::App&) = {addLinkCommand,  addInfoCommand, addPlotCommand,
                                                addConvertCommand, addImageCommand, addListCommand,
                                                addCalibCommand, addTableCommand};
    for (const auto add : kCommands) add(app);
}

int complain(ExitStatus status, const std::string& line) {
    std::fputs(("kolink: " + line + "\n").c_str(), stderr);
    return status;
}

// Said before the parser looks, which would only miss a command.
void requireKnownCommand(const CLI::App& app, const std::vector<std::string>& arguments) {
    if (arguments.empty()) throw UsageFailure("a command is needed");
    const std::string& command = arguments.front();
    if (command.empty() || command[0] == '-') return;
    for (const CLI::App* known : app.get_subcommands(nullptr))
        if (known->get_name() == command) return;
    throw UsageFailure("there is no command " + command);
}

// The parser's message in one line, with the command that was meant.
std::string usageLine(const CLI::App& app, std::string message) {
    while (!message.empty() && message.back() == '\n') message.pop_back();
    std::string command = "kolink";
    for (const CLI::App* sub : app.get_subcommands()) command += ' ' + sub->get_name();
    return printable(message) + " (see " + command + " --help)";
}

int run(int argc, char** argv) {
    system::prepareStreams();
    CLI::App app("Makes ICC device links, converts colours and pictures through them, and shows and\n"
                 "edits what profiles, tables, tone curves and calibration sets hold.", "kolink");
    app.footer(kExamples);
    app.set_version_flag("--version", "kolink " KOLINK_VERSION, "Print the version and exit");
    app.require_subcommand(1);
    app.allow_windows_style_options(false);  // /usr/share is a path everywhere
    addCommands(app);
    try {
        auto arguments = system::arguments(argc, argv);
        requireKnownCommand(app, arguments);
        std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the end
        app.parse(std::move(arguments));
        finishOut();
        return kDone;
    } catch (const Found&) {
        finishOut();
        return kFailed;
    } catch (const CLI::CallForHelp&) {
        writeOut(app.help());
    } catch (const CLI::CallForVersion& version) {
        writeOut(std::string(version.what()) + '\n');
    } catch (const CLI::ParseError& error) {
        return complain(kWrongUsage, usageLine(app, error.what()));
    } catch (const UsageFailure& error) {
        return complain(kWrongUsage, usageLine(app, error.what()));
    }
    finishOut();
    return kDone;
}

}  // namespace
}  // namespace ko::cli

int main(int argc, char** argv) {
    using namespace ko::cli;
    try {
        return run(argc, argv);
    } catch (const Interrupted& error) {
        return complain(kInterrupted, error.what());
    } catch (const std::bad_alloc&) {
        return complain(kFailed, "not enough memory");
    } catch (const std::exception& error) {
        return complain(kFailed, error.what());
    }
}
