#include "base/wrapping.h"
#include "shapes/path_data.h"
#include "shapes/shapes.h"

namespace qz {

void Rect::writeBody(MarkupText& out, const Frame& frame) const {
  if (frame.origin.x != 0 || frame.origin.y != 0)
    out.append(" transform=\"translate(", CoordinatePair(frame.origin), ")\"");
  if (cornerMask_ == 0) return out.append(" d=\"", outline(frame), "\"/>");
  out.append(" d=\"");
  writeRoundedRectangleOutline(out, frame);
  out.append("\"/>");
}

void Rect::writeGeometry(MarkupText& out, const Frame& frame) const { out.append(outline(frame)); }

RectangleOutline Rect::outline(const Frame& frame) const {
  const auto moved = [&frame](int32_t value, int32_t start) {
    return wrappingAdd(wrappingSubtract(value, start), frame.halfStrokeWidth);
  };
  const POINT& origin = frame.origin;
  return {moved(rectangle_->left, origin.x), moved(rectangle_->top, origin.y),
          moved(rectangle_->right, origin.x), moved(rectangle_->bottom, origin.y)};
}

void Rect::writeRoundedRectangleOutline(MarkupText& out, const Frame& frame) const {
  const int32_t inset = frame.halfStrokeWidth;
  const auto side = [inset](int32_t low, int32_t high) {
    return wrappingSubtract(wrappingSubtract(high, low), wrappingAdd(inset, inset));
  };
  const auto corner = [inset](int32_t value, int32_t start) {
    return wrappingSubtract(wrappingAdd(value, inset), start);
  };
  const int32_t width = side(rectangle_->left, rectangle_->right);
  const int32_t height = side(rectangle_->top, rectangle_->bottom);
  const int32_t x = corner(rectangle_->left, frame.origin.x);
  const int32_t y = corner(rectangle_->top, frame.origin.y);

  // A negative side gives a doubled minus after "h-" and "v-": meant.
  if ((cornerMask_ & 15) == 0) {
    out.append("M", CoordinatePair(x, y), "h", width, "v", height, "h-", width, "v-", height, "z");
    return;
  }

  const auto radiusX = static_cast<int32_t>(cornerWidth_ >> 1);
  const auto radiusY = static_cast<int32_t>(cornerHeight_ >> 1);
  // The full corner sizes come off, not twice the radii: with an odd size a side ends one unit
  // short, and the closing "z" covers the gap.
  const int32_t across = wrappingSubtract(width, static_cast<int32_t>(cornerWidth_));
  const int32_t down = wrappingSubtract(height, static_cast<int32_t>(cornerHeight_));
  const auto arc = [&](int32_t endX, int32_t endY) {
    out.append("a", CoordinatePair(radiusX, radiusY), " 0 0 1 ", CoordinatePair(endX, endY));
  };
  out.append("M", CoordinatePair(wrappingAdd(x, radiusX), y), "h", across);
  // The ends of the first and third arc have these signs for good: documents are compared.
  arc(radiusX, -radiusY);
  out.append("v", down);
  arc(radiusX, radiusY);
  out.append("h-", across);
  arc(-radiusX, radiusY);
  out.append("v-", down);
  arc(-radiusX, -radiusY);
  out.append("z");
}

}  // namespace qz
