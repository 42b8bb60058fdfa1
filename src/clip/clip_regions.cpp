#include "clip/clip_regions.h"

#include <algorithm>
#include <cassert>
#include <span>

#include "clip/clip_path_data.h"

namespace qz {
namespace {

bool contains(const RECT& outer, const RECT& inner) {
  return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
         inner.bottom <= outer.bottom;
}

}  // namespace

void ClipRegions::begin(const RECT& rectangle) {
  records_.push_back({rectangle, ClipBase});
  startSeries(records_.size() - 1, 1);
}

void ClipRegions::add(const RECT* rectangle) {
  if (current_ != kNoRegion) extendCurrent(*rectangle, ClipAdded);
}

void ClipRegions::exclude(const RECT& rectangle) {
  if (current_ == kNoRegion) {  // both regions are made, or none
    records_.push_back({page_, ClipBase});
    records_.push_back({rectangle, ClipExcluded});
    return startSeries(records_.size() - 2, 2);
  }
  switch (compare(rectangle)) {
    case Cut::Apart:
      return extendCurrent(rectangle, ClipExcluded);
    case Cut::AroundEarlier:
      return replaceCuts(rectangle);
    case Cut::InsideEarlier:
      return end();  // nothing is clipped any more. Odd, and meant.
  }
}

// The first hit decides: of two earlier cuts, none lies within the other unless they are equal.
ClipRegions::Cut ClipRegions::compare(const RECT& cut) const {
  for (const auto& record : std::span(records_).subspan(stretch_.first, stretch_.count)) {
    if (!record.isExcluded()) continue;
    if (contains(record.rect, cut)) return Cut::InsideEarlier;
    if (contains(cut, record.rect)) return Cut::AroundEarlier;
  }
  return Cut::Apart;
}

// Makes a region of the current one's records and a further one.
void ClipRegions::extendCurrent(const RECT& rectangle, ClipMode mode) {
  if (stretch_.end() == records_.size()) {  // the newest region goes on
    assert(current_ == regionCount_ - 1);
    records_.push_back({rectangle, mode});
    current_ = regionCount_++;
    ++stretch_.count;
    return;
  }
  const size_t first = records_.size();
  copyRecords([](const ClipRegionRecord& record) { return record.rect; });
  records_.push_back({rectangle, mode});
  startSeries(first, 1);
}

// Makes a region of the current one's records, with every cut that lies inside the new one replaced
// by it.
void ClipRegions::replaceCuts(const RECT& cut) {
  const size_t first = records_.size();
  copyRecords([&cut](const ClipRegionRecord& record) {
    return record.isExcluded() && contains(cut, record.rect) ? cut : record.rect;
  });
  startSeries(first, 1);
}

// Copies the current region's records, with their rectangles as `change` gives them.
template <class Change>
void ClipRegions::copyRecords(Change change) {
  for (size_t i = stretch_.first; i < stretch_.end(); ++i) {
    const ClipRegionRecord record = records_[i];
    records_.push_back({change(record), record.mode & ~ClipUsed});
  }
}

// Makes `length` regions, each a record longer than the one before; the last one, of all records
// from the first on, becomes current.
void ClipRegions::startSeries(size_t firstRecord, size_t length) {
  const size_t count = records_.size() - firstRecord;
  series_.push_back({regionCount_, {firstRecord, count - (length - 1)}});
  regionCount_ += static_cast<RegionNumber>(length);
  current_ = regionCount_ - 1;
  stretch_ = {firstRecord, count};
}

bool ClipRegions::select(uint32_t number) {
  if (number >= static_cast<uint32_t>(regionCount_)) return false;
  current_ = static_cast<RegionNumber>(number);
  const auto after = std::upper_bound(
      series_.begin(), series_.end(), current_,
      [](RegionNumber region, const Series& series) { return region < series.firstRegion; });
  const Series& series = *(after - 1);
  stretch_ = series.firstStretch;
  stretch_.count += static_cast<size_t>(current_ - series.firstRegion);
  return true;
}

void ClipRegions::write(MarkupText& out) const {
  ClipPathData data;
  for (size_t i = 0; i < series_.size(); ++i) {
    data.restart();
    const RegionNumber end = i + 1 < series_.size() ? series_[i + 1].firstRegion : regionCount_;
    const auto [first, count] = series_[i].firstStretch;
    size_t grown = count;
    for (RegionNumber region = series_[i].firstRegion; region < end; ++region, ++grown)
      if (records_[first + grown - 1].endsUsedRegion())
        data.writeClipPath(out, region, std::span(records_).subspan(first, grown));
  }
}

}  // namespace qz
