// An SVG picture, taken apart.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "images/svg_root.h"
#include "images/svg_text.h"

namespace qz {

// The root's attributes and its inside. May view the bytes that it was made of.
struct SvgImage {
  SvgText text;
  SvgRootAttributes root;
  size_t insideStart;
  size_t insideLength;

  // What stands in the root: one of the two, the other is empty.
  std::string_view insideAscii() const {
    return text.isAscii() ? text.ascii().substr(insideStart, insideLength) : std::string_view();
  }
  Utf16View insideUnits() const {
    return text.isAscii() ? Utf16View() : text.units().substr(insideStart, insideLength);
  }
};

// The text is only searched: the first "<svg" that white space follows is the root, the first ">"
// ends its tag, be it in quotes, the last "</svg>" ends the inside. None when one of them is
// missing.
std::optional<SvgImage> parseSvgImage(const uint8_t* bytes, size_t size);

}  // namespace qz
