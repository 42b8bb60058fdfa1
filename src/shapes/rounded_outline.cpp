#include "markup/wrapping.h"
#include "shapes/path_data.h"
#include "shapes/shapes.h"

namespace qz {

void Rect::writeRoundedRectangleOutline(MarkupText& out) const {
  const auto side = [this](int32_t low, int32_t high) {
    return wrappingSubtract(wrappingSubtract(high, low),
                            wrappingAdd(halfStrokeWidth, halfStrokeWidth));
  };
  const auto corner = [this](int32_t value, int32_t start) {
    return wrappingSubtract(wrappingAdd(value, halfStrokeWidth), start);
  };
  const int32_t width = side(rect.left, rect.right);
  const int32_t height = side(rect.top, rect.bottom);
  const int32_t x = corner(rect.left, origin.x);
  const int32_t y = corner(rect.top, origin.y);

  // A negative side gives a doubled minus behind "h-" and "v-": meant.
  if ((cornerMask & 15) == 0) {
    out.append("M", CoordinatePair(x, y), "h", width, "v", height, "h-", width, "v-", height, "z");
    return;
  }

  const auto radiusX = static_cast<int32_t>(cornerWidth >> 1);
  const auto radiusY = static_cast<int32_t>(cornerHeight >> 1);
  // The full corner sizes come off, not twice the radii: with an odd size a side ends one unit
  // short, and the closing "z" covers the gap.
  const int32_t across = wrappingSubtract(width, static_cast<int32_t>(cornerWidth));
  const int32_t down = wrappingSubtract(height, static_cast<int32_t>(cornerHeight));
  const auto arc = [&](int32_t endX, int32_t endY) {
    out.append("a", CoordinatePair(radiusX, radiusY), " 0 0 1 ", CoordinatePair(endX, endY));
  };
  out.append("M", CoordinatePair(wrappingAdd(x, radiusX), y), "h", across);
  // The ends of the first and third arc have these signs for good: readers rely on the text.
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
