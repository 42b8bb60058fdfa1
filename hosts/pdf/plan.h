// Decides, subtree by subtree, what of a scene the library's calls say and what an SVG picture.
#pragma once

#include <optional>

#include "scene.h"

namespace qz::pdf {

// A part of an SVG picture.
struct PicturePart {
  const Node* node = nullptr;
  Box clip;
  float alpha = 1;
};

// One thing to be drawn, in painting order.
struct Item {
  const Node* node = nullptr;  // a leaf, or null for an SVG picture
  size_t picture = 0;          // its index in the plan
  Box bounds;
  std::optional<RECT> clip;  // if it is cut
  float alpha = 1;
  int32_t field = -1, link = -1;  // what it belongs to
};

struct Plan {
  std::vector<Item> items;
  std::vector<std::vector<PicturePart>> pictures;
};

// The scene must outlive the plan.
Plan makePlan(const Scene& scene);

}  // namespace qz::pdf
