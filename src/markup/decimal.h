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
inline constexpr uint32_t kLargestDecimal = 19999;
inline constexpr uint32_t kDecimalOrigin = 9999;  // the index of 0, and how many are negative
inline constexpr uint32_t kDecimalCount = kDecimalOrigin + kLargestDecimal + 1;
extern const std::array<SmallDecimal, kDecimalCount> kDecimals;

// The longest decimal of each width, and how far behind its end writing a number may touch the
// text.
template <std::integral Integer>
inline constexpr size_t kMaxDecimalSize = sizeof(Integer) > 4 ? 20 : 11;
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
    return writeSmallDecimal(out, static_cast<uint32_t>(value) + kDecimalOrigin);
  out = writeUnsigned(out, value / 10000);
  const uint32_t lowest = static_cast<uint32_t>(value % 10000);
  std::memcpy(out, kDecimals[lowest + 10000 + kDecimalOrigin].text + 1, 4);
  return out + 4;
}

// Returns the end of the number. Up to kDecimalOverrun characters behind it are overwritten.
template <std::unsigned_integral Integer>
inline char* writeDecimal(char* out, Integer value) {
  return writeUnsigned(out, value);
}

template <std::signed_integral Integer>
inline char* writeDecimal(char* out, Integer value) {
  static_assert(sizeof(Integer) >= sizeof(int32_t));
  using Unsigned = std::make_unsigned_t<Integer>;
  const Unsigned index = static_cast<Unsigned>(value) + kDecimalOrigin;
  if (index < kDecimalCount) return writeSmallDecimal(out, static_cast<uint32_t>(index));
  if (value >= 0) return writeUnsigned(out, static_cast<Unsigned>(value));
  *out++ = '-';
  return writeUnsigned(out, Unsigned{0} - static_cast<Unsigned>(value));
}

}  // namespace qz
