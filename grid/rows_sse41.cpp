// The rows for processors with SSE4.1.
#include "grid/lanes_sse41.h"
#include "grid/row_kernels.h"

namespace ko::grid {

const Rows kSse41Rows = rowsIn<Sse41>("sse4.1");

}  // namespace ko::grid
