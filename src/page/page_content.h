// What is drawn on the page: its markup, in painting order.
//
// There is no tree of element objects. Calls come in the order in which their elements stand in the
// document, so each element is a value that writes itself here at once, and is gone when the call
// returns. What a later call decides (whether a clip group goes on, where a group ends) is written
// with that later call, or at the close.
#pragma once

#include <cassert>
#include <string_view>

#include "clip/clip_regions.h"
#include "markup/markup_text.h"
#include "structures/groups.h"

namespace qz {

// If an operation fails, it has done nothing.
class PageContent {
 public:
  // Adds an element: to the open group, or else to the page's own list. The page's list is cut into
  // runs of elements under one clip region, each in a clip group; children of a group are not.
  template <class Write>
  void addElement(RegionNumber region, Write write) {
    if (!groupEnd_.empty()) return text_.appendWhole(write);
    text_.appendWhole([&](MarkupText& out) {
      if (region != region_) writeRegionChange(out, region);
      write(out);
    });
    region_ = region;
  }

  // Makes a group the open one; a group that is still open ends before it.
  void openGroup(RegionNumber region, const Group& group);
  // Ends the open group, whatever its kind, if there is one.
  void closeGroup();

  // A character block may stay open while other elements already follow it: then the content stands
  // in two texts, the first of which grows with the block. `text` is the whole content otherwise.
  void beginBlock() noexcept {
    assert(blockText_.empty());
    blockText_.swap(text_);
  }
  void endBlock() noexcept;
  bool isBlockOpen() const { return !blockText_.empty(); }
  MarkupText& blockText() { return blockText_; }
  MarkupText& text() { return text_; }

  // What ends all that is still open.
  void writeEnd(MarkupText& out) const;

 private:
  void writeRegionChange(MarkupText& out, RegionNumber region) const;

  MarkupText blockText_;  // up to the end of the open block; empty without one
  MarkupText text_;
  std::string_view groupEnd_;        // the open group's end tag; empty when none is open
  RegionNumber region_ = kNoRegion;  // of the run of elements that is being written
};

}  // namespace qz
