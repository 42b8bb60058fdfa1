// The root start tag of an SVG picture.
#pragma once

#include <cstdint>
#include <optional>

#include "markup/portability.h"

namespace qz {

// The attributes that place a picture, as they are written; empty when missing. The root's id is
// recognised as well, and dropped. `others` is the rest of the tag, one blank in front.
struct SvgRootAttributes {
  UnitString viewBox;
  UnitString width;
  UnitString height;
  UnitString others;
};

// Takes a root start tag apart, from "<svg " to its ">". Names are matched without looking for word
// boundaries, "width" in "stroke-width" too: meant, documents depend on it.
SvgRootAttributes parseSvgRoot(UnitView tag);

// A length with its unit, in single precision; a percentage is taken of `reference`. None for other
// units and for text without a number. The factors for pt, pc and % are not those of CSS: meant.
std::optional<float> parseSvgLength(UnitView text, int32_t reference);

}  // namespace qz
