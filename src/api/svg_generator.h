// The generator behind every handle.
#pragma once

#include <cstdint>
#include <optional>

#include "invert/inversion.h"
#include "markup/markup_text.h"
#include "page/page.h"

struct SvgGenerator {
  explicit SvgGenerator(const RECT& rectangle) : page(std::in_place, rectangle, inversion) {}

  // What outlives the page.
  qz::InversionTrace inversion;
  // What is recorded; none after the first SVG_Close, which resets the page.
  std::optional<qz::Page> page;
  // The finished document, from the first SVG_Close to the second.
  qz::MarkupText document;
  // Added to the size that a document is reported to need. Nothing sets it, so far.
  int32_t extraLength = 0;
};
