// What can be said against the settings of a link before it is made: which field, and why.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "frame/problem.h"
#include "kolink/link_settings.h"

namespace ko::cmyk {

enum class LinkField { base, source, destination, black, output };

struct LinkProblem {
    LinkField field;
    std::string path;  // of the field; may be empty
    Problem problem;
};

// What the file of a field is.
struct FileFact {
    const char* kind = "";    // Japanese, one of resources/texts.h
    std::string description;  // a record's text; may be empty
    std::string conversion;   // "CMYK - Lab, A2B0"; may be empty; ASCII
    std::optional<Problem> problem;  // why it cannot be used there
    bool operator==(const FileFact& other) const {
        return std::string_view(kind) == other.kind && description == other.description &&
               conversion == other.conversion && problem == other.problem;
    }
};

// Of the four fields that files are read from; nothing when the field is empty.
std::optional<FileFact> factOf(const CmsLinkSettings& settings, LinkField field);

// The first thing that would keep the link from being made, or would make it useless.
std::optional<LinkProblem> checkLinkSettings(const CmsLinkSettings& settings);

// Whether any field asks for a change of colours at all.
bool convertsNothing(const CmsLinkSettings& settings) noexcept;

// Why a file cannot be edited as a link from CMYK to CMYK. A table that can be read is one.
std::optional<Problem> whyNoLink(const char* path);

}  // namespace ko::cmyk
