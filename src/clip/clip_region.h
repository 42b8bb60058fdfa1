// A clip region: a stretch of records.
#pragma once

#include <cstdint>

#include "base/portability.h"

namespace qz {

// The number of a region on its page; the region's id is "QZ_C" and that number.
using RegionNumber = int32_t;
inline constexpr RegionNumber kNoRegion = -1;

enum ClipMode : uint32_t {
  ClipBase = 1,      // the rectangle that began the region
  ClipAdded = 2,     // a further one
  ClipExcluded = 4,  // one cut out
  ClipUsed = 8,      // set as well where a region ends under which an element was drawn
};

// One rectangle of a region. Each region ends with a record that no other region ends with.
struct ClipRegionRecord {
  RECT rect;
  uint32_t mode;
  bool isExcluded() const { return (mode & ClipExcluded) != 0; }
  bool endsUsedRegion() const { return (mode & ClipUsed) != 0; }
};

}  // namespace qz
