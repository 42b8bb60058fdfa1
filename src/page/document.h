#pragma once

#include <cstdint>

namespace qz {

// The size that a document of so many code units needs, or 0 if no signed 32-bit number tells it.
int32_t documentSize(uint64_t length, int32_t extraLength);

}  // namespace qz
