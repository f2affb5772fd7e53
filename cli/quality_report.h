// What quality/ finds out about a link, as JSON.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/origin.h"
#include "cli/report.h"
#include "quality/quality.h"

namespace ko::cli {

// The two profiles that a link is judged by.
struct JudgedBy {
    std::string source, destination;  // paths
    bool found = false;               // by the link's provenance
    precise::Intent intent = precise::Intent::relative;
    bool compensateBlack = false;
};

struct ReportedLink {
    std::string path;
    const quality::Subject& subject;
    const quality::Findings& findings;
    const std::optional<JudgedBy>& judgedBy;
    const Origin& missing;  // without judgedBy: which profile, and why
    const std::vector<quality::GateResult>& gates;
};

// As docs/report.schema.json has it: ink in percent, colours with four decimals.
Json qualityJson(const ReportedLink& link);

// A fault of a file, as kolink check and the report tell it.
const char* levelName(quality::Level level);
Json faultJson(const quality::Fault& fault);

// As the option is called, without its dashes.
const char* gateName(quality::GateResult::Gate gate);

}  // namespace ko::cli
