#include "text/glyph_index.h"

#include <algorithm>
#include <cstring>

#include "markup/growth.h"

namespace qz {
namespace {

// A hash for this process alone. Four independent chains of eight bytes each: a chain alone waits
// for its multiplications.
class BytesHash {
 public:
  void add(const void* bytes, size_t size) {
    const auto* next = static_cast<const unsigned char*>(bytes);
    for (; size >= 32; size -= 32, next += 32)
      for (size_t chain = 0; chain < 4; ++chain) mix(chain, next + 8 * chain, 8);
    for (size_t chain = 0; size > 0; ++chain) {
      const size_t length = std::min<size_t>(size, 8);
      mix(chain, next, length);
      next += length;
      size -= length;
    }
  }
  uint64_t value() const {
    return chains_[0] ^ rotate(chains_[1], 16) ^ rotate(chains_[2], 32) ^ rotate(chains_[3], 48);
  }

 private:
  static uint64_t rotate(uint64_t value, int bits) { return value << bits | value >> (64 - bits); }
  void mix(size_t chain, const unsigned char* bytes, size_t size) {
    uint64_t word = 0;
    std::memcpy(&word, bytes, size);
    const uint64_t hash = (chains_[chain] ^ word) * 0x9e3779b97f4a7c15;
    chains_[chain] = hash ^ hash >> 32;
  }
  uint64_t chains_[4] = {0x243f6a8885a308d3, 0x13198a2e03707344, 0xa4093822299f31d0,
                         0x082efa98ec4e6c89};
};

size_t pointsSize(const Path& path) { return path.count * sizeof(POINT); }

uint64_t hashPoints(const Path& path) {
  BytesHash hash;
  hash.add(path.points, pointsSize(path));
  hash.add(path.types, path.count);
  return hash.value();
}

}  // namespace

bool GlyphIndex::KnownPath::equals(const Path& path) const {
  return count == path.count && std::memcmp(bytes, path.points, pointsSize(path)) == 0 &&
         std::memcmp(bytes + pointsSize(path), path.types, count) == 0;
}

GlyphIndex::Search GlyphIndex::find(const Path& path, MarkupText& geometry) const {
  if (path.count == 0) return findByText(path, geometry);
  const uint64_t pointsKey = hashPoints(path);
  const auto known =
      points_.find(pointsKey, [&](KeyIndex::Number number) { return paths_[number].equals(path); });
  if (known) return {paths_[*known].glyph, 0, 0};
  Search search = findByText(path, geometry);
  search.pointsKey = pointsKey;
  return search;
}

void GlyphIndex::reserveOne() {
  texts_.reserveOne();
  reserveMore(glyphs_, 1);
}

void GlyphIndex::add(const Search& search, const Glyph& glyph) noexcept {
  glyphs_.push_back(glyph);
  texts_.insert(search.textKey, count() - 1);
}

void GlyphIndex::remember(const Search& search, const Path& path, GlyphNumber number) {
  if (path.count == 0 || search.pointsKey == 0) return;  // no points, or known by them already
  points_.reserveOne();
  reserveMore(paths_, 1);
  auto* bytes = static_cast<unsigned char*>(
      pathBytes_.allocate(pointsSize(path) + path.count, alignof(POINT)));
  std::memcpy(bytes, path.points, pointsSize(path));
  std::memcpy(bytes + pointsSize(path), path.types, path.count);
  paths_.push_back({bytes, path.count, number});
  points_.insert(search.pointsKey, static_cast<KeyIndex::Number>(paths_.size() - 1));
}

}  // namespace qz
