// The basic shapes: values that live for one call, view the host's arguments and write themselves.
//
// A shape is written as its tag, attributes, and a body up to its end: with paint attributes on the
// page, with an id in their place as an outline of a character.
#pragma once

#include <cstdint>
#include <cstring>

#include "markup/content_hash.h"
#include "markup/markup_text.h"
#include "shapes/path_data.h"

namespace qz {

// What a shape's coordinates depend on beside the host's arguments.
struct Frame {
  POINT origin{0, 0};           // the position of the character that it is drawn for
  int32_t halfStrokeWidth = 0;  // by which rectangles on the page are displaced or inset
};

// The start of a tag as a piece of markup, copied in one step of fixed size.
class TagStart {
 public:
  template <size_t size>
  constexpr explicit TagStart(const char (&text)[size]) : size_(size - 1) {
    static_assert(size - 1 <= kStep && kStep <= kOverrun);
    for (size_t i = 0; i < size - 1; ++i) text_[i] = text[i];
  }
  size_t maxSize() const { return size_; }
  char* put(char* out) const {
    std::memcpy(out, text_, kStep);
    return out + size_;
  }

 private:
  static constexpr size_t kStep = 12;
  char text_[kStep] = {};
  uint32_t size_;
};
inline constexpr TagStart kLineTag("<line");
inline constexpr TagStart kPathTag("<path");
inline constexpr TagStart kPolylineTag("<polyline");
inline constexpr TagStart kPolygonTag("<polygon");

class Shape {
 public:
  const TagStart& tag() const { return tag_; }

  // Writes what follows the attributes.
  virtual void writeBody(MarkupText& out, const Frame& frame) const = 0;
  // The same, and the hash of the plain geometry: outlines of one hash are the same outline.
  virtual ContentHash writeHashedBody(MarkupText& out, const Frame& frame) const;
  // The arguments that alone decide the body, whatever the frame, if the shape is a path.
  virtual const TypedPoints* typedPoints() const { return nullptr; }

 protected:
  explicit Shape(const TagStart& tag) : tag_(tag) {}
  ~Shape() = default;

 private:
  virtual void writeGeometry(MarkupText& out, const Frame& frame) const = 0;

  const TagStart& tag_;
};

class Line final : public Shape {
 public:
  Line(const POINT* from, const POINT* to) : Shape(kLineTag), from_(from), to_(to) {}
  void writeBody(MarkupText& out, const Frame& frame) const override;

 private:
  void writeGeometry(MarkupText& out, const Frame& frame) const override;
  template <class End>
  void write(MarkupText& out, const Frame& frame, const End& end) const;

  const POINT* const from_;
  const POINT* const to_;
};

// A polyline or a polygon.
class PointList final : public Shape {
 public:
  PointList(const TagStart& tag, const POINT* points, uint32_t count)
      : Shape(tag), points_(points), count_(count) {}
  void writeBody(MarkupText& out, const Frame& frame) const override;

 private:
  void writeGeometry(MarkupText& out, const Frame& frame) const override;

  const POINT* const points_;
  const uint32_t count_;
};

// Written as it is given, wherever its character stands.
class Path final : public Shape {
 public:
  Path(const POINT* points, const uint8_t* types, uint32_t count)
      : Shape(kPathTag), points_{points, types, count} {}
  void writeBody(MarkupText& out, const Frame& frame) const override;
  ContentHash writeHashedBody(MarkupText& out, const Frame& frame) const override;
  const TypedPoints* typedPoints() const override { return &points_; }

 private:
  void writeGeometry(MarkupText& out, const Frame& frame) const override;

  const TypedPoints points_;
};

// Always written as a path. Its geometry is the plain outline, displaced by half the stroke, not
// shrunk: all four values move alike. What is drawn of a rounded one is inset by half the stroke.
class Rect final : public Shape {
 public:
  explicit Rect(const RECT* rectangle) : Rect(rectangle, 0, 0, 0) {}
  // The corner sizes are those of the ellipse that forms a corner: twice the radii. The rectangle
  // is plain if the mask is 0; all four corners are rounded if any of its four low bits is set.
  Rect(const RECT* rectangle, uint32_t cornerWidth, uint32_t cornerHeight, uint16_t cornerMask)
      : Shape(kPathTag),
        rectangle_(rectangle),
        cornerWidth_(cornerWidth),
        cornerHeight_(cornerHeight),
        cornerMask_(cornerMask) {}
  void writeBody(MarkupText& out, const Frame& frame) const override;

 private:
  void writeGeometry(MarkupText& out, const Frame& frame) const override;
  RectangleOutline outline(const Frame& frame) const;
  void writeRoundedRectangleOutline(MarkupText& out, const Frame& frame) const;

  const RECT* const rectangle_;
  const uint32_t cornerWidth_;
  const uint32_t cornerHeight_;
  const uint16_t cornerMask_;
};

}  // namespace qz
