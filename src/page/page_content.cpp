#include "page/page_content.h"

namespace qz {

void PageContent::openGroup(RegionNumber region, const Group& group) {
  text_.appendWhole([&](MarkupText& out) {
    out.append(groupEnd_);
    if (region != region_) writeRegionChange(out, region);
    group.writeStartTag(out);
  });
  region_ = region;
  groupEnd_ = group.endTag();
}

void PageContent::closeGroup() {
  text_.append(groupEnd_);
  groupEnd_ = {};
}

void PageContent::writeRegionChange(MarkupText& out, RegionNumber region) const {
  if (region_ != kNoRegion) out.append("</g>");
  if (region != kNoRegion) out.append("<g clip-path=\"url(#QZ_C", region, ")\">");
}

void PageContent::endBlock() noexcept {
  blockText_.join(text_);
  text_.swap(blockText_);
}

void PageContent::writeEnd(MarkupText& out) const {
  out.append(groupEnd_, std::string_view(region_ == kNoRegion ? "" : "</g>"));
}

}  // namespace qz
