// The generator behind every handle.
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

#include "invert/inversion.h"
#include "markup/markup_text.h"
#include "page/page.h"

struct SvgGenerator {
  explicit SvgGenerator(const RECT& rectangle) : page(std::in_place, rectangle, inversion) {}
  SvgGenerator(const SvgGenerator&) = delete;  // the page refers to the inversion
  SvgGenerator& operator=(const SvgGenerator&) = delete;

  // The size that the document is reported to need, and the longest one whose size can be told.
  int32_t documentSize() const {
    assert(document.size() <= maxDocumentLength());
    return static_cast<int32_t>(document.size()) + 1 + extraLength;
  }
  size_t maxDocumentLength() const {
    return static_cast<size_t>(std::numeric_limits<int32_t>::max() - 1 - extraLength);
  }

  // What outlives the page.
  qz::InversionTrace inversion;
  // What is recorded; none after a first SVG_Close that succeeded, which resets the page.
  std::optional<qz::Page> page;
  // The finished document, from the first SVG_Close to the second.
  qz::MarkupText document;
  // Added to the size that is reported. Always 0 in the library; a test pretends lengths by it.
  int32_t extraLength = 0;
};
