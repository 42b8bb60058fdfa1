#include "images/svg_text.h"

#include <algorithm>

namespace qz {
namespace {

bool allAscii(std::string_view text) {
  unsigned bits = 0;
  for (const char character : text) bits |= static_cast<unsigned char>(character);
  return bits < 0x80;
}

// The length of a sequence by its first byte; 0 for a byte that starts none.
size_t sequenceLength(uint8_t first) {
  if (first < 0x80) return 1;
  if (first >> 5 == 0b110) return 2;
  if (first >> 4 == 0b1110) return 3;
  if (first >> 3 == 0b11110) return 4;
  return 0;
}

// The bytes that follow the first are not checked.
uint32_t codePoint(const uint8_t* bytes, size_t length) {
  if (length == 1) return bytes[0];
  uint32_t point = bytes[0] & (0x7Fu >> length);
  for (size_t i = 1; i < length; ++i) point = point << 6 | (bytes[i] & 0x3Fu);
  return point;
}

void appendCodePoint(Utf16String& out, uint32_t point) {
  if (point >= 0x10000) {
    out.push_back(static_cast<CodeUnit>(0xD800 + ((point - 0x10000) >> 10)));
    point = 0xDC00 + ((point - 0x10000) & 0x3FF);
  }
  out.push_back(static_cast<CodeUnit>(point));
}

}  // namespace

SvgText::SvgText(const uint8_t* bytes, size_t size) {
  const auto startsWith = [&](std::initializer_list<uint8_t> mark) {
    return size >= mark.size() && std::equal(mark.begin(), mark.end(), bytes);
  };
  if (size > 0 && bytes[0] < 0x80 && (size == 1 || bytes[1] != 0))
    decodeUtf8(bytes, size);
  else if (startsWith({0xEF, 0xBB, 0xBF}))
    decodeUtf8(bytes + 3, size - 3);
  else if (startsWith({0xFE, 0xFF}))
    decodeUtf16(bytes + 2, size - 2, true);
  else if (startsWith({0xFF, 0xFE}))
    decodeUtf16(bytes + 2, size - 2, false);
  else
    decodeUtf16(bytes, size, false);
}

// A sequence that the end cuts off is dropped, a byte that starts none is the unit 0.
void SvgText::decodeUtf8(const uint8_t* bytes, size_t size) {
  ascii_ = std::string_view(reinterpret_cast<const char*>(bytes), size);
  isAscii_ = allAscii(ascii_);
  if (isAscii_) return;
  units_.reserve(size);
  for (size_t i = 0; i < size;) {
    const size_t length = sequenceLength(bytes[i]);
    if (length > size - i) return;
    appendCodePoint(units_, length == 0 ? 0 : codePoint(bytes + i, length));
    i += std::max<size_t>(length, 1);
  }
}

void SvgText::decodeUtf16(const uint8_t* bytes, size_t size, bool bigEndian) {
  const size_t high = bigEndian ? 0 : 1;
  units_.resize(size / 2);
  for (size_t i = 0; i < units_.size(); ++i)
    units_[i] = static_cast<CodeUnit>(bytes[2 * i + high] << 8 | bytes[2 * i + 1 - high]);
}

}  // namespace qz
