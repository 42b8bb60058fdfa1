// SVG pictures: the content of each is stored once, with one sizing symbol for each size.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "base/hash_index.h"
#include "images/repeated_bytes.h"
#include "images/svg_image.h"
#include "markup/markup_text.h"

namespace qz {

// A placement of a sized picture.
struct Symbol {
  uint32_t id;  // "QZ_S" and this number
  POINT origin;

  void write(MarkupText& out) const;
  bool usesExtensionNamespace() const { return false; }
};

// The SVG pictures of one page. Contents are known by a 32-bit hash alone, symbols by the hash of
// their sizing attributes and that of their content.
class SvgImages {
 public:
  // The symbol that shows the picture at the size of `bounds`; its content and the symbol are
  // registered when they are new. None when the bytes are no picture.
  std::optional<uint32_t> findOrRegister(const RECT& bounds, const uint8_t* bytes, size_t size);

  // For the document.
  MarkupText& contents() { return contents_; }
  MarkupText& symbols() { return symbols_; }

 private:
  // A picture whose content is registered.
  struct Picture {
    SvgRootAttributes root;
    uint32_t contentHash;
    uint32_t contentId;  // "QZ_G" and this number
  };
  struct SymbolKey {
    uint64_t sizingHash;
    uint32_t contentHash;
  };

  uint32_t registerContent(const SvgImage& image, uint32_t contentHash);
  uint32_t findOrRegisterSymbol(const Picture& picture, const RECT& bounds);

  MarkupText contents_;
  MarkupText symbols_;
  MarkupText sizing_;  // scratch, of findOrRegisterSymbol()
  uint32_t contentCount_ = 0;
  HashIndex contentIndex_;
  std::vector<SymbolKey> symbolKeys_;
  HashIndex symbolIndex_;
  RepeatedBytes repeated_;
  Picture repeatedPicture_{};
};

}  // namespace qz
