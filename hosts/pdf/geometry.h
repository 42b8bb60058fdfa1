// Points, boxes and paths of a page, in units: twentieths of a point, x to the right, y down.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "qzsvggen/qzsvggen.hpp"

namespace qz::pdf {

constexpr float unitsPerPoint = 20;

struct Point {
  float x = 0, y = 0;
  friend bool operator==(const Point&, const Point&) = default;
};
inline Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
inline float dot(Point a, Point b) { return a.x * b.x + a.y * b.y; }
inline float cross(Point a, Point b) { return a.x * b.y - a.y * b.x; }
inline float length(Point a) { return std::hypot(a.x, a.y); }

// Browsers compute in single precision: no coordinate goes beyond what that holds exactly.
inline int32_t toUnits(float value) {
  constexpr float limit = 8'000'000;
  return std::isnan(value) ? 0
                           : static_cast<int32_t>(std::lround(std::clamp(value, -limit, limit)));
}
inline POINT toUnits(Point p) { return {toUnits(p.x), toUnits(p.y)}; }

// Maps (x, y) to (a x + c y + e, b x + d y + f).
struct Matrix {
  float a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;

  Point map(Point p) const { return {a * p.x + c * p.y + e, b * p.x + d * p.y + f}; }
  float determinant() const { return a * d - b * c; }
  // Of a matrix whose determinant is not 0.
  Matrix inverse() const {
    const float s = 1 / determinant();
    return {d * s, -b * s, -c * s, a * s, (c * f - d * e) * s, (b * e - a * f) * s};
  }
};

struct Box {
  float left = INFINITY, top = INFINITY, right = -INFINITY, bottom = -INFINITY;

  bool empty() const { return !(left <= right && top <= bottom); }
  float width() const { return right - left; }
  float height() const { return bottom - top; }
  Point centre() const { return {(left + right) / 2, (top + bottom) / 2}; }
  void include(Point p) {
    left = std::min(left, p.x), right = std::max(right, p.x);
    top = std::min(top, p.y), bottom = std::max(bottom, p.y);
  }
  void include(const Box& b) {
    if (!b.empty()) include(Point{b.left, b.top}), include(Point{b.right, b.bottom});
  }
  Box grown(float by) const { return {left - by, top - by, right + by, bottom + by}; }
  Box moved(Point by) const { return {left + by.x, top + by.y, right + by.x, bottom + by.y}; }
  bool holds(Point p) const { return left <= p.x && p.x <= right && top <= p.y && p.y <= bottom; }
  bool holds(const Box& b) const {
    return left <= b.left && top <= b.top && b.right <= right && b.bottom <= bottom;
  }
  bool meets(const Box& b) const {
    return left <= b.right && b.left <= right && top <= b.bottom && b.top <= bottom;
  }
  RECT rounded() const { return {toUnits(left), toUnits(top), toUnits(right), toUnits(bottom)}; }
  friend bool operator==(const Box&, const Box&) = default;
};

inline Box boundsOf(const std::vector<Point>& points) {
  Box box;
  for (const Point p : points) box.include(p);
  return box;
}

inline Box mapped(const Box& box, const Matrix& m) {
  return boundsOf({m.map({box.left, box.top}), m.map({box.right, box.top}),
                   m.map({box.left, box.bottom}), m.map({box.right, box.bottom})});
}

inline Box common(const Box& a, const Box& b) {
  return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
          std::min(a.bottom, b.bottom)};
}

// Figures one behind the other, with the library's point types. Each starts with a move and has
// more points; a closed one says so at its last point.
struct Path {
  std::vector<Point> points;
  std::vector<uint8_t> types;
};

}  // namespace qz::pdf
