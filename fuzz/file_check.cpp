// The checks of the product's own files; the first byte chooses the kind.
#include "quality/file_check.h"

using namespace ko::quality;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const std::span bytes(data + 1, size - 1);
    for (const Fault& fault : checkFile(static_cast<FileForm>(data[0] % 8), bytes))
        if (fault.offset > bytes.size()) __builtin_trap();
    (void)lostInDialogs(bytes);
    return 0;
}
