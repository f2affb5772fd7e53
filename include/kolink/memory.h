/* Memory that crosses the library's boundary. */
#ifndef KOLINK_MEMORY_H
#define KOLINK_MEMORY_H

#include "kolink/api.h"

KOLINK_BEGIN

/* Allocates a block of size bytes, contents unspecified. A size of 0 gives a valid block that
 * must be freed as well. Returns null, with the reason, when memory is short. May be called from
 * any thread. Data that a host binds to a profile (jIccBindTag) must come from here. */
KOLINK_API void *jMemAlloc(uint32_t size);

/* Frees a block from jMemAlloc; null is accepted and ignored. */
KOLINK_API void jMemFree(void *block);

KOLINK_END

#endif
