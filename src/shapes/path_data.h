// Integer geometry as the text of attributes.
#pragma once

#include <cstdint>

#include "base/wrapping.h"
#include "markup/content_hash.h"
#include "markup/markup_text.h"

namespace qz {

// x and y, separated by a space only when y is not negative: "10 20", "10-20".
inline constexpr size_t kMaxCoordinatePairSize = 2 * kMaxDecimalSize<int32_t> + 1;

inline char* formatCoordinatePair(char* out, int32_t x, int32_t y) {
  out = writeDecimal(out, x);
  *out = ' ';
  return writeDecimal(out + (y >= 0), y);
}

// A coordinate pair as a piece of markup.
class CoordinatePair {
 public:
  CoordinatePair(int32_t x, int32_t y) : x_(x), y_(y) {}
  explicit CoordinatePair(const POINT& point) : x_(point.x), y_(point.y) {}
  size_t maxSize() const { return kMaxCoordinatePairSize; }
  char* put(char* out) const { return formatCoordinatePair(out, x_, y_); }

 private:
  int32_t x_, y_;
};

// A path as the host passes it: points, and the type of each.
struct TypedPoints {
  const POINT* points = nullptr;
  const uint8_t* types = nullptr;
  uint32_t count = 0;
};

// The path data of points, whose types are compared as whole values: one absolute "M", then
// relative "m", "l", "c" and "z".
void writePathData(MarkupText& out, const TypedPoints& path);

// The same, and the hash of its text.
ContentHash writeHashedPathData(MarkupText& out, const TypedPoints& path);

// Coordinate pairs less the origin, separated by one space, also before a negative number.
void writePointList(MarkupText& out, const POINT* points, uint32_t count, const POINT& origin);

// The path data of one closed rectangle, as a piece of markup. Its width is written unsigned: a
// negative one wraps around.
class RectangleOutline {
 public:
  RectangleOutline(int32_t left, int32_t top, int32_t right, int32_t bottom)
      : left_(left),
        top_(top),
        width_(wrappingSubtract(right, left)),
        height_(wrappingSubtract(bottom, top)) {}
  size_t maxSize() const { return 6 + kMaxCoordinatePairSize + 3 * kMaxDecimalSize<int32_t>; }
  char* put(char* out) const {
    const auto width = static_cast<uint32_t>(width_);
    return putAll(out, "M", CoordinatePair(left_, top_), "h", width, "v", height_, "h-", width,
                  "z");
  }

 private:
  int32_t left_, top_, width_, height_;
};

}  // namespace qz
