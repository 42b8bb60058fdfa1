#include "markup/decimal.h"

namespace qz {

// Each number is the one without its last digit, and that digit.
constinit const std::array<SmallDecimal, kDecimalCount> kDecimals = [] {
  std::array<SmallDecimal, kDecimalCount> decimals{};
  const auto fill = [&decimals](bool negative, uint32_t largest) {
    const auto index = [negative](uint32_t magnitude) {
      return negative ? kDecimalOrigin - magnitude : kDecimalOrigin + magnitude;
    };
    const SmallDecimal start = negative ? SmallDecimal{{'-'}, 1} : SmallDecimal{{}, 0};
    for (uint32_t magnitude = 0; magnitude <= largest; ++magnitude) {
      SmallDecimal& decimal = decimals[index(magnitude)];
      decimal = magnitude < 10 ? start : decimals[index(magnitude / 10)];
      decimal.text[decimal.length++] = static_cast<char>('0' + magnitude % 10);
    }
  };
  fill(true, kDecimalOrigin);
  fill(false, kLargestDecimal);
  return decimals;
}();

}  // namespace qz
