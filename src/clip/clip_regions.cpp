#include "clip/clip_regions.h"

#include <algorithm>

#include "base/make_room.h"
#include "base/wrapping.h"
#include "shapes/path_data.h"

namespace qz {
namespace {

bool contains(const RECT& outer, const RECT& inner) {
  return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
         inner.bottom <= outer.bottom;
}

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

// Files the records of `region` and one more as a new region, which becomes current.
void ClipRegions::file(ClipPath region, const ClipRegionRecord& record) {
  const bool continues = region.firstRecord + region.recordCount == records_.size();
  makeRoom(records_, continues ? 1 : region.recordCount + 1);
  makeRoom(regions_);
  if (!continues) {
    const size_t first = records_.size();
    for (size_t i = 0; i < region.recordCount; ++i)
      records_.push_back(records_[region.firstRecord + i]);
    region.firstRecord = first;
  }
  records_.push_back(record);
  regions_.push_back({region.firstRecord, region.recordCount + 1, false});
  current_ = static_cast<RegionNumber>(regions_.size() - 1);
}

// Files the records of `region` with every cut that lies inside the new one replaced by it.
void ClipRegions::fileReplaced(ClipPath region, const RECT& cut) {
  makeRoom(records_, region.recordCount);
  makeRoom(regions_);
  const size_t first = records_.size();
  for (size_t i = 0; i < region.recordCount; ++i) {
    ClipRegionRecord record = records_[region.firstRecord + i];
    if (record.isExcluded() && contains(cut, record.rect)) record.rect = cut;
    records_.push_back(record);
  }
  regions_.push_back({first, region.recordCount, false});
  current_ = static_cast<RegionNumber>(regions_.size() - 1);
}

void ClipRegions::begin(const RECT& rectangle) {
  file({records_.size(), 0, false}, {rectangle, ClipBase});
}

void ClipRegions::add(const RECT* rectangle) {
  if (current_ != kNoRegion) file(regions_[static_cast<size_t>(current_)], {*rectangle, ClipAdded});
}

void ClipRegions::exclude(const RECT& rectangle, const RECT& page) {
  if (current_ == kNoRegion) {
    makeRoom(records_, 2);  // what follows cannot fail: there are both regions or none
    makeRoom(regions_, 2);
    begin(page);
  }
  const ClipPath region = regions_[static_cast<size_t>(current_)];
  switch (compare(region, rectangle)) {
    case Cut::Apart:
      return file(region, {rectangle, ClipExcluded});
    case Cut::AroundEarlier:
      return fileReplaced(region, rectangle);
    case Cut::InsideEarlier:
      return end();  // nothing is clipped any more. Odd, and meant.
  }
}

// A cut around one and inside another replaces the former.
ClipRegions::Cut ClipRegions::compare(const ClipPath& region, const RECT& cut) const {
  Cut result = Cut::Apart;
  for (const ClipRegionRecord& record : recordsOf(region)) {
    if (!record.isExcluded()) continue;
    if (contains(record.rect, cut)) {
      if (result == Cut::Apart) result = Cut::InsideEarlier;
    } else if (contains(cut, record.rect)) {
      result = Cut::AroundEarlier;
    }
  }
  return result;
}

bool ClipRegions::select(uint32_t number) {
  if (number >= regions_.size()) return false;
  current_ = static_cast<RegionNumber>(number);
  return true;
}

void ClipRegions::write(MarkupText& out) const {
  std::vector<RECT> rectangles, cuts;
  for (size_t number = 0; number < regions_.size(); ++number)
    if (regions_[number].used)
      writeClipPath(out, static_cast<RegionNumber>(number), rectangles, cuts);
}

// The kept rectangles, then each part of them that is cut out once more: filled by the even-odd
// rule, what is covered twice is a hole. Overlaps of kept rectangles are holes too, which is meant.
void ClipRegions::writeClipPath(MarkupText& out, RegionNumber number, std::vector<RECT>& rectangles,
                                std::vector<RECT>& cuts) const {
  const ClipPath& region = regions_[static_cast<size_t>(number)];
  rectangles.clear();
  cuts.clear();
  for (const ClipRegionRecord& record : recordsOf(region))
    (record.isExcluded() ? cuts : rectangles).push_back(record.rect);
  const size_t kept = rectangles.size();
  for (size_t i = 0; i < kept; ++i)
    for (const RECT& cut : cuts)
      if (overlap(rectangles[i], cut)) rectangles.push_back(intersection(rectangles[i], cut));

  out.append("<clipPath id=\"QZ_C", number, "\"><path d=\"");
  writeRectangleListPathData(out, rectangles);
  out.append(std::string_view(rectangles.size() > 1 ? "\" clip-rule=\"evenodd\"" : "\""),
             "/></clipPath>");
}

}  // namespace qz
