// Any bytes may fail to load as a profile, none may crash.
#include "icc/icc.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto profile = ko::icc::parseHeader({data, size}, /*claimTolerance=*/1 << 16);
    if (!profile) return 0;
    // What was loaded is owned and writable.
    for (IccTagEntry& tag : ko::icc::tagsOf(*profile)) tag.offset ^= tag.signature ^ tag.size;
    ko::icc::unbindTag(profile.get(), ko::fourcc("desc"));
    return 0;
}
