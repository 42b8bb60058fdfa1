// Clip regions: rectangles, with rectangles cut out of them.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "markup/markup_text.h"

namespace qz {

// The number of a region on its page; the region's id is "QZ_C" and that number.
using RegionNumber = int32_t;
inline constexpr RegionNumber kNoRegion = -1;

enum ClipMode : uint32_t {
  ClipBase = 1,      // the rectangle that began the region
  ClipAdded = 2,     // a further one
  ClipExcluded = 4,  // one cut out
};

// One rectangle of a region.
struct ClipRegionRecord {
  RECT rect;
  ClipMode mode;
  bool isExcluded() const { return (mode & ClipExcluded) != 0; }
};

// A region: a stretch of the page's records, never changed but for its `used` flag.
struct ClipPath {
  size_t firstRecord;
  size_t recordCount;
  bool used;  // an element was drawn under it, so it is written
};

// The regions of one page, numbered in the order in which they are made, and the current one.
//
// A region that continues the newest one shares its records: a region of n rectangles that was
// made by n calls costs n records, not n * n / 2.
class ClipRegions {
 public:
  RegionNumber current() const { return current_; }

  void begin(const RECT& rectangle);
  // Without a current region it does nothing, and reads nothing.
  void add(const RECT* rectangle);
  // Starts from `page` when no region is current.
  void exclude(const RECT& rectangle, const RECT& page);
  void end() { current_ = kNoRegion; }
  // Tells whether the page has such a region; if not, nothing changes.
  bool select(uint32_t number);

  void markUsed(RegionNumber region) {
    if (region != kNoRegion) regions_[static_cast<size_t>(region)].used = true;
  }

  // The definitions of the used regions, in the order of their numbers.
  void write(MarkupText& out) const;

 private:
  // What a new cut is to the earlier cuts of its region.
  enum class Cut { Apart, InsideEarlier, AroundEarlier };
  Cut compare(const ClipPath& region, const RECT& cut) const;
  void file(ClipPath region, const ClipRegionRecord& record);
  void fileReplaced(ClipPath region, const RECT& cut);
  std::span<const ClipRegionRecord> recordsOf(const ClipPath& region) const {
    return std::span(records_).subspan(region.firstRecord, region.recordCount);
  }
  // The vectors are scratch.
  void writeClipPath(MarkupText& out, RegionNumber number, std::vector<RECT>& rectangles,
                     std::vector<RECT>& cuts) const;

  std::vector<ClipRegionRecord> records_;
  std::vector<ClipPath> regions_;
  RegionNumber current_ = kNoRegion;
};

}  // namespace qz
