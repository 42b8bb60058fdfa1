// Plain decimal integers: a leading minus when negative, no padding, no grouping.
#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace qz {

// The text of every number of a range that holds nearly all coordinates and differences. One
// look-up and one store of fixed size write a number, whatever its sign and length: a third faster
// on point lists than digits from a table with sign and length found by comparing.
struct SmallDecimal {
  char text[7];
  uint8_t length;
};
inline constexpr int32_t kSmallestDecimal = -9999;
inline constexpr int32_t kLargestDecimal = 19999;
inline constexpr uint32_t kDecimalCount = kLargestDecimal - kSmallestDecimal + 1;
extern const std::array<SmallDecimal, kDecimalCount> kDecimals;

// The longest decimal of each width, and how far behind its end a number may touch the buffer.
template <std::integral Integer>
inline constexpr size_t kDecimalRoom = sizeof(Integer) > 4 ? 20 : 11;
inline constexpr size_t kDecimalOverrun = sizeof(SmallDecimal) - 1;

// Writes the number whose place in the table is `index`.
inline char* writeSmallDecimal(char* out, uint32_t index) {
  const SmallDecimal& decimal = kDecimals[index];
  std::memcpy(out, &decimal, sizeof decimal);
  return out + decimal.length;
}

// Writes a number of any size, four digits at a time: those of 7 stand in "10007".
inline char* writeUnsigned(char* out, uint64_t value) {
  if (value <= kLargestDecimal)
    return writeSmallDecimal(out, static_cast<uint32_t>(value) - kSmallestDecimal);
  out = writeUnsigned(out, value / 10000);
  std::memcpy(out, kDecimals[value % 10000 + 10000 - kSmallestDecimal].text + 1, 4);
  return out + 4;
}

// Returns the end of the number. Up to kDecimalOverrun characters behind it are overwritten.
template <std::integral Integer>
inline char* writeDecimal(char* out, Integer value) {
  using Unsigned = std::conditional_t<(sizeof(Integer) > 4), uint64_t, uint32_t>;
  auto magnitude = static_cast<Unsigned>(value);
  const Unsigned index = magnitude - static_cast<Unsigned>(kSmallestDecimal);
  if (index < kDecimalCount) return writeSmallDecimal(out, static_cast<uint32_t>(index));
  if constexpr (std::signed_integral<Integer>) {
    if (value < 0) {
      *out++ = '-';
      magnitude = 0 - magnitude;
    }
  }
  return writeUnsigned(out, magnitude);
}

}  // namespace qz
