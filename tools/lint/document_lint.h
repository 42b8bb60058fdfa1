// Checks a finished document.
#pragma once

#include <string>

#include "findings.h"
#include "xml.h"

namespace qz::tools {

// A document as UTF-8 that can be parsed, whatever characters it holds.
struct DecodedDocument {
  std::string text;
  // What had to be replaced: where in `text`, and the rule against it with its cause.
  struct Replaced {
    std::size_t offset;
    const Rule* rule;
    std::string cause;
  };
  std::vector<Replaced> replaced;
  bool isUtf16 = false;
  std::size_t skipped = 0;  // bytes of a byte-order mark

  // Where a byte of the text lies in the file.
  std::size_t fileOffset(std::size_t offset) const;
};

// Takes UTF-8, or UTF-16 with or without its mark.
DecodedDocument decodeDocument(const std::string& bytes);

// Checks a document; offsets are those of the file.
void lintDocument(const std::string& bytes, Findings& findings);

}  // namespace qz::tools
