// Language tables: two texts in the grammar of the settings files, tied together by their keys.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace ko {

class LanguageTable {
public:
    // A missing text is an empty one: then nothing is translated.
    LanguageTable(std::string_view source, std::string_view destination);

    // The destination's text for the key that carries text in the source; text itself when there
    // is none. The result lives as long as the table and the argument do.
    const char* convert(const char* text) const noexcept;
    const std::string& destinationLanguage() const noexcept { return language_; }

private:
    std::string language_;  // the name of the destination's directory
    struct Hash {
        using is_transparent = void;
        size_t operator()(std::string_view text) const noexcept {
            return std::hash<std::string_view>()(text);
        }
    };
    std::unordered_map<std::string, std::string, Hash, std::equal_to<>> texts_;
};

// The names that the dialogs' descriptions use; a null table translates nothing.
[[nodiscard]] std::unique_ptr<const LanguageTable> jRegsLangLoad(std::string_view source,
                                                                std::string_view destination);
const char* jRegsLangConv(const LanguageTable* table, const char* text) noexcept;
const char* jRegsLangGetDstLanguage(const LanguageTable* table) noexcept;  // "" for null
inline void jRegsLangRelease(const LanguageTable* table) noexcept { delete table; }

// The name of the user's language for what 1, or an empty text.
std::string jOemText(int what);

}  // namespace ko
