// CMYK profiles as device links: what an editor makes is what a load of the saved file gives.
#include <cstdlib>
#include <cstring>

#include "cmyk/cmyk.h"
#include "fuzz/shape.h"
#include "fuzz/temp_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace ko::cmyk;
    static TempFile file;
    static const auto made = createProfile(), loaded = createProfile();
    if (!made || !loaded) return 0;
    Shape shape(data, size);
    // Printable, and no line that would be taken for one of the description's own.
    for (auto field : {std::span<char>(made->name), std::span<char>(made->comment)}) {
        const size_t length = shape.byte() % field.size();
        for (size_t at = 0; at < field.size(); ++at)
            field[at] = at < length ? static_cast<char>('a' + shape.byte() % 26) : '\0';
    }
    for (int curve = 0; curve < kCurves; ++curve)
        for (int point = 0; point < 65; ++point) {
            const uint8_t value = shape.byte();
            made->curveFlags[curve][point] = point % 64 == 0 || value % 5 == 0;
            made->curveValues[curve][point] = value;
        }
    for (int32_t change = shape.byte(); change > 0; --change)
        made->grid[shape.word() % KOLINK_CMYK_NODES] = shape.word();
    const std::string path = file.with(nullptr, 0);
    if (!saveProfile(*made, path.c_str()) || !loadProfile(*loaded, path.c_str())) std::abort();
    if (std::strcmp(made->name, loaded->name) != 0 || std::strcmp(made->comment, loaded->comment) != 0 ||
        std::memcmp(made->curveFlags, loaded->curveFlags, sizeof made->curveFlags) != 0 ||
        std::memcmp(made->grid, loaded->grid, sizeof made->grid) != 0)
        std::abort();
    for (int curve = 0; curve < kCurves; ++curve)  // what lies between is the spline's
        for (int point = 0; point < 65; ++point)
            if (made->curveFlags[curve][point] &&
                made->curveValues[curve][point] != loaded->curveValues[curve][point])
                std::abort();
    return 0;
}
