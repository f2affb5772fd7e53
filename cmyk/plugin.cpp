// Finding, opening and closing the plug-in.
#include "cmyk/plugin.h"

#include <memory>
#include <string>

#include "frame/path.h"
#include "frame/platform.h"

namespace ko::cmyk {
namespace {

// Of a refusal the plug-in may have left a reason itself; otherwise it is the table.
bool opens(int (*open)(char* path), char* table) {
    const uint32_t before = platform::lastError();
    platform::setLastError(0);
    const bool opened = open(table) == 0;
    if (opened) platform::setLastError(before);
    else if (platform::lastError() == 0) platform::setLastError(platform::Cause::damaged);
    return opened;
}

}  // namespace

std::optional<Plugin> Plugin::open(std::string_view folder, std::string_view tablePath) {
    std::string path = joinPath(folder, "LutRead");
    path += platform::kPluginSuffix;
    // A bare name would be looked for wherever the system or the current folder has one.
    if (!platform::isAbsolute(path)) {
        platform::setLastError(platform::Cause::wrongArgument);
        return std::nullopt;
    }
    std::unique_ptr<void, decltype(&platform::freeModule)> module(
        platform::loadModule(path.c_str()), &platform::freeModule);
    if (!module) return std::nullopt;
    const auto find = [&](const char* name) { return platform::findSymbol(module.get(), name); };
    const auto openTable = reinterpret_cast<Open>(find("LutOpen"));
    const auto close = reinterpret_cast<Close>(find("LutClose"));
    const auto convert = reinterpret_cast<Convert>(find("ConvertToRgb"));
    if (!openTable || !close || !convert || !find("GetLutInfo")) return std::nullopt;
    std::vector<char> table(tablePath.begin(), tablePath.end());
    table.push_back('\0');
    if (!opens(openTable, table.data())) return std::nullopt;
    return Plugin(module.release(), std::move(table), convert, close);
}

Plugin::~Plugin() {
    if (!module_) return;
    const platform::ErrorKeeper keeper;
    close_();
    platform::freeModule(module_);
}

}  // namespace ko::cmyk
