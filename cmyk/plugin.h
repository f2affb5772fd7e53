// The optional plug-in "LutRead", a separate product module that reads foreign tables. Found in
// the product folder; loaded and freed within one combination.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace ko::cmyk {

class Plugin {
public:
    // Loads the plug-in of a folder and opens a table with it; empty when the folder is no absolute
    // path, or the plug-in cannot be loaded, lacks an entry point, or refuses the table.
    [[nodiscard]] static std::optional<Plugin> open(std::string_view folder,
                                                    std::string_view tablePath);
    Plugin(Plugin&& other) noexcept
        : module_(std::exchange(other.module_, nullptr)),
          table_(std::move(other.table_)),
          convert_(other.convert_),
          close_(other.close_) {}
    Plugin& operator=(Plugin&& other) noexcept {
        std::swap(module_, other.module_);
        table_.swap(other.table_);
        std::swap(convert_, other.convert_);
        std::swap(close_, other.close_);
        return *this;
    }
    ~Plugin();

    // cmyk: four bytes in that order; rgb: three bytes out.
    void toRgb(uint8_t* cmyk, uint8_t* rgb) const {
        convert_(cmyk, cmyk + 1, cmyk + 2, cmyk + 3, rgb);
    }

private:
    // The entry points, all cdecl. GetLutInfo must be there but is never called.
    using Open = int (*)(char* path);
    using Convert = int (*)(uint8_t* c, uint8_t* m, uint8_t* y, uint8_t* k, uint8_t* rgb);
    using Close = int (*)();

    Plugin(void* module, std::vector<char> table, Convert convert, Close close) noexcept
        : module_(module), table_(std::move(table)), convert_(convert), close_(close) {}

    void* module_;
    // The path that the plug-in was given: it may keep the pointer until it is closed, and write
    // into it. A vector stays at its place when it is moved.
    std::vector<char> table_;
    Convert convert_;
    Close close_;
};

}  // namespace ko::cmyk
