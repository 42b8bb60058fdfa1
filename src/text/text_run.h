// Text runs.
#pragma once

#include <cstdint>

#include "markup/escaped_text.h"
#include "markup/markup_text.h"
#include "paint/paint.h"
#include "text/fonts.h"

namespace qz {

// A run of characters, with a position for each or for the first alone.
struct TextRun {
  EscapedText text;
  POINT origin;
  const int32_t* advances;  // null, or one for each of `count` code units
  int32_t count;
  uint32_t characterScaling;  // percent
  FontNumber font;
  const PaintAttributes& paint;

  // A scaling without advances is ignored: there is no length to scale to.
  bool isScaled() const { return characterScaling != 100 && advances != nullptr; }

  void write(MarkupText& out) const;
  bool usesExtensionNamespace() const { return isScaled(); }
};

}  // namespace qz
