// The root start tag of an SVG picture.
#pragma once

#include <cstdint>
#include <optional>

#include "base/utf16.h"

namespace qz {

// The attributes that place a picture, as they are written; empty when missing. The root's id is
// recognised as well, and dropped. `others` is the rest of the tag, one space in front.
struct SvgRootAttributes {
  Utf16String viewBox;
  Utf16String width;
  Utf16String height;
  Utf16String others;
};

// Takes a root start tag apart, from "<svg " to its ">". Names are matched without looking for word
// boundaries, "width" in "stroke-width" too: meant, documents depend on it.
SvgRootAttributes parseSvgRoot(Utf16View tag);

// A length with its unit, in single precision; a percentage is taken of `reference`. None for other
// units and for text without a number. The factors for pt, pc and % are not those of CSS: meant.
std::optional<float> parseSvgLength(Utf16View text, int32_t reference);

}  // namespace qz
