#include "model/page_content.h"

namespace qz {

void PageContent::closeGroup() {
  if (groupEnd_.empty()) return;
  tail().append(groupEnd_);
  groupEnd_ = {};
}

void PageContent::changeRegion(RegionNumber region) {
  if (region_ != kNoRegion) tail().append("</g>");
  if (region != kNoRegion) tail().append("<g clip-path=\"url(#QZ_C", region, ")\">");
  region_ = region;
}

void PageContent::closeBlock() noexcept {
  blockOpen_ = false;
  text_.splice(std::move(behind_));
}

void PageContent::writeEnd(MarkupText& out) const {
  out.append(groupEnd_, std::string_view(region_ == kNoRegion ? "" : "</g>"));
}

}  // namespace qz
