// Language tables: two texts in the grammar of the settings files, tied together by their keys.
#pragma once

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
    const char* translated(const char* text) const noexcept;
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

}  // namespace ko
