// What quality/ finds out about a link in a dozen sentences, for the terminal and for the page.
#pragma once

#include <array>
#include <string>

#include "cli/quality_report.h"

namespace ko::cli {

enum class Language : uint8_t { english, japanese, chinese };

// The rows of a summary, in order.
enum class Row : uint8_t {
    link, judgedBy, colour, reachable, best, worst, purity, black, grey, ink, smoothness, file, countOf
};
using Summary = std::array<std::string, static_cast<size_t>(Row::countOf)>;
Summary summaryOf(const ReportedLink& link, Language language);

// For the terminal: twelve lines in English, each with its label.
std::string qualitySummary(const ReportedLink& link);

// A gate that does not hold: its name as the option has it, its limit and what was found.
std::string gateLine(const quality::GateResult& gate, Language language = Language::english);

// Why colours are not judged.
std::string missingText(const Origin& missing, Language language = Language::english);

}  // namespace ko::cli
