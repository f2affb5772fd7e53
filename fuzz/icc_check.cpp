// A profile of any kind against the rules, and its mended copy against them again.
#include "quality/file_check.h"

using namespace ko::quality;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto faults = checkIcc({data, size});
    const auto mended = mendIcc({data, size});
    if (mended.empty()) return 0;
    // What is mended stays so.
    for (const Fault& fault : checkIcc(mended))
        for (const std::string_view rule : {"size", "size-multiple", "id", "tag-place", "header-reserved"})
            if (fault.rule == rule) __builtin_trap();
    if (mendIcc(mended) != mended) __builtin_trap();
    return 0;
}
