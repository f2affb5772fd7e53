// The elements of an ICC profile, each held against its type.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "quality/file_check.h"

namespace ko::quality {

struct ElementContext {
    uint32_t version;  // 2 or 4
    uint32_t deviceClass, space, connection;
};

// offset: of the element in the file. Faults are added; the element has at least 8 bytes.
void checkElement(const ElementContext& context, uint32_t tag, std::span<const uint8_t> element,
                  uint64_t offset, std::vector<Fault>& faults);

}  // namespace ko::quality
