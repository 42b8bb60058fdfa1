#pragma once

#include <cfloat>
#include <charconv>
#include <cstddef>

namespace qz {

// Single precision is rounded after each operation: the last digits depend on it.
static_assert(FLT_EVAL_METHOD == 0, "for 32-bit x86: -msse2 -mfpmath=sse");

// A fractional number as a piece of markup: fixed notation, six digits behind the point ("%f"),
// whatever the locale.
class Fraction {
 public:
  explicit Fraction(float value) : value_(value) {}
  // An opacity, at most 1.
  explicit Fraction(double value) : value_(value) {}
  // The longest single-precision number: a sign, 39 digits, the point, six digits.
  size_t maxSize() const { return 47; }
  char* put(char* out) const {
    return std::to_chars(out, out + maxSize(), value_, std::chars_format::fixed, 6).ptr;
  }

 private:
  double value_;
};

}  // namespace qz
