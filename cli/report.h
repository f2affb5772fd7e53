// What a command found out, kept as JSON and shown either as that or in lines for people.
#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace ko::cli {

using Json = nlohmann::ordered_json;

// JSON with an end of line; control characters that JSON would let through are escaped.
std::string toJson(const Json& report);

// One line a value, indented sections, lists of like objects as tables.
std::string toLines(const Json& report);

}  // namespace ko::cli
