// The grammar of settings files and language tables: any text gives a tree, and what was read is
// what a save and a second reading give.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "frame/language.h"
#include "frame/settings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::string once = ko::SettingsTree::parse(text).text();
    if (ko::SettingsTree::parse(once).text() != once) std::abort();

    const size_t half = size / 2;
    const ko::LanguageTable table(text.substr(0, half), text.substr(half));
    (void)table.translated("text");
    return 0;
}
