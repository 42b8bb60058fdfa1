// An SVG picture, taken apart.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "images/svg_root.h"
#include "images/svg_text.h"

namespace qz {

// The attributes of the root, and what stands in it. May view the bytes that it was made of.
struct SvgPicture {
  SvgText text;
  SvgRootAttributes root;
  size_t insideStart;
  size_t insideLength;

  // Calls use(std::string_view) or use(Utf16View).
  template <class Use>
  void visitInside(Use use) const {
    text.visit([&](auto view) { use(view.substr(insideStart, insideLength)); });
  }
};

// The text is not parsed: the first "<svg" that white space follows is the root, the first ">" ends
// its tag, be it in quotes, the last "</svg>" ends the inside. None when one of them is missing.
std::optional<SvgPicture> parseSvgPicture(const uint8_t* bytes, size_t size);

}  // namespace qz
