// All that is recorded of one page: the sum of small states, each with the operations of its room.
#pragma once

#include "clip/clip_regions.h"
#include "images/raster_images.h"
#include "images/svg_images.h"
#include "invert/inversion.h"
#include "markup/portability.h"
#include "model/page_content.h"
#include "paint/paint.h"
#include "text/character_blocks.h"
#include "text/fonts.h"

namespace qz {

struct Page {
  RECT rectangle{0, 0, 0, 0};
  bool usesExtensionNamespace = false;
  bool invertPainting = false;
  PaintState paint;
  ClipRegions clips;
  Fonts fonts;
  RasterImages rasterImages;
  SvgImages svgImages;
  InvertedRegions invertedRegions;
  CharacterBlocks characters;
  PageContent content;
};

}  // namespace qz
