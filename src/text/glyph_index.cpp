#include "text/glyph_index.h"

#include <cassert>
#include <cstring>

#include "base/make_room.h"

namespace qz {
namespace {

size_t pointsSize(const TypedPoints& path) { return path.count * sizeof(POINT); }

// A hash for this process alone. Without knowing the secret nobody can supply bytes of one hash.
class BytesHash {
 public:
  BytesHash(uint64_t secret, uint64_t start)
      : secret_(secret), first_(secret ^ start), second_(secret ^ 0x13198a2e03707344) {}

  void add(const void* bytes, size_t size) {
    const auto* next = static_cast<const unsigned char*>(bytes);
    for (; size >= kStep; size -= kStep, next += kStep) mixStep(next);
    if (size == 0) return;
    unsigned char rest[kStep] = {};
    std::memcpy(rest, next, size);
    mixStep(rest);
  }
  uint64_t value() const { return foldedProduct(first_ ^ secret_, second_); }

 private:
  static constexpr size_t kStep = 32;

  static uint64_t word(const unsigned char* bytes) {
    uint64_t result;
    std::memcpy(&result, bytes, sizeof result);
    return result;
  }
  void mixStep(const unsigned char* bytes) {
    first_ = foldedProduct(first_ ^ word(bytes), secret_ ^ word(bytes + 8));
    second_ = foldedProduct(second_ ^ word(bytes + 16), secret_ ^ word(bytes + 24));
  }

  const uint64_t secret_;
  uint64_t first_;
  uint64_t second_;
};

}  // namespace

uint64_t GlyphIndex::hashPoints(const TypedPoints& path) const {
  BytesHash hash(secretOf(this), path.count);
  hash.add(path.points, pointsSize(path));
  hash.add(path.types, path.count);
  return hash.value();
}

bool GlyphIndex::KnownPath::equals(const TypedPoints& path) const {
  return count == path.count && std::memcmp(bytes, path.points, pointsSize(path)) == 0 &&
         std::memcmp(bytes + pointsSize(path), path.types, count) == 0;
}

GlyphNumber GlyphIndex::findByPoints(const TypedPoints& path) const {
  if (path.count == 0 || paths_.empty()) return kNoGlyph;
  const auto known = points_.find(
      hashPoints(path), [&](HashIndex::Number number) { return paths_[number].equals(path); });
  return known ? paths_[*known].glyph : kNoGlyph;
}

void GlyphIndex::makeRoom() {
  texts_.makeRoom();
  qz::makeRoom(glyphs_);
}

GlyphNumber GlyphIndex::add(uint64_t textHash, const Glyph& glyph) noexcept {
  const auto number = static_cast<GlyphNumber>(glyphs_.size());
  glyphs_.push_back(glyph);
  texts_.insert(textHash, number);
  return number;
}

void GlyphIndex::makeFirstPart(GlyphNumber number) noexcept {
  assert(glyphs_[number].part == Glyph::kOnlyPart);
  glyphs_[number].part = 0;
}

// A shortcut may not fail a drawing: without memory nothing is remembered.
void GlyphIndex::rememberPoints(const TypedPoints& path, GlyphNumber number) noexcept {
  if (path.count == 0) return;
  try {
    points_.makeRoom();
    qz::makeRoom(paths_);
    auto* bytes = static_cast<unsigned char*>(
        pathBytes_.allocate(pointsSize(path) + path.count, alignof(POINT)));
    std::memcpy(bytes, path.points, pointsSize(path));
    std::memcpy(bytes + pointsSize(path), path.types, path.count);
    paths_.push_back({bytes, path.count, number});
    points_.insert(hashPoints(path), static_cast<HashIndex::Number>(paths_.size() - 1));
  } catch (...) {
  }
}

}  // namespace qz
