// Finding, opening and closing the plug-in.
#include "cmyk/plugin.h"

#include <memory>
#include <string>

#include "frame/platform.h"
#include "frame/text.h"

namespace ko::cmyk {

std::optional<Plugin> Plugin::open(std::string_view folder, std::string_view tablePath) {
    std::string path = joinPath(folder, "LutRead");
    path += platform::kPluginSuffix;
    std::unique_ptr<void, decltype(&platform::freeModule)> module(
        platform::loadModule(path.c_str()), &platform::freeModule);
    if (!module) return std::nullopt;
    const auto find = [&](const char* name) { return platform::findSymbol(module.get(), name); };
    const auto openTable = reinterpret_cast<Open>(find("LutOpen"));
    const auto close = reinterpret_cast<Close>(find("LutClose"));
    const auto convert = reinterpret_cast<Convert>(find("ConvertToRgb"));
    if (!openTable || !close || !convert || !find("GetLutInfo")) return std::nullopt;
    std::string table(tablePath);  // the plug-in is free to write into its argument
    if (openTable(table.data()) != 0) return std::nullopt;
    return Plugin(module.release(), convert, close);
}

Plugin::~Plugin() {
    if (!module_) return;
    close_();
    platform::freeModule(module_);
}

}  // namespace ko::cmyk
