#include "frame/language.h"

#include "frame/settings.h"

namespace ko {
namespace {

// A text of several lines stands in one line of a table, "<br>" between its own.
std::string withLineEnds(std::string text) {
    for (size_t at = 0; (at = text.find("<br>", at)) != text.npos;) text.replace(at, 4, "\n");
    return text;
}

}  // namespace

LanguageTable::LanguageTable(std::string_view source, std::string_view destination) {
    const SettingsTree from = SettingsTree::parse(source);
    const SettingsTree to = SettingsTree::parse(destination);
    if (to.root().directories.empty()) return;
    const auto& translations = to.root().directories.front();
    language_ = translations.name;
    if (from.root().directories.empty()) return;
    // Where two keys carry the same text, the first one's translation serves.
    for (const auto& key : from.root().directories.front().keys)
        if (const auto* translation = translations.findKey(key.name))
            texts_.emplace(withLineEnds(key.value), withLineEnds(translation->value));
}

const char* LanguageTable::translated(const char* text) const noexcept {
    const auto found = texts_.find(std::string_view(text));
    return found == texts_.end() ? text : found->second.c_str();
}

}  // namespace ko
