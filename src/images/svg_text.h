// The bytes of an SVG picture as text.
#pragma once

#include <cstdint>
#include <string_view>

#include "base/utf16.h"

namespace qz {

// Decoded text. Plain ASCII, which most pictures are, is not copied: then it views the host's
// bytes.
class SvgText {
 public:
  // UTF-8 or UTF-16, told by the first bytes.
  SvgText(const uint8_t* bytes, size_t size);

  bool isAscii() const { return isAscii_; }
  // The text, if it is plain ASCII; else the units are.
  std::string_view ascii() const { return ascii_; }
  Utf16View units() const { return units_; }

 private:
  void decodeUtf8(const uint8_t* bytes, size_t size);
  void decodeUtf16(const uint8_t* bytes, size_t size, bool bigEndian);

  bool isAscii_ = false;
  std::string_view ascii_;
  Utf16String units_;
};

}  // namespace qz
