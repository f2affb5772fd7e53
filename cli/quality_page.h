// The report of one or two links as a page for a browser: one file, nothing from elsewhere.
#pragma once

#include <span>
#include <string>

#include "cli/quality_summary.h"

namespace ko::cli {

std::string qualityPage(std::span<const ReportedLink> links, Language language);

}  // namespace ko::cli
