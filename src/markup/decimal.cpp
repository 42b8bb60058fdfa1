#include "markup/decimal.h"

namespace qz {

// Each number is the one without its last digit, and that digit.
constinit const std::array<SmallDecimal, kDecimalCount> kDecimals = [] {
  std::array<SmallDecimal, kDecimalCount> decimals{};
  const auto fill = [&decimals](int32_t sign, int32_t largest, SmallDecimal start) {
    for (int32_t magnitude = 0; magnitude <= largest; ++magnitude) {
      SmallDecimal& decimal = decimals[sign * magnitude - kSmallestDecimal];
      decimal = magnitude < 10 ? start : decimals[sign * (magnitude / 10) - kSmallestDecimal];
      decimal.text[decimal.length++] = static_cast<char>('0' + magnitude % 10);
    }
  };
  fill(-1, -kSmallestDecimal, {{'-'}, 1});
  fill(1, kLargestDecimal, {{}, 0});
  return decimals;
}();

}  // namespace qz
