// RGB tables, from either form: what is loaded is what a load of its saved file gives.
#include <cstdlib>
#include <cstring>

#include "fuzz/temp_file.h"
#include "table/table.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace ko::table;
    static TempFile file;
    static const auto first = create<RgbLut>(), second = create<RgbLut>();
    if (!first || !second) return 0;
    const std::string path = file.with(data, size);
    init(*first);  // what a file leaves out
    if (!load(*first, path.c_str())) return 0;
    for (uint32_t& node : first->nodes) node &= 0xffffff;  // the rest is in the binary form alone
    if (!save(*first, path.c_str()) || !load(*second, path.c_str()) ||
        std::memcmp(first.get(), second.get(), sizeof *first) != 0)
        std::abort();
    return 0;
}
