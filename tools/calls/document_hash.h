// The hash by which a trace notes the document that was handed over.
#pragma once

#include <qzsvggen/qzsvggen.h>

#include <cstddef>
#include <cstdint>

namespace qz::tools {

// Over the code units, four a step, the last step filled up with zeros.
inline uint64_t documentHash(const SVG_Char* units, std::size_t count) {
  uint64_t hash = 0xcbf29ce484222325u ^ count;
  for (std::size_t i = 0; i < count; i += 4) {
    uint64_t step = 0;
    for (std::size_t k = 0; k < 4 && i + k < count; ++k)
      step |= uint64_t{static_cast<uint16_t>(units[i + k])} << 16 * k;
    hash = (hash ^ step) * 0x100000001b3u;
    hash ^= hash >> 32;
  }
  return hash;
}

}  // namespace qz::tools
