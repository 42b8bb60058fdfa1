// Recordings hold code units low byte first, the C interface takes those of the machine.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace qz::tools {

inline constexpr bool kHighByteFirst = std::endian::native == std::endian::big;

// From one order to the other, or back. The first `kept` bytes are no code units.
inline std::vector<uint8_t> inOtherOrder(const uint8_t* data, std::size_t size, std::size_t kept) {
  std::vector<uint8_t> bytes(data, data + size);
  for (std::size_t i = kept; i + 1 < size; i += 2) std::swap(bytes[i], bytes[i + 1]);
  return bytes;
}

}  // namespace qz::tools
