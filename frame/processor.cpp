// The compiler's runtime asks the processor, and for AVX2 the system as well.
#include "frame/processor.h"

namespace ko {

bool processorHasSse41() noexcept {
    __builtin_cpu_init();
    return __builtin_cpu_supports("sse4.1") != 0;
}

bool processorHasAvx2() noexcept {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0;
}

}  // namespace ko
