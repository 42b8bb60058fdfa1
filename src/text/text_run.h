// Text runs.
#pragma once

#include <cstdint>

#include "markup/markup_text.h"
#include "paint/paint.h"
#include "text/escaped_text.h"
#include "text/fonts.h"

namespace qz {

// A run of characters, with a position for each or for the first alone.
struct Text {
  UnitView escapedText;
  POINT origin;
  const int32_t* advances;  // null, or one for each of `count` code units
  int32_t count;
  FontNumber font;
  uint32_t characterScaling;  // percent

  // A scaling without advances is ignored: there is no length to scale to.
  bool isScaled() const { return characterScaling != 100 && advances != nullptr; }

  void write(MarkupText& out, const PaintAttributes& paint) const;
};

}  // namespace qz
