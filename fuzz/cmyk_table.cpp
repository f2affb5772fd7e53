// CMYK tables, text and binary.
#include "cmyk/cmyk.h"
#include "fuzz/temp_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static TempFile file;
    static const auto table = ko::cmyk::createCmykLut();
    if (table) (void)ko::cmyk::loadCmykLut(*table, file.with(data, size));
    return 0;
}
