// Description texts: a marker line, then lines of a keyword, a blank and a value; the comment,
// which may hold several lines, is the tail.
#include "cmyk/description.h"

#include <algorithm>
#include <span>

#include "cmyk/cmyk.h"
#include "frame/text.h"

namespace ko::cmyk {
namespace {

constexpr std::string_view kMarker = "_KOLINK_10J";
constexpr std::string_view kSiblingMarker = "_NQCMS_IJP10J";  // a sibling product's, same form

constexpr std::string_view kName = "NAME:";
constexpr std::string_view kInputFlags = "CTRL:";
constexpr std::string_view kOutputFlags = "CTL2:";
constexpr size_t kValueStart = kName.size() + 1;  // one blank after the colon

void appendFlags(std::string& text, std::string_view keyword, std::span<const uint8_t> flags) {
    text.append(keyword).append(" ");
    for (const uint8_t flag : flags) text.append(std::to_string(flag));
    text.append("\n");
}

template <class FlagsOf>
std::string build(std::string_view name, std::string_view comment, FlagsOf&& flagsOf) {
    std::string text;
    text.reserve(1536);
    text.append(kMarker).append("\n");
    text.append(kName).append(" ").append(name).append("\n");
    for (int32_t curve = 0; curve < kCurves; ++curve)
        appendFlags(text, curve < 4 ? kInputFlags : kOutputFlags, flagsOf(curve));
    return text.append(comment);
}

// Every digit but 0 marks a point. The text's terminator is read as a flag too, so a short line
// marks the point after its last digit; the points behind that keep what they held.
void readFlags(uint8_t (&flags)[kCurvePoints], std::string_view digits) noexcept {
    const size_t count = std::min(digits.size(), size_t{kCurvePoints});
    for (size_t point = 0; point < count; ++point) flags[point] = digits[point] != '0';
    if (count < kCurvePoints) flags[count] = 1;
}

}  // namespace

std::string buildDescription(const CmykProfile& profile) {
    return build(textIn(profile.name), textIn(profile.comment),
                 [&](int32_t curve) { return std::span(profile.curveFlags[curve]); });
}

std::string buildDescription(std::string_view name, std::string_view comment) {
    uint8_t ends[kCurvePoints] = {};
    ends[0] = ends[kCurvePoints - 1] = 1;
    return build(name, comment, [&](int32_t) { return std::span<const uint8_t>(ends); });
}

void applyDescription(CmykProfile& profile, std::string_view text) noexcept {
    if (!holdsEditingData(text)) return;
    int32_t inputLines = 0, outputLines = 0;
    bool commentTaken = false;
    size_t feed = text.find('\n');
    while (feed != std::string_view::npos) {
        const std::string_view rest = text.substr(feed + 1);
        const size_t next = text.find('\n', feed + 1);
        const std::string_view line = rest.substr(0, next == std::string_view::npos ? next : next - feed - 1);
        const std::string_view value = line.substr(std::min(kValueStart, line.size()));
        if (line.starts_with(kName)) {
            copyText(profile.name, value);
        } else if (line.starts_with(kInputFlags)) {
            // Lines beyond the last curve have nothing to fill.
            if (inputLines < kCurves) readFlags(profile.curveFlags[inputLines++], value);
        } else if (line.starts_with(kOutputFlags)) {
            if (outputLines < 4) readFlags(profile.curveFlags[4 + outputLines], value);
            ++outputLines;
        } else if (outputLines == 4 && !commentTaken) {
            // The comment is the whole tail. The walk goes on in it: a line there that begins with
            // a keyword is text and counts all the same.
            copyText(profile.comment, rest);
            commentTaken = true;
        }
        feed = next;
    }
}

std::string asPlainText(std::string_view comment) {
    std::string text;
    while (!comment.empty()) {
        const size_t end = std::min(comment.find('\n'), comment.size() - 1) + 1;
        const std::string_view line = comment.substr(0, end);
        if (line.starts_with(kName) || line.starts_with(kInputFlags) ||
            line.starts_with(kOutputFlags))
            text += ' ';
        text.append(line);
        comment.remove_prefix(end);
    }
    return text;
}

bool holdsEditingData(std::string_view description) noexcept {
    return description.starts_with(kMarker) || description.starts_with(kSiblingMarker);
}

}  // namespace ko::cmyk
