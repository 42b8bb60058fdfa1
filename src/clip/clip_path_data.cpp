#include "clip/clip_path_data.h"

#include <algorithm>
#include <cassert>

#include "base/wrapping.h"
#include "shapes/path_data.h"

namespace qz {
namespace {

// The path data of one closed rectangle of a clip region, as a piece of markup.
class ClipOutline {
 public:
  explicit ClipOutline(const RECT& rectangle)
      : left_(rectangle.left),
        top_(rectangle.top),
        width_(wrappingSubtract(rectangle.right, rectangle.left)),
        height_(wrappingSubtract(rectangle.bottom, rectangle.top)) {}
  size_t maxSize() const { return 5 + kMaxCoordinatePairSize + 3 * kMaxDecimalSize<int32_t>; }
  char* put(char* out) const {
    // A side without length is a "v0", be it a horizontal one.
    const char side = width_ == 0 ? 'v' : 'h';
    out = putAll(out, "M", CoordinatePair(left_, top_));
    *out++ = side;
    out = putAll(out, width_, "v", height_);
    *out++ = side;
    return putAll(out, wrappingSubtract(0, width_), "z");
  }

 private:
  int32_t left_, top_, width_, height_;
};

bool hasArea(const RECT& rectangle) {
  return wrappingSubtract(rectangle.right, rectangle.left) > 0 &&
         wrappingSubtract(rectangle.bottom, rectangle.top) > 0;
}

bool overlap(const RECT& a, const RECT& b) {
  return hasArea(a) && hasArea(b) && a.left < b.right && b.left < a.right && a.top < b.bottom &&
         b.top < a.bottom;
}

RECT intersection(const RECT& a, const RECT& b) {
  return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
          std::min(a.bottom, b.bottom)};
}

}  // namespace

void ClipPathData::restart() {
  text_.restart();
  recordCount_ = keptCount_ = rectangleCount_ = 0;
}

void ClipPathData::writeClipPath(MarkupText& out, RegionNumber number,
                                 std::span<const ClipRegionRecord> records) {
  assert(!records.front().isExcluded());
  while (recordCount_ < records.size() && canContinue(records[recordCount_])) {
    const ClipRegionRecord& next = records[recordCount_++];
    if (next.isExcluded()) {
      writeCut(records.front().rect, next.rect);
    } else {
      ++keptCount_;
      write(next.rect);
    }
  }
  if (recordCount_ < records.size()) rewrite(records);
  out.append("<clipPath id=\"QZ_C", number, "\"><path d=\"");
  out.appendText(text_);
  out.append(std::string_view(rectangleCount_ > 1 ? "\" clip-rule=\"evenodd\"" : "\""),
             "/></clipPath>");
}

// What is kept stands before all cuts, the cuts of the first kept rectangle before those of others.
bool ClipPathData::canContinue(const ClipRegionRecord& next) const {
  return next.isExcluded() ? keptCount_ == 1 : keptCount_ == recordCount_;
}

void ClipPathData::rewrite(std::span<const ClipRegionRecord> records) {
  restart();
  for (const ClipRegionRecord& kept : records) {
    if (kept.isExcluded()) continue;
    ++keptCount_;
    write(kept.rect);
  }
  for (const ClipRegionRecord& kept : records) {
    if (kept.isExcluded()) continue;
    for (const ClipRegionRecord& cut : records)
      if (cut.isExcluded()) writeCut(kept.rect, cut.rect);
  }
  recordCount_ = records.size();
}

void ClipPathData::write(const RECT& rectangle) {
  text_.append(ClipOutline(rectangle));
  ++rectangleCount_;
}

void ClipPathData::writeCut(const RECT& kept, const RECT& cut) {
  if (overlap(kept, cut)) write(intersection(kept, cut));
}

}  // namespace qz
