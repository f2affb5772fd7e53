// kolink image, in builds without the TIFF library: it says so.
#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include "cli/command.h"
#include "cli/errors.h"

namespace ko::cli {

void addImageCommand(CLI::App& app) {
    CLI::App* command = app.add_subcommand("image", "Convert a TIFF picture (not in this build)");
    command->allow_extras();
    command->callback([] { throw Failure("image: this build of kolink has no TIFF library"); });
}

}  // namespace ko::cli
