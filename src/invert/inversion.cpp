#include "invert/inversion.h"

#include "base/wrapping.h"

namespace qz {
namespace {

// Maps each colour channel c to 1 - c and keeps alpha. Spaces before the inner "-1" are left out.
constexpr char kInvertingMatrix[] =
    "<feColorMatrix values=\"-1 0 0 0 1 0-1 0 0 1 0 0-1 0 1 0 0 0 1 0\"/></filter>";

}  // namespace

void InversionTrace::invertPath(const Path& path) {
  mask.appendWhole([&](MarkupText& out) {
    out.append("<path fill=\"white\"");
    path.writeBody(out, {});
  });
}

void InversionTrace::writeDefinitions(MarkupText& out) const {
  if (usesInversion || !mask.empty()) out.append("<filter id=\"QZ_V\">", kInvertingMatrix);
  if (mask.empty()) return;
  out.append("<mask id=\"QZ_MI\">");
  out.appendText(mask);
  out.append("</mask>");
}

void InversionTrace::writeUse(MarkupText& out) const {
  if (!mask.empty())
    out.append("<use href=\"#content\" mask=\"url(#QZ_MI)\" filter=\"url(#QZ_V)\"/>");
}

void InvertedRegions::writeFilters(MarkupText& out) const {
  for (size_t number = 0; number < rectangles_.size(); ++number) {
    const RECT& region = rectangles_[number];
    out.append("<filter id=\"QZ_V", number, "\" filterUnits=\"userSpaceOnUse\" x=\"", region.left,
               "\" y=\"", region.top, "\" width=\"", wrappingSubtract(region.right, region.left),
               "\" height=\"", wrappingSubtract(region.bottom, region.top), "\">",
               kInvertingMatrix);
  }
}

void InvertedRegions::writeContentStart(MarkupText& out) const {
  if (!rectangles_.empty()) out.append("<g id=\"QZ_x\">");
}

void InvertedRegions::writeContentEnd(MarkupText& out) const {
  if (rectangles_.empty()) return;
  out.append("</g>");
  for (size_t number = 0; number < rectangles_.size(); ++number)
    out.append("<g filter=\"url(#QZ_V", number, ")\"><use xlink:href=\"#QZ_x\"/></g>");
}

}  // namespace qz
