// Clip regions: rectangles, with rectangles cut out of them.
#pragma once

#include <cstdint>
#include <vector>

#include "clip/clip_region.h"
#include "markup/markup_text.h"

namespace qz {

// The regions of one page, numbered in the order in which they are made, and the current one.
//
// A region is a stretch of the page's records. One that continues the newest shares its records, so
// that a region of n rectangles that was made by n calls costs n records and one entry.
//
// If an operation fails, at most records were added that belong to no region.
class ClipRegions {
 public:
  explicit ClipRegions(const RECT& page) : page_(page) {}

  RegionNumber current() const { return current_; }

  void begin(const RECT& rectangle);
  // Without a current region it does nothing, and reads nothing.
  void add(const RECT* rectangle);
  // Starts from the page when no region is current.
  void exclude(const RECT& rectangle);
  void end() { current_ = kNoRegion; }
  // Tells whether the page has such a region; if not, nothing changes.
  bool select(uint32_t number);

  // An element was drawn under the current region, so it is written.
  void markUsed() noexcept {
    if (current_ != kNoRegion) records_[stretch_.end() - 1].mode |= ClipUsed;
  }

  // The definitions of the used regions, in the order of their numbers.
  void write(MarkupText& out) const;

 private:
  // A region's records.
  struct Stretch {
    size_t first;
    size_t count;
    size_t end() const { return first + count; }
  };
  // Regions in a row, each with one record more than the one before.
  struct Series {
    RegionNumber firstRegion;
    Stretch firstStretch;
  };
  // What a new cut is to the earlier cuts of its region.
  enum class Cut { Apart, InsideEarlier, AroundEarlier };
  Cut compare(const RECT& cut) const;
  void extendCurrent(const RECT& rectangle, ClipMode mode);
  void replaceCuts(const RECT& cut);
  template <class Change>
  void copyRecords(Change change);
  void startSeries(size_t firstRecord, size_t length);

  const RECT page_;
  std::vector<ClipRegionRecord> records_;
  std::vector<Series> series_;
  RegionNumber regionCount_ = 0;
  RegionNumber current_ = kNoRegion;
  Stretch stretch_{0, 0};  // of the current region
};

}  // namespace qz
