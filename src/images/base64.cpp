#include "images/base64.h"

#include <algorithm>
#include <array>

#include "base/portability.h"

namespace qz {
namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// The two characters of every 12 bits: two look-ups encode three bytes.
constexpr std::array<char, 2 * 4096> kPairs = [] {
  std::array<char, 2 * 4096> pairs{};
  for (size_t bits = 0; bits < 4096; ++bits) {
    pairs[2 * bits] = kAlphabet[bits >> 6];
    pairs[2 * bits + 1] = kAlphabet[bits & 63];
  }
  return pairs;
}();

char* putPair(char* out, uint64_t bits) {
  std::memcpy(out, &kPairs[2 * static_cast<size_t>(bits)], 2);
  return out + 2;
}

char* putTriple(char* out, const uint8_t* bytes) {
  const unsigned bits = unsigned{bytes[0]} << 16 | unsigned{bytes[1]} << 8 | bytes[2];
  return putPair(putPair(out, bits >> 12), bits & 0xFFF);
}

// Six bytes, of which eight can be read.
char* putSix(char* out, const uint8_t* bytes) {
  const uint64_t bits = loadEightBigEndian(bytes);
  out = putPair(out, bits >> 52);
  out = putPair(out, bits >> 40 & 0xFFF);
  out = putPair(out, bits >> 28 & 0xFFF);
  return putPair(out, bits >> 16 & 0xFFF);
}

}  // namespace

void appendBase64(MarkupText& out, const uint8_t* bytes, size_t size) {
  constexpr size_t kTriples = 4096;
  size_t triples = size / 3;
  while (triples > 0) {
    const size_t step = std::min(triples, kTriples);
    char* text = out.reserve(4 * step);
    size_t i = 0;
    for (; i + 3 <= step; i += 2, bytes += 6) text = putSix(text, bytes);
    for (; i < step; ++i, bytes += 3) text = putTriple(text, bytes);
    out.commit(text);
    triples -= step;
  }
  if (size % 3 == 0) return;
  const uint8_t last[3] = {bytes[0], size % 3 == 2 ? bytes[1] : uint8_t{0}, 0};
  char* const text = out.reserve(4);
  putTriple(text, last);
  text[3] = '=';
  if (size % 3 == 1) text[2] = '=';
  out.commit(text + 4);
}

}  // namespace qz
