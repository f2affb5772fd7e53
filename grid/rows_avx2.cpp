// The rows for processors with AVX2.
#include "grid/lanes_avx2.h"
#include "grid/row_kernels.h"

namespace ko::grid {

const Rows kAvx2Rows = rowsIn<Avx2>("avx2");

}  // namespace ko::grid
