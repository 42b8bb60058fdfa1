// Inversion: colours turned into their complements, by filters.
#pragma once

#include <cstdint>
#include <vector>

#include "markup/markup_text.h"
#include "shapes/shapes.h"

namespace qz {

// What inversion leaves behind when its page is done: it also appears in every later document of
// the same generator.
struct InversionTrace {
  bool usesInversion = false;  // a paint record was made while invert painting was on
  MarkupText mask;             // the areas of inverted paths

  void invertPath(const Path& path);
  // The filter that inverts what refers to it, and the mask.
  void writeDefinitions(MarkupText& out) const;
  // The content a second time, through the mask. It refers to "#content", which is no id in the
  // document: giving it one is the consumer's part.
  void writeUse(MarkupText& out) const;
};

// The inverted rectangles of one page. Each has a filter of its own, "QZ_V" and its number, through
// which the whole content is drawn once more.
class InvertedRegions {
 public:
  void add(const RECT& rectangle) { rectangles_.push_back(rectangle); }

  void writeFilters(MarkupText& out) const;
  // Around the content, nothing when there are no regions.
  void writeContentStart(MarkupText& out) const;
  void writeContentEnd(MarkupText& out) const;

 private:
  std::vector<RECT> rectangles_;
};

}  // namespace qz
