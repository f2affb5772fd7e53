// CMYK tables, from either form: what is loaded is what a load of its saved file gives.
#include <cstdlib>
#include <cstring>

#include "cmyk/cmyk.h"
#include "fuzz/temp_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace ko::cmyk;
    static TempFile file;
    static const auto first = createCmykLut(), second = createCmykLut();
    if (!first || !second) return 0;
    const std::string path = file.with(data, size);
    initCmykLut(*first);  // what a file leaves out
    if (loadCmykLut(*first, path.c_str()) != 1) return 0;
    if (saveCmykLut(*first, path.c_str()) != 1 || loadCmykLut(*second, path.c_str()) != 1 ||
        std::memcmp(first.get(), second.get(), sizeof *first) != 0)
        std::abort();
    return 0;
}
