#include "page/page.h"

#include "text/text_run.h"

namespace qz {
namespace {

struct PaintedShape {
  const Shape& shape;
  const PaintState& paint;

  void write(MarkupText& out) const {
    out.append(shape.tag(), paint.attributes());
    shape.writeBody(out, {{0, 0}, paint.current().halfStrokeWidth()});
  }
  bool usesExtensionNamespace() const { return false; }
};

}  // namespace

void Page::draw(const Shape& shape) {
  if (content_.isBlockOpen())
    blocks_.draw(content_.blockText(), shape);
  else
    addElement(PaintedShape{shape, paint_});
}

// Each element goes through here: it enters the current region, unless it is in a group, marks it,
// and declares the extension namespace if it uses it. (Groups go through openGroup(), outlines into
// the open block.)
template <class Element>
void Page::addElement(const Element& element) {
  content_.addElement(clips.current(), [&](MarkupText& out) { element.write(out); });
  clips.markUsed();
  usesExtensionNamespace_ |= element.usesExtensionNamespace();
}

void Page::drawText(const CodeUnit* text, int32_t length, const POINT& origin,
                    const int32_t* advances, uint32_t characterScaling) {
  addElement(TextRun{{text, length},
                     origin,
                     advances,
                     length,
                     characterScaling,
                     fonts.current(),
                     paint_.attributes()});
  fonts.markUsed();
}

void Page::drawPicture(uint16_t format, const RECT& bounds, const uint8_t* data, size_t size,
                       uint16_t quality) {
  if (format == SVG_IMAGE_SVG) {
    if (const auto id = svgImages_.findOrRegister(bounds, data, size))
      addElement(Symbol{*id, {bounds.left, bounds.top}});
  } else {
    if (const auto id = rasterImages_.findOrRegister(format, bounds, data, size))
      addElement(Image{*id, bounds, quality});
  }
}

void Page::addTarget(const DocumentTarget& target) { addElement(target); }

void Page::beginBlock() {
  endBlock();
  addElement(CharacterBlockStart{paint_.attributes()});
  content_.beginBlock();
  blocks_.begin();
}

void Page::endBlock() {
  if (!content_.isBlockOpen()) return;
  content_.blockText().appendWhole([this](MarkupText& out) { blocks_.writeEnd(out); });
  content_.endBlock();
}

void Page::beginCharacter(const POINT* position, uint32_t reference) {
  if (content_.isBlockOpen()) blocks_.beginCharacter(content_.blockText(), *position, reference);
}

void Page::openGroup(const Group& group) {
  content_.openGroup(clips.current(), group);
  clips.markUsed();
  usesExtensionNamespace_ = true;
}

void Page::setFill(Colour fill) {
  paint_.setFill(fill, invertPainting_);
  noteInversion();
}

void Page::setStroke(Colour stroke, uint32_t width) {
  paint_.setStroke(stroke, width, invertPainting_);
  noteInversion();
}

// Paint that is set while invert painting is on leaves its trace in the generator.
void Page::noteInversion() {
  if (invertPainting_) inversion_.usesInversion = true;
}

}  // namespace qz
