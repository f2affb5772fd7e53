// Raw 33-point tables, .amt.
#include "cmyk/cmyk.h"
#include "fuzz/temp_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static TempFile file;
    static const auto profile = ko::cmyk::createProfile();
    if (profile) (void)ko::cmyk::loadLutableAmatch(*profile, file.with(data, size));
    return 0;
}
