// Integer geometry as the text of attributes.
#pragma once

#include <cstdint>
#include <span>

#include "markup/content_key.h"
#include "markup/markup_text.h"

namespace qz {

// x and y, parted by a blank only when y is not negative: "10 20", "10-20".
inline constexpr size_t kCoordinatePairRoom = 2 * kDecimalRoom<int32_t> + 1;

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
  size_t room() const { return kCoordinatePairRoom; }
  char* put(char* out) const { return formatCoordinatePair(out, x_, y_); }

 private:
  int32_t x_, y_;
};

// The path data of points with their types, compared as whole values: one absolute "M", then
// relative "m", "l", "c" and "z".
void writeTypedPathData(MarkupText& out, const POINT* points, const uint8_t* types, uint32_t count);

// The same, and the hash of its text.
ContentHash writeHashedPathData(MarkupText& out, const POINT* points, const uint8_t* types,
                                uint32_t count);

// Coordinate pairs less the origin, parted by one blank, also before a negative number.
void writePointList(MarkupText& out, const POINT* points, uint32_t count, const POINT& origin);

// One closed rectangle. Its width is written unsigned: a negative one wraps around.
void writeRectangleOutline(MarkupText& out, const RECT& rectangle);

// Closed rectangles, one behind the other.
void writeRectangleListPathData(MarkupText& out, std::span<const RECT> rectangles);

}  // namespace qz
