// The generator behind every handle.
#pragma once

#include <cstdint>
#include <optional>

#include "document/page.h"
#include "invert/inversion.h"
#include "markup/markup_text.h"

struct SvgGenerator {
  // What is recorded; none after the first SVG_Close, which resets the page.
  std::optional<qz::Page> page;
  // What outlives the page.
  qz::InversionTrace inversion;
  // The finished document, from the first SVG_Close to the second.
  qz::MarkupText document;
  // Added to the size that a document is reported to need. Nothing sets it, so far.
  int32_t extraLength = 0;
};
