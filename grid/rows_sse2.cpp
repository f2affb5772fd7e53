// The rows for processors with SSE2.
#include "grid/lanes_sse2.h"
#include "grid/row_kernels.h"

namespace ko::grid {

const Rows kSse2Rows = rowsIn<Sse2>("sse2");

}  // namespace ko::grid
