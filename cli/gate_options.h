// Gates on the command line and in a file: what a link must keep to be let through.
#pragma once

#include <optional>
#include <string>

#include "quality/gates.h"

namespace ko::cli {

class Command;

struct GateOptions {
    std::optional<double> de95, deMean, jump;
    std::optional<std::string> ink, pure, file;
    bool white = false, conformance = false;

    void addTo(Command& command);
    void addFileTo(Command& command);  // --gates alone
    // The file's gates, and over them the options'. Fails for what is no gate.
    quality::Gates gates() const;
};

}  // namespace ko::cli
