#include "markup/content_hash.h"

namespace qz {

// The exclusive or adds a number that the hash's low byte alone decides. So the low bytes run
// ahead, in steps cheaper than a 64-bit product, and four characters' numbers are multiplied
// independently of each other: large pictures take a tenth less.
void ContentHash::add(std::string_view characters) {
  constexpr uint64_t kFactors[] = {kSquare * kSquare * kSquare * kSquare,
                                   kSquare * kSquare * kSquare, kSquare * kSquare, kSquare};
  uint64_t low = value_;  // right in its low byte
  size_t i = 0;
  for (; i + 4 <= characters.size(); i += 4) {
    uint64_t sum = value_ * kFactors[0];
    for (size_t j = 0; j < 4; ++j) {
      const uint64_t next = low ^ static_cast<unsigned char>(characters[i + j]);
      sum += (next - low) * kFactors[j];
      low = next * (kSquare & 0xFF);
    }
    value_ = sum;
  }
  for (; i < characters.size(); ++i) addLow(static_cast<unsigned char>(characters[i]));
}

}  // namespace qz
