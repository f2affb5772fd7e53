// kolink image, in builds without the TIFF library: it says so.
#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/errors.h"

namespace ko::cli {

void addImageCommand(Command& app) {
    Command command = app.command("image", "Convert a TIFF picture (not in this build)");
    command.takesAnything();
    command.does([] { throw Failure("image: this build of kolink has no TIFF library"); });
}

}  // namespace ko::cli
