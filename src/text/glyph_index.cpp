#include "text/glyph_index.h"

#include <bit>
#include <cstring>

#include "markup/growth.h"
#include "shapes/path_data.h"

namespace qz {
namespace {

// A hash for this process alone, of 32 bytes a step in four chains: one chain alone would wait for
// its multiplications.
class BytesHash {
 public:
  void add(const void* bytes, size_t size) {
    const auto* next = static_cast<const unsigned char*>(bytes);
    for (; size >= 32; size -= 32, next += 32) mixStep(next);
    if (size == 0) return;
    unsigned char rest[32] = {};
    std::memcpy(rest, next, size);
    mixStep(rest);
  }
  uint64_t value() const {
    return first_ ^ std::rotl(second_, 16) ^ std::rotl(third_, 32) ^ std::rotl(fourth_, 48);
  }

 private:
  static uint64_t mix(uint64_t chain, const unsigned char* bytes) {
    uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    const uint64_t hash = (chain ^ word) * 0x9e3779b97f4a7c15;
    return hash ^ hash >> 32;
  }
  void mixStep(const unsigned char* bytes) {
    first_ = mix(first_, bytes);
    second_ = mix(second_, bytes + 8);
    third_ = mix(third_, bytes + 16);
    fourth_ = mix(fourth_, bytes + 24);
  }
  uint64_t first_ = 0x243f6a8885a308d3;
  uint64_t second_ = 0x13198a2e03707344;
  uint64_t third_ = 0xa4093822299f31d0;
  uint64_t fourth_ = 0x082efa98ec4e6c89;
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
  geometry.restart();
  const uint64_t textKey =
      writeHashedPathData(geometry, path.points, path.types, path.count).value();
  return {texts_.find(textKey), textKey, pointsKey};
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
