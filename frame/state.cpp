#include "frame/state.h"

#include <algorithm>

#include "frame/ascii.h"
#include "frame/exception_room.h"
#include "frame/path.h"
#include "frame/settings.h"
#include "frame/text.h"

namespace ko {
namespace {

constinit ProcessState state;  // of plain members, so that no destructor runs before detach
constinit bool attached = false;

std::string_view viewOf(std::span<const char> bytes) noexcept {
    return {bytes.data(), bytes.size()};
}

// "@" begins a folder that is relative to the library's own, and so does everything that is not
// absolute: the current folder is the host's business. A value that is empty or does not fit
// names no folder, and the default stays.
void readProductFolder() {
    const std::string ini = joinPath(joinPath(state.moduleFolder, "ini"), "KoLink.ini");
    auto file = SettingsFile::open(ini.c_str());
    if (!file) return;
    file->select("\\INI");
    const std::string* const folder = file->value("KO_FOLDER");
    if (!folder) return;
    std::string value(trimmed(*folder));
    const bool relative = value.starts_with('@') || !platform::isAbsolute(value);
    if (value.starts_with('@')) value.erase(0, 1);
    if (value.empty()) return;
    if (relative) {
        platform::adoptSeparators(value);
        char whole[platform::kPathSize];
        if (platform::fullPath(joinPath(state.moduleFolder, value).c_str(), whole)) value = whole;
    }
    (void)copyPath(state.productFolder, value.c_str());
}

void loadLanguageTable(const std::string& language) {
    if (language.empty() || language == "japanese") return;
    const auto source = platform::textResource("TEXT_JAPANESE");
    const auto destination =
        platform::textResource(language == "chinese" ? "TEXT_CHINESE" : "TEXT_ENGLISH");
    state.languageTable = new LanguageTable(viewOf(source), viewOf(destination));
}

// Runs one step of attaching; what fails in it leaves the defaults.
template <class Step>
void attempt(Step&& step) noexcept {
    try {
        step();
    } catch (...) {
    }
}

}  // namespace

const ProcessState& processState() noexcept { return state; }

void attach(const AttachSettings& settings) noexcept {
    if (attached) return;
    const ExceptionRoom room;  // for what is thrown where memory is short
    attached = true;
    state.moduleHandle = platform::moduleHandle();
    const bool located = settings.modulePath
                             ? copyPath(state.modulePath, settings.modulePath->c_str())
                             : platform::modulePath(state.modulePath);
    if (located) {
        copyText(state.moduleFolder, folderOf(textIn(state.modulePath)));
        (void)copyPath(state.productFolder, state.moduleFolder);
        attempt(readProductFolder);
    }
    attempt([&] {
        loadLanguageTable(settings.language ? *settings.language : platform::userLanguage());
    });
    state.fileMutex = platform::createNamedMutex("_KOLINK_MUTEX");
}

void detach() noexcept {
    platform::closeNamedMutex(state.fileMutex);
    delete state.languageTable;
    state = {};
    attached = false;
}

}  // namespace ko
