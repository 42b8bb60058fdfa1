#pragma once

#include <span>

#include "clip/clip_region.h"
#include "markup/markup_text.h"

namespace qz {

// The path data of regions that begin with the same records, one after the other.
//
// The kept rectangles come first, then each part of them that is cut out once more: filled by the
// even-odd rule, what is covered twice is a hole. Overlaps of kept rectangles are holes too, which
// is meant. The text of a region that only grew goes on from that of the one before, as long as
// that order allows.
class ClipPathData {
 public:
  // Starts from nothing, as for regions with another beginning.
  void restart();
  // Writes the definition of the region with these records.
  void writeClipPath(MarkupText& out, RegionNumber number,
                     std::span<const ClipRegionRecord> records);

 private:
  bool canContinue(const ClipRegionRecord& next) const;
  void rewrite(std::span<const ClipRegionRecord> records);
  void write(const RECT& rectangle);
  void writeCut(const RECT& kept, const RECT& cut);

  MarkupText text_;
  size_t recordCount_ = 0;     // that the text is of
  size_t keptCount_ = 0;       // of these
  size_t rectangleCount_ = 0;  // in the text
};

}  // namespace qz
