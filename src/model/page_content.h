// What is drawn on the page: its markup, in painting order.
//
// There is no tree of element objects. Calls come in the order in which their elements stand in the
// document, so each element is a value that writes itself here at once, and is gone when the call
// returns. What a later call decides (whether a clip group goes on, where a group ends) is only
// ever written with that later call.
#pragma once

#include <string_view>
#include <utility>

#include "clip/clip_regions.h"
#include "markup/markup_text.h"

namespace qz {

class PageContent {
 public:
  // Files an element: into the open group, or else into the page's own list. The page's list is cut
  // into runs of elements under one clip region, each in a clip group; children of a group are not.
  // `write` appends the element. If anything fails, nothing was filed.
  template <class Write>
  void appendElement(RegionNumber region, Write write) {
    fileWhole([&] {
      if (groupEnd_.empty()) enterRegion(region);
      write(tail());
    });
  }

  // Files a group and makes it the open one; a group that is still open ends before it. `write`
  // appends the start tag, `endTag` is a literal.
  template <class Write>
  void openGroup(RegionNumber region, std::string_view endTag, Write write) {
    fileWhole([&] {
      closeGroup();
      enterRegion(region);
      write(tail());
      groupEnd_ = endTag;
    });
  }

  // Ends the open group, whatever its kind, if there is one.
  void closeGroup();

  // A character block is an element that stays open while others may already follow it: what is
  // filed meanwhile waits behind it.
  void openBlock() { blockOpen_ = true; }
  bool isBlockOpen() const { return blockOpen_; }
  MarkupText& block() { return text_; }
  void closeBlock() noexcept;

  // For the document, in this order: the text up to the open block's inside, the text behind it,
  // and what ends all that is still open (writeEnd).
  MarkupText takeText() noexcept { return std::move(text_); }
  MarkupText takeTextBehindBlock() noexcept { return std::move(behind_); }
  size_t size() const { return text_.size() + behind_.size(); }
  void writeEnd(MarkupText& out) const;

 private:
  // Runs something that files; if it fails, nothing was filed.
  template <class File>
  void fileWhole(File file) {
    const std::string_view groupEnd = groupEnd_;
    const RegionNumber region = region_;
    try {
      appendWhole(tail(), file);
    } catch (...) {
      groupEnd_ = groupEnd;
      region_ = region;
      throw;
    }
  }

  MarkupText& tail() { return blockOpen_ ? behind_ : text_; }
  void enterRegion(RegionNumber region) {
    if (region != region_) changeRegion(region);
  }
  void changeRegion(RegionNumber region);

  MarkupText text_;
  MarkupText behind_;  // what follows the open character block
  bool blockOpen_ = false;
  std::string_view groupEnd_;        // the open group's end tag; empty when none is open
  RegionNumber region_ = kNoRegion;  // of the run of elements that is being written
};

}  // namespace qz
