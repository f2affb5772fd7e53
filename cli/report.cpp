#include "cli/report.h"

#include <algorithm>
#include <cctype>
#include <vector>

#include "cli/text.h"

namespace ko::cli {
namespace {

constexpr size_t kIndent = 2;
constexpr size_t kLabelWidth = 20;

// "gridPoints" is "grid points" to people.
std::string label(const std::string& key) {
    std::string text;
    for (const char c : key) {
        const auto letter = static_cast<unsigned char>(c);
        if (std::isupper(letter) && !text.empty() && std::islower(static_cast<unsigned char>(text.back())))
            (text += ' ') += static_cast<char>(std::tolower(letter));
        else text += c;
    }
    return text;
}

std::string scalar(const Json& value) {
    if (value.is_null()) return "-";
    if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
    if (value.is_string()) return printable(value.get<std::string>());
    if (value.is_number_float()) return number(value.get<double>(), 6);
    return value.dump();
}

bool isSimple(const Json& value) { return !value.is_structured(); }

// Numbers with commas between; pairs as (x, y).
std::string inOneLine(const Json& list) {
    std::string text;
    for (const Json& item : list) {
        const bool isPair = item.is_array();
        if (!text.empty()) text += isPair ? " " : ", ";
        text += isPair ? '(' + inOneLine(item) + ')' : scalar(item);
    }
    return text;
}

size_t shownWidth(const std::string& text) {  // columns, near enough: one a character
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xc0) != 0x80; }));
}

std::string padded(const std::string& text, size_t width) {
    const size_t shown = shownWidth(text);
    return shown < width ? text + std::string(width - shown, ' ') : text;
}

void addTable(std::string& out, const Json& rows, size_t depth) {
    std::vector<std::string> keys;
    for (const Json& row : rows)
        for (const auto& [key, value] : row.items())
            if (std::find(keys.begin(), keys.end(), key) == keys.end()) keys.push_back(key);
    std::vector<std::vector<std::string>> cells(1);
    for (const std::string& key : keys) cells[0].push_back(label(key));
    for (const Json& row : rows) {
        auto& line = cells.emplace_back();
        for (const std::string& key : keys) {
            const auto found = row.find(key);
            line.push_back(found == row.end() ? "" : found->is_array() ? inOneLine(*found) : scalar(*found));
        }
    }
    for (const auto& line : cells) {
        std::string text(depth * kIndent, ' ');
        for (size_t column = 0; column < keys.size(); ++column) {
            size_t width = 0;
            for (const auto& other : cells) width = std::max(width, shownWidth(other[column]));
            text += padded(line[column], width) + "  ";
        }
        text.erase(text.find_last_not_of(' ') + 1);
        out += text + '\n';
    }
}

void addObject(std::string& out, const Json& object, size_t depth) {
    const std::string margin(depth * kIndent, ' ');
    for (const auto& [key, value] : object.items()) {
        const std::string name = label(key);
        const bool isTable = value.is_array() && !value.empty() && value[0].is_object();
        if (value.is_object() || isTable) {
            out += margin + name + '\n';
            if (isTable) addTable(out, value, depth + 1);
            else addObject(out, value, depth + 1);
            continue;
        }
        // A text of several lines keeps them, each behind its margin.
        std::string text = value.is_array() ? inOneLine(value) : "";
        const std::string start = margin + padded(name, kLabelWidth - std::min(kLabelWidth, depth * kIndent)) + ' ';
        if (value.is_string()) {
            const std::string whole = value.get<std::string>();
            for (size_t at = 0; at <= whole.size();) {
                const size_t end = std::min(whole.find('\n', at), whole.size());
                if (at > 0) text += '\n' + std::string(start.size(), ' ');
                text += printable(std::string_view(whole).substr(at, end - at));
                at = end + 1;
            }
        } else if (isSimple(value)) {
            text = scalar(value);
        }
        out += start + text + '\n';
    }
}

}  // namespace

std::string toJson(const Json& report) {
    const std::string text = report.dump(2, ' ', false, Json::error_handler_t::replace);
    std::string out;
    for (size_t at = 0; at < text.size(); ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        const auto next = static_cast<unsigned char>(at + 1 < text.size() ? text[at + 1] : 0);
        static constexpr char kDigits[] = "0123456789abcdef";
        if (byte == 0x7f) {
            out += "\\u007f";
        } else if (byte == 0xc2 && next < 0xa0) {  // U+0080 to U+009F
            (((out += "\\u00") += kDigits[next >> 4]) += kDigits[next & 15]);
            ++at;
        } else {
            out += text[at];
        }
    }
    return out + '\n';
}

std::string toLines(const Json& report) {
    std::string out;
    addObject(out, report, 0);
    return out;
}

}  // namespace ko::cli
