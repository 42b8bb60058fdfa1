#include "shapes/shapes.h"

#include "base/wrapping.h"

namespace qz {

ContentHash Shape::writeHashedBody(MarkupText& out, const Frame& frame) const {
  MarkupText geometry;
  writeGeometry(geometry, frame);
  ContentHash hash;
  hash.add(geometry);
  writeBody(out, frame);
  return hash;
}

template <class End>
void Line::write(MarkupText& out, const Frame& frame, const End& end) const {
  const POINT& origin = frame.origin;
  out.append(" x1=\"", wrappingSubtract(from_->x, origin.x), "\" y1=\"",
             wrappingSubtract(from_->y, origin.y), "\" x2=\"", wrappingSubtract(to_->x, origin.x),
             "\" y2=\"", wrappingSubtract(to_->y, origin.y), "\"", end);
}

void Line::writeBody(MarkupText& out, const Frame& frame) const { write(out, frame, "/>"); }

void Line::writeGeometry(MarkupText& out, const Frame& frame) const { write(out, frame, ""); }

void PointList::writeBody(MarkupText& out, const Frame& frame) const {
  out.append(" points=\"");
  writeGeometry(out, frame);
  out.append("\"/>");
}

void PointList::writeGeometry(MarkupText& out, const Frame& frame) const {
  writePointList(out, points_, count_, frame.origin);
}

void Path::writeBody(MarkupText& out, const Frame& frame) const {
  out.append(" d=\"");
  writeGeometry(out, frame);
  out.append("\"/>");
}

ContentHash Path::writeHashedBody(MarkupText& out, const Frame&) const {
  out.append(" d=\"");
  const ContentHash hash = writeHashedPathData(out, points_);
  out.append("\"/>");
  return hash;
}

void Path::writeGeometry(MarkupText& out, const Frame&) const { writePathData(out, points_); }

}  // namespace qz
