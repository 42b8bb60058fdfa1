// The text of a page as lines that can be found, selected and copied.
#pragma once

#include "scene.h"

namespace qz::pdf {

// A line, or a part of one, in reading order.
struct TextLine {
  std::u16string text;
  std::vector<int32_t> positions;  // x of each code unit; of a line that is not level none
  POINT origin = {};
  int32_t size = 0;
  bool serif = false, monospaced = false;
  int32_t field = -1, link = -1;  // what it belongs to
};

// The text of the nodes and all below them. `links` are those that text may lie on.
std::vector<TextLine> makeTextLines(const Scene& scene, const std::vector<Outline>& outlines);

// The link that a point lies on, or -1.
int32_t linkAt(const std::vector<Link>& links, Point point);

}  // namespace qz::pdf
