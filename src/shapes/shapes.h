// The basic shapes: values that live for one call and write themselves into the page.
//
// A shape is written as
//     <tag> {attributes} {what leads to the geometry} {geometry} <end>
// with its paint attributes on the page, or with an id in place of them as a glyph of a character
// block. The plain geometry text also tells whether two glyphs are the same outline.
#pragma once

#include <cstdint>
#include <string_view>

#include "markup/markup_text.h"

namespace qz {

// The fixed texts around a shape's geometry.
struct ShapeForm {
  std::string_view tag;
  std::string_view lead;
  std::string_view end;
};
inline constexpr ShapeForm kLineForm{"<line", "", "/>"};
inline constexpr ShapeForm kPathForm{"<path", " d=\"", "\"/>"};
inline constexpr ShapeForm kPolylineForm{"<polyline", " points=\"", "\"/>"};
inline constexpr ShapeForm kPolygonForm{"<polygon", " points=\"", "\"/>"};

// `origin` is the position of the character that a shape is drawn for, (0, 0) on the page. It is
// subtracted from all coordinates but those of a path.

struct Line {
  POINT from, to;
  POINT origin;
  const ShapeForm& form() const { return kLineForm; }
  void writeGeometry(MarkupText& out) const;
};

struct Path {
  const POINT* points;
  const uint8_t* types;
  uint32_t count;
  POINT origin;
  const ShapeForm& form() const { return kPathForm; }
  void writeGeometry(MarkupText& out) const;
};

struct Polyline {
  const POINT* points;
  uint32_t count;
  POINT origin;
  const ShapeForm& form() const { return kPolylineForm; }
  void writeGeometry(MarkupText& out) const;
};

struct Polygon : Polyline {
  const ShapeForm& form() const { return kPolygonForm; }
};

// Always written as a path.
struct Rect {
  RECT rect;
  uint32_t cornerWidth, cornerHeight;  // of the ellipse that forms a corner: twice the radii
  uint16_t cornerMask;                 // 0 for a plain rectangle
  int32_t halfStrokeWidth;
  POINT origin;
  const ShapeForm& form() const { return kPathForm; }

  // The plain outline, displaced by half the stroke, not shrunk: all four values move alike.
  void writeGeometry(MarkupText& out) const;

  // The outline that is drawn, inset by half the stroke. All four corners are rounded if any of the
  // four low bits of the mask is set.
  void writeRoundedRectangleOutline(MarkupText& out) const;
};

// What a shape has between its attributes and its lead: only a rectangle is moved to its character.
void writeTransform(MarkupText& out, const Rect& shape);
template <class Shape>
void writeTransform(MarkupText&, const Shape&) {}

// A shape is drawn with its plain geometry, but for the outline of a rounded rectangle.
inline bool isRounded(const Rect& shape) { return shape.cornerMask != 0; }
template <class Shape>
bool isRounded(const Shape&) {
  return false;
}
inline void writeOutline(MarkupText& out, const Rect& shape) {
  isRounded(shape) ? shape.writeRoundedRectangleOutline(out) : shape.writeGeometry(out);
}
template <class Shape>
void writeOutline(MarkupText& out, const Shape& shape) {
  shape.writeGeometry(out);
}

template <class Shape, class Attributes>
void writeShape(MarkupText& out, const Shape& shape, const Attributes& attributes) {
  out.append(shape.form().tag, attributes);
  writeTransform(out, shape);
  out.append(shape.form().lead);
  writeOutline(out, shape);
  out.append(shape.form().end);
}

}  // namespace qz
