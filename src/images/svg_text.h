// The bytes of an SVG picture as text, and the picture cut into its root start tag and its inside.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "base/utf16.h"

namespace qz {

// Decoded text. Plain ASCII, which most pictures are, is not copied: then it views the host's
// bytes.
class SvgText {
 public:
  // UTF-8 or UTF-16, told by the first bytes.
  SvgText(const uint8_t* bytes, size_t size);
  SvgText(const SvgText&) = delete;
  SvgText& operator=(const SvgText&) = delete;

  // Calls use(std::string_view) or use(Utf16View).
  template <class Use>
  auto visit(Use use) const {
    return isAscii_ ? use(ascii_) : use(Utf16View(units_));
  }

 private:
  void decodeUtf8(const uint8_t* bytes, size_t size);
  void decodeUtf16(const uint8_t* bytes, size_t size, bool bigEndian);

  bool isAscii_ = false;
  std::string_view ascii_;
  Utf16String units_;
};

// Where the parts of a picture are: the root start tag from its "<" to its ">", the inside up to
// the last end tag.
struct SvgCut {
  size_t tagStart;
  size_t insideStart;
  size_t insideLength;
};

// The text is not parsed: the first "<svg" that white space follows is the root, the first ">" ends
// its tag, be it in quotes, the last "</svg>" ends the inside. None when one of them is missing.
std::optional<SvgCut> cutSvg(std::string_view text);
std::optional<SvgCut> cutSvg(Utf16View text);

}  // namespace qz
