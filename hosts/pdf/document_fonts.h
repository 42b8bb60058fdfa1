// The fonts of a whole document. Each page brings fonts with its own glyphs; those that have a
// shape for each character in common become one.
#pragma once

#include <string>
#include <vector>

#include "opentype.h"

namespace qz::pdf {

class DocumentFonts {
 public:
  // The page with <@NUMBER> in place of the address of each font. Fonts of another form than this
  // program's are left as they are.
  std::string share(const std::string& page);

  // By number. They have the glyphs of the pages so far.
  const std::vector<Font>& fonts() const { return fonts_; }

 private:
  size_t numberOf(const Font& font);

  std::vector<Font> fonts_;
};

}  // namespace qz::pdf
