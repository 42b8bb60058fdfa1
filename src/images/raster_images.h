// Raster pictures: each distinct one is stored once, as a symbol in the definitions.
#pragma once

#include <cstdint>
#include <optional>

#include "base/hash_index.h"
#include "images/repeated_bytes.h"
#include "markup/markup_text.h"

namespace qz {

// A placement of a registered picture.
struct Image {
  uint32_t id;  // "QZ_I" and this number
  RECT bounds;
  uint16_t compressionQuality;  // written unless it is 100

  void write(MarkupText& out) const;
  bool usesExtensionNamespace() const { return compressionQuality != 100; }
};

// The raster pictures of one page, known by a 32-bit hash of their bytes alone: two pictures with
// one hash share the first one's symbol, be their formats the same or not.
class RasterImages {
 public:
  // The id of a picture, which is registered with `bounds` as its size when it is new. A new
  // picture of an unknown format is not stored and gets the id that the next one will have: its
  // placement refers to that one, or to nothing. None when the bytes have the reserved hash value.
  std::optional<uint32_t> findOrRegister(uint16_t format, const RECT& bounds, const uint8_t* bytes,
                                         size_t size);

  // For the document.
  MarkupText& symbols() { return symbols_; }

 private:
  MarkupText symbols_;
  uint32_t count_ = 0;
  HashIndex index_;
  RepeatedBytes repeated_;
  uint32_t repeatedId_ = 0;
};

}  // namespace qz
