// The report of one or two links as a page for a browser: one file, nothing from elsewhere.
#pragma once

#include <span>
#include <string>

#include "cli/quality_report.h"

namespace ko::cli {

enum class PageLanguage { english, japanese, chinese };

std::string qualityPage(std::span<const ReportedLink> links, PageLanguage language);

}  // namespace ko::cli
