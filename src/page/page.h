// The page that is recorded: where the modules meet.
#pragma once

#include <cstddef>
#include <cstdint>

#include "clip/clip_regions.h"
#include "images/raster_images.h"
#include "images/svg_images.h"
#include "invert/inversion.h"
#include "page/page_content.h"
#include "paint/paint.h"
#include "shapes/shapes.h"
#include "text/character_blocks.h"
#include "text/fonts.h"

namespace qz {

// The sum of the modules' small states, and what needs several of them. Regions and fonts are set
// by themselves: `clips`, `fonts`.
//
// A call whose memory is exhausted throws std::bad_alloc and leaves the page as it was, or with a
// part of a picture, a character or a character block; every page closes to a well-formed document.
class Page {
 public:
  // The inversion is the generator's and outlives the page.
  Page(const RECT& rectangle, InversionTrace& inversion)
      : clips(rectangle), rectangle_(rectangle), inversion_(inversion) {}

  ClipRegions clips;
  Fonts fonts;

  void setFill(Colour fill);
  void setStroke(Colour stroke, uint32_t width);
  void setInvertPainting(bool on) { invertPainting_ = on; }
  void invertPath(const Path& path) { inversion_.invertPath(path); }
  void invertRectangle(const RECT& rectangle) { invertedRegions_.add(rectangle); }

  // Draws a shape: an outline of the newest character while a character block is open.
  void draw(const Shape& shape);
  void drawText(const CodeUnit* text, int32_t length, const POINT& origin, const int32_t* advances,
                uint32_t characterScaling);
  void drawPicture(uint16_t format, const RECT& bounds, const uint8_t* data, size_t size,
                   uint16_t quality);
  void addTarget(const DocumentTarget& target);

  void beginBlock();
  void endBlock();
  // Nothing without an open block. A reference: see CharacterBlocks.
  void beginCharacter(const POINT* position, uint32_t reference = CharacterBlocks::kNoReference);

  void openGroup(const Group& group);
  void closeGroup() { content_.closeGroup(); }

  // The page as a finished document, taken off the page, which is of no use then. Fails only before
  // anything was taken, also with std::length_error when the document would have more code units:
  // then the page is unchanged.
  MarkupText takeDocument(size_t maxLength) &&;

 private:
  template <class Element>
  void addElement(const Element& element);
  void noteInversion();

  MarkupText writeStart() const;
  MarkupText writeMiddle() const;
  MarkupText writeEnd() const;

  const RECT rectangle_;
  bool usesExtensionNamespace_ = false;
  bool invertPainting_ = false;
  PaintState paint_;
  RasterImages rasterImages_;
  SvgImages svgImages_;
  InvertedRegions invertedRegions_;
  CharacterBlocks blocks_;
  PageContent content_;
  InversionTrace& inversion_;
};

}  // namespace qz
