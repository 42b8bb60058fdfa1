// Decides, subtree by subtree, what of a scene the library's calls say, what an SVG picture says,
// and what has to become a bitmap.
#pragma once

#include "engine.h"

namespace qz::pdf {

// A part of an SVG picture.
struct PicturePart {
  const Node* node = nullptr;
  Box clip;
  float alpha = 1;
};

// One thing to be drawn, in painting order: a leaf, a bitmap or an SVG picture.
struct Item {
  enum class Kind : uint8_t { kLeaf, kBitmap, kSvgPicture };
  Kind kind = Kind::kLeaf;
  const Node* node = nullptr;  // a leaf
  size_t index = 0;            // of the plan's bitmap or picture
  Box bounds;
  std::optional<RECT> clip;  // if it is cut
  float alpha = 1;
  int32_t field = -1, link = -1;  // what it belongs to
};

struct Plan {
  std::vector<Item> items;
  std::vector<RenderJob> bitmaps;
  std::vector<std::vector<PicturePart>> pictures;
};

// The scene must outlive the plan.
Plan makePlan(const Scene& scene);

}  // namespace qz::pdf
