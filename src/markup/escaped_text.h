// The one place where host text enters the markup. (The text of SVG pictures is markup already.)
#pragma once

#include <cstdint>

#include "base/utf16.h"

namespace qz {

// Host text with the five markup characters as entities. An embedded NUL is a TAB, one in the last
// counted place is dropped; every other unit is as it was. A count below one gives no text.
//
// Most text needs no replacing and is not copied: the host's text must outlive this object.
class EscapedText {
 public:
  EscapedText(const CodeUnit* text, int64_t count);
  EscapedText(const EscapedText&) = delete;
  EscapedText& operator=(const EscapedText&) = delete;

  Utf16View view() const { return view_; }

 private:
  Utf16String replaced_;
  Utf16View view_;
};

}  // namespace qz
