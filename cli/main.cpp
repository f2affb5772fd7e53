// kolink: ICC device links from CMYK profiles, on the command line.
#include <cstdio>
#include <new>
#include <string>

#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/system.h"
#include "kolink/version.h"

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

void addCommands(Command& app) {
    constexpr void (*kCommands[])(Command&) = {addLinkCommand,  addInfoCommand, addPlotCommand,
                                                addConvertCommand, addImageCommand, addListCommand,
                                                addCalibCommand, addTableCommand};
    for (const auto add : kCommands) add(app);
}

int complain(ExitStatus status, const std::string& line) {
    std::fputs(("kolink: " + line + "\n").c_str(), stderr);
    return status;
}

int run(int argc, char** argv) {
    system::prepareStreams();
    Arguments arguments("Makes ICC device links, converts colours and pictures through them, and shows and\n"
                        "edits what profiles, tables, tone curves and calibration sets hold.", "kolink",
                        "kolink " KOLINK_VERSION);
    arguments.examples(kExamples);
    addCommands(arguments);
    ExitStatus status = kDone;
    try {
        arguments.parse(system::arguments(argc, argv));
    } catch (const Found&) {
        status = kFailed;
    } catch (const UsageFailure& error) {
        return complain(kWrongUsage, error.what());
    }
    finishOut();
    return status;
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
