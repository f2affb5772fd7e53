// Raw 33-point tables, .amt. The record is one for the life of the target: making it anew, or reading
// through a file, takes longer than the reader.
#include "cmyk/load.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const auto profile = ko::cmyk::createProfile();
    if (profile) ko::cmyk::readTable(*profile, {data, size}, ko::cmyk::kAmtForm);
    return 0;
}
