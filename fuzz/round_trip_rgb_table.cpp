// RGB tables, from either form: what is loaded is what a load of its saved file gives.
#include <cstdlib>
#include <cstring>

#include "cmyk/cmyk.h"
#include "fuzz/temp_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace ko::cmyk;
    static TempFile file;
    static const auto first = createRgbLut(), second = createRgbLut();
    if (!first || !second) return 0;
    const std::string path = file.with(data, size);
    initRgbLut(*first);  // what a file leaves out
    if (loadRgbLut(*first, path.c_str()) != 1) return 0;
    for (uint32_t& node : first->nodes) node &= 0xffffff;  // the rest is in the binary form alone
    if (saveRgbLut(*first, path.c_str()) != 1 || loadRgbLut(*second, path.c_str()) != 1 ||
        std::memcmp(first.get(), second.get(), sizeof *first) != 0)
        std::abort();
    return 0;
}
