// What the processor can do beyond SSE2, which every target has.
#pragma once

namespace ko {

bool processorHasSse41() noexcept;
bool processorHasAvx2() noexcept;  // and the system keeps its registers

}  // namespace ko
