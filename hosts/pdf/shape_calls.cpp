#include "shape_calls.h"

#include <optional>

namespace qz::pdf {
namespace {

std::vector<POINT> inUnits(const std::vector<Point>& points) {
  std::vector<POINT> units;
  units.reserve(points.size());
  for (const Point p : points) units.push_back(toUnits(p));
  return units;
}

// A rectangle of the page's directions, at least a unit wide and high so that it is seen.
std::optional<RECT> plainRectangle(const std::vector<POINT>& points,
                                   const std::vector<uint8_t>& types) {
  const size_t count = points.size();
  if (count != 4 && !(count == 5 && points[4].x == points[0].x && points[4].y == points[0].y))
    return std::nullopt;
  for (size_t i = 1; i < count; ++i)
    if ((types[i] & ~PT_CLOSEFIGURE) != PT_LINETO) return std::nullopt;
  const POINT &a = points[0], &b = points[1], &c = points[2], &d = points[3];
  const bool levelFirst = a.y == b.y && b.x == c.x && c.y == d.y && d.x == a.x;
  const bool uprightFirst = a.x == b.x && b.y == c.y && c.x == d.x && d.y == a.y;
  if (!levelFirst && !uprightFirst) return std::nullopt;
  RECT box = {std::min(a.x, c.x), std::min(a.y, c.y), std::max(a.x, c.x), std::max(a.y, c.y)};
  if (box.right == box.left) ++box.right;
  if (box.bottom == box.top) ++box.bottom;
  return box;
}

}  // namespace

void drawFill(qzsvggen::Page& page, const Path& path) {
  const std::vector<POINT> points = inUnits(path.points);
  std::vector<uint8_t> types = path.types;
  const size_t count = types.size();
  for (size_t i = 0; i < count; ++i)  // a filled figure is closed anyway
    if (i + 1 == count || types[i + 1] == PT_MOVETO) types[i] |= PT_CLOSEFIGURE;
  if (const std::optional<RECT> box = plainRectangle(points, types))
    return page.drawRectangle(*box);
  page.drawPath(points, types);
}

// A move is written relative to the last move, which readers take from where they are: that is the
// same only behind a closed figure. So an open one ends the call.
void drawStroke(qzsvggen::Page& page, const Path& path) {
  const std::vector<POINT> points = inUnits(path.points);
  const std::vector<uint8_t>& types = path.types;
  const size_t count = types.size();
  for (size_t first = 0, i = 0; i < count; ++i) {
    const bool figureEnds = i + 1 == count || types[i + 1] == PT_MOVETO;
    const bool open = (types[i] & PT_CLOSEFIGURE) == 0;
    if (i + 1 < count && !(figureEnds && open)) continue;
    const size_t length = i + 1 - first;
    if (length == 2 && open)
      page.drawLine(points[first], points[i]);
    else
      page.drawPath({&points[first], length}, {&types[first], length});
    first = i + 1;
  }
}

}  // namespace qz::pdf
