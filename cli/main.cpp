// kolink: ICC device links on the command line.
#include <cxxabi.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <typeinfo>

#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/system.h"
#include "cli/waiting.h"
#include "frame/state.h"
#include "grid/rows.h"
#include "kolink/version.h"

namespace ko::cli {
namespace {

constexpr char kExamples[] =
    "Examples:\n"
    "  kolink link --source press.icc --destination printer.icc --output proof.icc\n"
    "  kolink info proof.icc\n"
    "  kolink plot proof.icc -o proof.svg\n"
    "  kolink report proof.icc --source press.icc --destination printer.icc\n"
    "  kolink convert --link proof.icc 0,0,0,255\n"
    "  kolink image photo.tif print.tif --source srgb.icc --destination press.icc\n"
    "\n"
    "kolink COMMAND --help tells more about one command.\n";

void addCommands(Command& app) {
    constexpr void (*kCommands[])(Command&) = {addLinkCommand,  addInfoCommand, addPlotCommand,
                                                addConvertCommand, addImageCommand, addListCommand,
                                                addCalibCommand, addTableCommand, addReportCommand,
                                                addCheckCommand};
    for (const auto add : kCommands) add(app);
}

// Needs no memory: what it says may be that there is none.
int complain(int status, std::string_view line) noexcept {
    for (const std::string_view part : {std::string_view("kolink: "), line, std::string_view("\n")})
        std::fwrite(part.data(), 1, part.size(), stderr);
    std::fflush(stderr);
    return status;
}

// Memory may be short where nothing can catch it: for the parser's globals before main begins, for
// an exception itself, in the destructors of the JSON library.
std::terminate_handler gUsualEnd;
[[noreturn]] void endWithoutMemory() noexcept {
    const std::type_info* const type = abi::__cxa_current_exception_type();
    if (type && *type != typeid(std::bad_alloc)) gUsualEnd();
    complain(kFailed, "not enough memory");
    std::_Exit(kFailed);
}
[[gnu::constructor(101)]] void expectShortMemory() noexcept {
    gUsualEnd = std::set_terminate(endWithoutMemory);
}

// The engine's state, for as long as commands run.
class Attachment {
public:
    Attachment() { attach({.modulePath = system::libraryFile(), .language = {}}); }
    ~Attachment() { detach(); }
    Attachment(const Attachment&) = delete;
};

int run(int argc, char** argv) {
    const Attachment attachment;
    setGuardWait(waitForGuard);
    const std::string version =
        std::string("kolink " KOLINK_VERSION ", kernels for ") + grid::rows().name;
    Arguments arguments("Makes ICC device links, converts colours and pictures through them, and shows and\n"
                        "edits what profiles, tables, tone curves and calibration sets hold.", "kolink",
                        version.c_str());
    arguments.examples(kExamples);
    addCommands(arguments);
    ExitStatus status = kDone;
    try {
        arguments.parse(system::arguments(argc, argv));
    } catch (const Found& found) {
        status = found.status;
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
    system::prepareStreams();
    system::catchInterruptions();
    try {
        return run(argc, argv);
    } catch (const Interrupted& interrupted) {
        return complain(128 + interrupted.signal, "interrupted");
    } catch (const std::bad_alloc&) {
        return complain(kFailed, "not enough memory");
    } catch (const std::exception& error) {
        return complain(kFailed, error.what());
    }
}
