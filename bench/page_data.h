// The host's data that the workloads draw: pseudo-random, the same in every run.
#pragma once

#include <cmath>
#include <numbers>
#include <random>

#include "qzsvggen/qzsvggen.hpp"

namespace bench {

constexpr int kPageSize = 12000;
constexpr RECT kPage = {0, 0, kPageSize, kPageSize};

struct Colour {
  uint8_t red;
  uint8_t green;
  uint8_t blue;
};

// Lists are never given back: a large block that is freed tells glibc to keep more of the heap from
// then on, and what is measured is a process to which that never happened.
template <class Make>
auto makeList(size_t count, Make make) {
  std::mt19937 random(1);
  std::vector<decltype(make(random, 0))> list(count);
  for (size_t i = 0; i < count; ++i) list[i] = make(random, static_cast<int>(i));
  return list;
}

// One page's view of lists that stay in the second-level cache, as data that a host has just
// computed does. A page begins elsewhere and steps differently from the one before: drawn over and
// over again, the same page would teach the processor's branch predictor its digits, which no
// host's page does.
class PageData {
 public:
  explicit PageData(int page) : offset_(4099 * (page % 61)), step_(2 * (page % 61) + 1) {}

  const POINT& point(int i) const { return points_[entry(i * step_)]; }
  qzsvggen::Points points(int i, size_t count) const { return {&points_[entry(i * count)], count}; }
  const RECT& rectangle(int i) const { return rectangles_[entry(i * step_)]; }
  // Rectangles that neither touch nor contain each other, for i below 71 squared.
  RECT cell(int i) const {
    const auto [x, y] = point(i);
    const int32_t left = i % 71 * 169 + (x & 31), top = i / 71 * 169 + (y & 31);
    return {left, top, left + 20 + (y & 63), top + 20 + (x & 63)};
  }
  RECT frame(int i) const {  // where a picture stands
    const auto [x, y] = point(i);
    return {x, y, x + 400, y + 300};
  }
  Colour colour(int i) const {
    const auto [x, y] = point(i);
    return {static_cast<uint8_t>(x | 1), static_cast<uint8_t>(y), static_cast<uint8_t>(x >> 4)};
  }
  // Points around a circle, from the one that is number i on.
  qzsvggen::Points outline(int i, size_t count) const { return {&outlinePoints_[entry(i)], count}; }
  std::u16string_view run(int i) const { return {&letters_[entry(i * 7)], 40}; }
  qzsvggen::Span<int32_t> advances(int i) const { return {&advances_[entry(i * 11)], 40}; }
  // The file of a picture: pictures of one size lie one behind the other.
  static qzsvggen::Bytes picture(int number, size_t size) {
    return {&bytes_[static_cast<size_t>(number) * size], size};
  }

 private:
  static constexpr size_t kCount = 32768;
  static constexpr size_t kRoom = kCount + 128;  // so many can be read in a row from anywhere

  size_t entry(size_t i) const { return (i + offset_) % kCount; }

  static inline const auto points_ = makeList(kRoom, [](auto& random, int) -> POINT {
    return {static_cast<int32_t>(random() % kPageSize), static_cast<int32_t>(random() % kPageSize)};
  });
  static inline const auto rectangles_ = makeList(kCount, [](auto& random, int i) -> RECT {
    const auto [x, y] = points_[kCount - i];
    return {x, y, x + 1 + static_cast<int32_t>(random() % 2000),
            y + 1 + static_cast<int32_t>(random() % 2000)};
  });
  static inline const auto outlinePoints_ = makeList(kRoom, [](auto& random, int i) -> POINT {
    const double angle = i * 2 * std::numbers::pi / 17, radius = 300 + random() % 200;
    return {static_cast<int32_t>(500 + radius * std::cos(angle)),
            static_cast<int32_t>(500 + radius * std::sin(angle))};
  });
  static inline const auto letters_ = makeList(kRoom, [](auto& random, int) {
    return u"etaoin shrdlu cmfwyp vbgkqjxz ETAOIN 0123"[random() % 41];
  });
  static inline const auto advances_ =
      makeList(kRoom, [](auto& random, int) { return static_cast<int32_t>(40 + random() % 60); });
  static inline const auto bytes_ =
      makeList(20000 * 268, [](auto& random, int) { return static_cast<uint8_t>(random() >> 24); });

  size_t offset_;
  size_t step_;
};

}  // namespace bench
