#include "cli/origin.h"

#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "cli/errors.h"
#include "cli/files.h"
#include "cli/system.h"
#include "cli/text.h"
#include "precise/profile.h"

namespace ko::cli {
namespace {

namespace fs = std::filesystem;
using State = Origin::State;

constexpr char kDigits[] = "0123456789abcdef";

std::string asAscii(std::string_view path) {
    std::string text;
    for (const char c : path) {
        const auto byte = static_cast<uint8_t>(c);
        if (byte >= 32 && byte < 127 && c != '%') {
            text += c;
            continue;
        }
        text += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return text;
}

std::string fromAscii(std::string_view text) {
    const auto digit = [&](size_t at) {
        const size_t value = at < text.size() ? std::string_view(kDigits).find(text[at]) : std::string_view::npos;
        return value < 16 ? static_cast<int>(value) : -1;
    };
    std::string path;
    for (size_t at = 0; at < text.size(); ++at) {
        const int high = text[at] == '%' ? digit(at + 1) : -1, low = text[at] == '%' ? digit(at + 2) : -1;
        if (high < 0 || low < 0) {
            path += text[at];
            continue;
        }
        path += static_cast<char>(high << 4 | low);
        at += 2;
    }
    return path;
}

std::string hex(const std::array<uint8_t, 16>& id) {
    std::string text;
    for (const uint8_t byte : id) text += {kDigits[byte >> 4], kDigits[byte & 15]};
    return text;
}

// A link of unknown make may name any place; one on another machine would be told who asks.
bool isOfThisMachine(const std::string& path) {
    const auto isSlash = [](char c) { return c == '/' || c == '\\'; };
    return path.size() < 2 || !isSlash(path[0]) || !isSlash(path[1]);
}

State stateOf(const fs::path& place, const std::string& id) {
    std::error_code error;
    const fs::file_status status = fs::status(place, error);
    const auto reason = static_cast<uint32_t>(error.value());
    if (status.type() == fs::file_type::none && system::isOfTheMachine(reason))
        failOn(fromPath(place), "cannot be read: " + system::errorText(reason));
    if (!fs::is_regular_file(status)) return State::gone;
    try {
        const InputFile file = openInput(fromPath(place));
        if (file.type != FileType::icc) return State::changed;
        return hex(precise::profileId(file.bytes)) == id ? State::found : State::changed;
    } catch (const Failure&) {  // one that cannot be read is not the one, unless the machine fails
        throwIfNotItsFault(fromPath(place));
        return State::gone;
    }
}

}  // namespace

std::string originLines(const std::string& side, const std::string& path, bool withPlace) {
    const fs::path place = toPath(path);
    std::string lines = side + "-file: " + asAscii(fromPath(place.filename())) + '\n';
    std::error_code error;
    const fs::path whole = fs::absolute(place, error);
    if (withPlace && !error) lines += side + "-path: " + asAscii(fromPath(whole.lexically_normal())) + '\n';
    return lines;
}

Origin originOf(const quality::LinkFacts& facts, const std::string& link, const std::string& side) {
    const std::string name = fromAscii(facts.from(side + "-file")), id = facts.from(side + "-id"),
                      whole = fromAscii(facts.from(side + "-path"));
    Origin origin;
    if (id.empty()) return origin;
    const auto look = [&](const fs::path& place) {
        const State state = stateOf(place, id);
        if (state == State::gone || origin.found()) return;
        // The first one of that name is told, unless the right one follows.
        if (state == State::changed && origin.state == State::changed) return;
        origin = {state, fromPath(place)};
    };
    const bool isName = !name.empty() && !toPath(name).has_parent_path() && name != "." && name != "..";
    if (!isName && whole.empty()) return origin;
    origin = {State::gone, whole.empty() ? name : whole};
    if (!whole.empty() && toPath(whole).is_absolute() && isOfThisMachine(whole)) look(toPath(whole));
    if (isName)
        for (const fs::path& folder : {toPath(link).parent_path(), fs::path()}) look(folder / toPath(name));
    return origin;
}

}  // namespace ko::cli
