#include "shapes/shapes.h"

#include "markup/wrapping.h"
#include "shapes/path_data.h"

namespace qz {

void Line::writeGeometry(MarkupText& out) const {
  out.append(" x1=\"", wrappingSubtract(from.x, origin.x), "\" y1=\"",
             wrappingSubtract(from.y, origin.y), "\" x2=\"", wrappingSubtract(to.x, origin.x),
             "\" y2=\"", wrappingSubtract(to.y, origin.y), "\"");
}

void Path::writeGeometry(MarkupText& out) const { writeTypedPathData(out, points, types, count); }

void Polyline::writeGeometry(MarkupText& out) const { writePointList(out, points, count, origin); }

void Rect::writeGeometry(MarkupText& out) const {
  const auto moved = [this](int32_t value, int32_t start) {
    return wrappingAdd(wrappingSubtract(value, start), halfStrokeWidth);
  };
  writeRectangleOutline(out, {moved(rect.left, origin.x), moved(rect.top, origin.y),
                              moved(rect.right, origin.x), moved(rect.bottom, origin.y)});
}

void writeTransform(MarkupText& out, const Rect& shape) {
  if (shape.origin.x != 0 || shape.origin.y != 0)
    out.append(" transform=\"translate(", CoordinatePair(shape.origin), ")\"");
}

}  // namespace qz
