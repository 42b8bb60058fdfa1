// Parts of a page as an SVG picture, for what no call of the library says: dashes, caps and joins,
// the even-odd rule, clipping paths, gradients, masks, tiles, groups and blend modes.
#pragma once

#include "plan.h"

namespace qz::pdf {

// The picture, which has the page's rectangle. `number` tells the pictures of a page apart.
std::string drawSvgPicture(const std::vector<PicturePart>& parts, const RECT& page,
                           const std::vector<Outline>& outlines, size_t number);

}  // namespace qz::pdf
