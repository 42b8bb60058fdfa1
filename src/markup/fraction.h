#pragma once

#include <charconv>
#include <cstddef>

namespace qz {

// A fractional number as a piece of markup: fixed notation, six digits behind the point ("%f"),
// whatever the locale.
class Fraction {
 public:
  explicit Fraction(float value) : value_(value) {}
  explicit Fraction(double value) : value_(value) {}
  // Enough for every single-precision number.
  size_t room() const { return 48; }
  char* put(char* out) const {
    return std::to_chars(out, out + room(), value_, std::chars_format::fixed, 6).ptr;
  }

 private:
  double value_;
};

}  // namespace qz
