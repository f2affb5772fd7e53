// RGB tables, text and binary.
#include "fuzz/temp_file.h"
#include "table/table.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static TempFile file;
    static const auto table = ko::table::create<RgbLut>();
    if (table) (void)ko::table::load(*table, file.with(data, size));
    return 0;
}
