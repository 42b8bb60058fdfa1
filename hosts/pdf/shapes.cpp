#include "shapes.h"

namespace qz::pdf {
namespace {

constexpr float tolerance = 0.1f * unitsPerPoint;
constexpr float mitreLimit = 4;  // where SVG's default cuts a mitre off

bool isMove(const Path& path, size_t i) { return path.types[i] == PT_MOVETO; }
bool isCurve(const Path& path, size_t i) {
  return (path.types[i] & PT_BEZIERTO) == PT_BEZIERTO && !isMove(path, i);
}
bool closes(const Path& path, size_t i) {
  return !isMove(path, i) && (path.types[i] & PT_CLOSEFIGURE) != 0;
}

// Calls for the first point of each figure and the one behind its last.
template <class Body>
void forEachFigure(const Path& path, const Body& body) {
  for (size_t first = 0; first < path.points.size();) {
    size_t end = first + 1;
    while (end < path.points.size() && !isMove(path, end)) ++end;
    body(first, end);
    first = end;
  }
}

// Whether the points of a figure, control points included, turn to one side only, once around.
bool isConvex(const Path& path, size_t first, size_t end) {
  float turned = 0, sign = 0;
  std::vector<Point> sides;
  for (size_t i = first; i < end; ++i) {
    const Point side = path.points[i + 1 < end ? i + 1 : first] - path.points[i];
    if (length(side) > 0.01f) sides.push_back(side);
  }
  for (size_t i = 0; i < sides.size(); ++i) {
    const Point a = sides[i], b = sides[(i + 1) % sides.size()];
    const float angle = std::atan2(cross(a, b), dot(a, b));
    if (std::abs(angle) < 1e-4f) continue;
    if (sign * angle < 0) return false;
    sign = angle;
    turned += std::abs(angle);
  }
  return turned < 6.4f;
}

// How far the tip of a join lies from its corner, for a stroke of width 2.
float tip(Join join, float limit, float halfSine) {
  if (join == Join::kMitre && halfSine * limit >= 1) return 1 / halfSine;
  return join == Join::kRound ? 1 : halfSine;
}

bool joinsDirectly(const Pen& pen, Point in, Point out) {
  const float lengths = length(in) * length(out);
  if (lengths == 0) return true;
  // Half the angle that the sides enclose: 90 degrees where the line goes straight on.
  const float halfSine =
      std::max(0.001f, std::sqrt(std::max(0.0f, (1 + dot(in, out) / lengths) / 2)));
  const float meant = tip(pen.join, pen.mitreLimit, halfSine);
  return std::abs(meant - tip(Join::kMitre, mitreLimit, halfSine)) * pen.width / 2 <= tolerance;
}

// The joins of one figure.
bool joinsDirectly(const Path& path, const Pen& pen, size_t first, size_t end) {
  std::vector<Point> points;
  std::vector<bool> corners;
  for (size_t i = first; i < end; ++i) {
    if (!points.empty() && path.points[i] == points.back()) continue;
    points.push_back(path.points[i]);
    const size_t curvePoint = isCurve(path, i) ? (i - first - 1) % 3 : 2;
    corners.push_back(curvePoint == 2);
  }
  const size_t count = points.size();
  const bool closed = closes(path, end - 1);
  for (size_t i = 0; i < count; ++i) {
    if (!corners[i] || (!closed && (i == 0 || i + 1 == count))) continue;
    const Point before = points[(i + count - 1) % count], after = points[(i + 1) % count];
    if (!joinsDirectly(pen, points[i] - before, after - points[i])) return false;
  }
  return true;
}

}  // namespace

std::optional<Box> asRectangle(const Path& path) {
  const std::vector<Point>& p = path.points;
  const bool back = p.size() == 5 && p[4] == p[0];
  if (p.size() != 4 && !back) return std::nullopt;
  for (size_t i = 1; i < p.size(); ++i)
    if (isMove(path, i) || isCurve(path, i)) return std::nullopt;
  const auto same = [](float a, float b) { return std::abs(a - b) < 0.25f; };
  const bool levelFirst =
      same(p[0].y, p[1].y) && same(p[1].x, p[2].x) && same(p[2].y, p[3].y) && same(p[3].x, p[0].x);
  const bool uprightFirst =
      same(p[0].x, p[1].x) && same(p[1].y, p[2].y) && same(p[2].x, p[3].x) && same(p[3].y, p[0].y);
  if (!levelFirst && !uprightFirst) return std::nullopt;
  Box box;
  for (const Point point : p) box.include(point);
  return box;
}

bool covers(const Path& path, const Box& box) {
  if (const std::optional<Box> rectangle = asRectangle(path)) return rectangle->grown(1).holds(box);
  const size_t count = path.points.size();
  size_t figures = 0;
  for (size_t i = 0; i < count; ++i) {
    figures += isMove(path, i);
    if (isCurve(path, i)) return false;
  }
  if (figures != 1 || !isConvex(path, 0, count)) return false;
  const Point corners[] = {
      {box.left, box.top}, {box.right, box.top}, {box.right, box.bottom}, {box.left, box.bottom}};
  for (const Point corner : corners) {
    bool left = false, right = false;
    for (size_t i = 0; i < count; ++i) {
      const Point a = path.points[i], b = path.points[(i + 1) % count];
      const float side = cross(b - a, corner - a);
      left |= side > 0;
      right |= side < 0;
    }
    if (left && right) return false;
  }
  return true;
}

bool fillRulesAgree(const Path& path) {
  std::vector<Box> boxes;
  bool agree = true;
  forEachFigure(path, [&](size_t first, size_t end) {
    if (!agree) return;
    Box box;
    for (size_t i = first; i < end; ++i) box.include(path.points[i]);
    for (const Box& other : boxes) agree = agree && !box.meets(other);
    agree = agree && boxes.size() < 50 && isConvex(path, first, end);
    boxes.push_back(box);
  });
  return agree;
}

bool strokesDirectly(const Path& path, const Pen& pen) {
  if (pen.dashCount > 0 || !pen.circular) return false;
  bool directly = true;
  forEachFigure(path, [&](size_t first, size_t end) {
    const bool capped = pen.cap != Cap::kButt && !closes(path, end - 1);
    directly =
        directly && !(capped && pen.width / 2 > tolerance) && joinsDirectly(path, pen, first, end);
  });
  return directly;
}

}  // namespace qz::pdf
