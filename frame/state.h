// What the library knows from its process attach to its process detach; nothing changes it
// between them.
#pragma once

#include <optional>
#include <string>

#include "frame/encoding.h"
#include "frame/language.h"
#include "frame/platform.h"

namespace ko {

struct ProcessState {
    void* moduleHandle = nullptr;  // dialogs and resources are loaded from it
    char modulePath[platform::kPathSize] = {};
    char moduleFolder[platform::kPathSize] = {};
    // Where the product keeps its profiles and its plug-in: the module's folder, or what
    // ini/KoLink.ini in it says.
    char productFolder[platform::kPathSize] = {};
    const LanguageTable* languageTable = nullptr;  // null: texts stay Japanese
    platform::NamedMutex* fileMutex = nullptr;     // keeps the file guard's mutex in being
};

// The state is empty before attach and after detach.
const ProcessState& processState() noexcept;

// What attach asks the system for, unless it is given.
struct AttachSettings {
    std::optional<std::string> modulePath;
    std::optional<std::string> language;
};

// Run when the shared library is loaded and unloaded; a program that links the engine itself
// calls them. Attaching never fails: what cannot be had keeps its default. Not to be called while
// another thread uses the engine. A second attach changes nothing.
void attach(const AttachSettings& settings = {}) noexcept;
void detach() noexcept;

// The text to show for a Japanese text, in the language of the user. In the table's own encoding,
// or the Japanese text itself: frame/dialog shows either.
inline const char* translated(const char* japanese) noexcept {
    const LanguageTable* const table = processState().languageTable;
    return table ? table->translated(japanese) : japanese;
}

// Of the tables' translations and of what the user types into records.
inline Encoding userEncoding() noexcept {
    const LanguageTable* const table = processState().languageTable;
    return table && table->destinationLanguage() == "chinese" ? Encoding::gb2312
                                                              : Encoding::shiftJis;
}

}  // namespace ko
