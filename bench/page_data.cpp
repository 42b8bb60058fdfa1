#include "page_data.h"

#include <cmath>
#include <numbers>
#include <random>

namespace bench {
namespace {

constexpr uint8_t M = PT_MOVETO, L = PT_LINETO, C = PT_BEZIERTO, Z = PT_CLOSEFIGURE;
constexpr uint8_t kFigureTypes[] = {M, L, C, C, C, L, C, C, C, L, C, C, C, L, C, C, C | Z};
constexpr uint8_t kGlyphTypes[] = {M,     L, C, C, C, C, C, C, L, L, C, C,    C,
                                   L | Z, M, C, C, C, L, C, C, C, L, L, L | Z};

}  // namespace

PageData& PageData::get() {
  static PageData data;
  return data;
}

PageData::PageData() {
  std::mt19937 engine(1);
  const auto below = [&engine](uint32_t limit) { return static_cast<int32_t>(engine() % limit); };
  const auto byte = [&engine] { return static_cast<uint8_t>(engine() >> 24); };

  for (size_t i = 0; i < kCount + kTail; ++i) {
    points_.push_back({below(kPageSize), below(kPageSize)});
    const double angle = i * 2 * std::numbers::pi / sizeof kFigureTypes, radius = 300 + below(200);
    outlinePoints_.push_back({static_cast<int32_t>(500 + radius * std::cos(angle)),
                              static_cast<int32_t>(500 + radius * std::sin(angle))});
    const POINT corner = {below(kPageSize), below(kPageSize)};
    rectangles_.push_back(
        {corner.x, corner.y, corner.x + 1 + below(2000), corner.y + 1 + below(2000)});
    colours_.push_back({static_cast<uint8_t>(1 + below(255)), byte(), byte()});
    letters_ += u"etaoin shrdlu cmfwyp vbgkqjxz ETAOIN 0123"[below(41)];
    advances_.push_back(40 + below(60));
  }

  for (int i = 0; i < 1 << 20; ++i) largePicture_.push_back(byte());
  const uint8_t signature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  for (int i = 0; i < kSmallPictures; ++i) {
    smallPictures_.insert(smallPictures_.end(), std::begin(signature), std::end(signature));
    for (size_t j = sizeof signature; j < kSmallPicture; ++j) smallPictures_.push_back(byte());
  }
  for (size_t i = 0; svgContent_.size() < 1 << 20; i += 2)
    svgContent_ += "<path d=\"M" + std::to_string(point(i).x) + " " + std::to_string(point(i).y) +
                   "l" + std::to_string(point(i + 1).x) + " 10\" fill=\"none\"/>\n";
}

Outline PageData::figure(size_t i) const {
  constexpr int count = sizeof kFigureTypes;
  return {&outlinePoints_[inRow(i * count)], kFigureTypes, count};
}

Outline PageData::glyph(size_t i) const {
  return {&outlinePoints_[inRow(i * 5)], kGlyphTypes, sizeof kGlyphTypes};
}

RECT PageData::cell(size_t i) const {
  constexpr int size = kPageSize / kCells;
  const POINT& offset = point(i);
  const int32_t left = static_cast<int32_t>(i) % kCells * size + offset.x % 40;
  const int32_t top = static_cast<int32_t>(i) / kCells * size + offset.y % 40;
  return {left, top, left + 20 + offset.y % 100, top + 20 + offset.x % 100};
}

RECT PageData::frame(size_t i) const {
  const POINT& corner = point(i);
  return {corner.x, corner.y, corner.x + kPictureWidth, corner.y + kPictureHeight};
}

}  // namespace bench
