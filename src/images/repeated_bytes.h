// Recognises a picture that is placed again and again.
#pragma once

#include <cassert>
#include <cstdint>
#include <cstring>
#include <vector>

namespace qz {

// The bytes of the picture that was last known already, a PNG or JPEG by its bytes, an SVG picture
// by its content. Comparing with them costs a fraction of hashing or decoding; a picture that is
// new is never copied.
class RepeatedBytes {
 public:
  bool equal(const uint8_t* bytes, size_t size) const {
    assert(size > 0);
    return size == bytes_.size() && std::memcmp(bytes, bytes_.data(), size) == 0;
  }
  // Without memory for them nothing is remembered: a shortcut may not fail a drawing.
  void remember(const uint8_t* bytes, size_t size) noexcept {
    try {
      bytes_.assign(bytes, bytes + size);
    } catch (...) {
      bytes_.clear();
    }
  }

 private:
  std::vector<uint8_t> bytes_;
};

}  // namespace qz
