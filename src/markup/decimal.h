// Plain decimal integers: a leading minus when negative, no padding, no grouping.
#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <cstring>

namespace qz {

// The digits of 0000 to 9999, four characters each. Four digits a step are about twice as fast as
// one division a digit; the array has a tail so that four characters can be read from anywhere.
inline constexpr std::array<char, 4 * 10000 + 4> kFourDigits = [] {
  std::array<char, 4 * 10000 + 4> digits{};
  for (int number = 0; number < 10000; ++number) {
    digits[4 * number] = static_cast<char>('0' + number / 1000);
    digits[4 * number + 1] = static_cast<char>('0' + number / 100 % 10);
    digits[4 * number + 2] = static_cast<char>('0' + number / 10 % 10);
    digits[4 * number + 3] = static_cast<char>('0' + number % 10);
  }
  return digits;
}();

// The longest decimal of each width, and how far behind its end a number may touch the buffer.
template <std::integral Integer>
inline constexpr size_t kDecimalRoom = sizeof(Integer) > 4 ? 20 : 11;
inline constexpr size_t kDecimalOverrun = 3;

// Writes a number below 10,000 without leading zeros. All four characters are stored, whatever the
// number of digits: no branch depends on it.
inline char* writeUpToFourDigits(char* out, uint32_t value) {
  const uint32_t length = 1u + (value > 9) + (value > 99) + (value > 999);
  std::memcpy(out, &kFourDigits[4 * value + 4 - length], 4);
  return out + length;
}

inline char* writeFourDigits(char* out, uint32_t value) {
  std::memcpy(out, &kFourDigits[4 * value], 4);
  return out + 4;
}

inline char* writeUnsigned(char* out, uint64_t value) {
  if (value < 10000) return writeUpToFourDigits(out, static_cast<uint32_t>(value));
  out = writeUnsigned(out, value / 10000);
  return writeFourDigits(out, static_cast<uint32_t>(value % 10000));
}

// Returns the end of the number. Up to kDecimalOverrun characters behind it are overwritten.
template <std::integral Integer>
inline char* writeDecimal(char* out, Integer value) {
  using Magnitude = std::conditional_t<(sizeof(Integer) > 4), uint64_t, uint32_t>;
  auto magnitude = static_cast<Magnitude>(value);
  if constexpr (std::signed_integral<Integer>) {
    *out = '-';
    out += value < 0;
    magnitude = value < 0 ? Magnitude{0} - magnitude : magnitude;
  }
  if (magnitude < 10000) return writeUpToFourDigits(out, static_cast<uint32_t>(magnitude));
  return writeUnsigned(out, magnitude);
}

}  // namespace qz
