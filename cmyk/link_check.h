// What can be said against the settings of a link before it is made: which field, and why.
#pragma once

#include <optional>
#include <string>

#include "frame/problem.h"
#include "kolink/link_settings.h"

namespace ko::cmyk {

enum class LinkField { base, source, destination, black, output };

struct LinkProblem {
    LinkField field;
    std::string path;  // of the field; may be empty
    Problem problem;
};

// The first thing that would keep the link from being made, or would make it useless.
std::optional<LinkProblem> checkLinkSettings(const CmsLinkSettings& settings);

// Whether any field asks for a change of colours at all.
bool convertsNothing(const CmsLinkSettings& settings) noexcept;

// Why a file cannot be edited as a link from CMYK to CMYK, though it loads. Tables have no reason.
std::optional<Problem> whyNoLink(const char* path);

}  // namespace ko::cmyk
