// Decides, subtree by subtree, what of a scene the library's calls say and what has to become a
// bitmap.
#pragma once

#include "engine.h"

namespace qz::pdf {

// One thing to be drawn, in painting order.
struct Item {
  const Node* node = nullptr;  // a leaf; null for a bitmap
  size_t bitmap = 0;           // index among the plan's
  Box bounds;
  std::optional<RECT> clip;  // if it is cut
  float alpha = 1;
  int32_t field = -1;
};

struct Plan {
  std::vector<Item> items;
  std::vector<RenderJob> bitmaps;
};

// The scene must outlive the plan.
Plan makePlan(const Scene& scene);

}  // namespace qz::pdf
