// The host's data that the workloads draw: pseudo-random, the same in every run.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "qzsvggen/qzsvggen.h"

namespace bench {

constexpr int kPageSize = 12000;
constexpr int kPictureWidth = 400;
constexpr int kPictureHeight = 300;
constexpr int kRunLength = 40;

struct Colour {
  uint8_t red;
  uint8_t green;
  uint8_t blue;
};

struct Outline {
  const POINT* points;
  const uint8_t* types;
  int count;
};

// Elements take what stands in a row or at odd steps in lists that stay in the second-level cache,
// as data that a host has just computed does. A page begins elsewhere and steps differently from
// the one before: drawn over and over again, the same page would teach the processor's branch
// predictor its digits, which no host's page does.
class PageData {
 public:
  static PageData& get();

  static constexpr int kPages = 61;
  void turnTo(int page) {
    offset_ = 4099 * static_cast<size_t>(page);
    step_ = 2 * static_cast<size_t>(page) + 1;
  }

  const POINT& point(size_t i) const { return points_[scattered(i)]; }
  const RECT& rectangle(size_t i) const { return rectangles_[scattered(i)]; }
  const Colour& colour(size_t i) const { return colours_[scattered(i)]; }
  // `count` points in a row.
  const POINT* points(size_t i, size_t count) const { return &points_[inRow(i * count)]; }
  // A closed figure of four lines and four curves.
  Outline figure(size_t i) const;
  // The outline of a glyph: two closed figures, different for each i below 6,553.
  Outline glyph(size_t i) const;
  std::u16string_view run(size_t i) const { return {&letters_[inRow(i * 7)], kRunLength}; }
  const int32_t* advances(size_t i) const { return &advances_[inRow(i * 11)]; }
  // Rectangles that neither touch nor contain each other, for i below kCells squared.
  RECT cell(size_t i) const;
  static constexpr int kCells = 71;
  // Where a picture stands.
  RECT frame(size_t i) const;

  // The bytes of pictures: one of 1 MiB, and small ones of 268 bytes.
  const std::vector<uint8_t>& largePicture() const { return largePicture_; }
  const uint8_t* smallPicture(size_t i) const { return &smallPictures_[i * kSmallPicture]; }
  static constexpr int kSmallPicture = 268;
  static constexpr int kSmallPictures = 20000;
  // What stands between the start tag and the end tag of an SVG picture of 1 MiB.
  const std::string& svgContent() const { return svgContent_; }

 private:
  PageData();

  size_t scattered(size_t i) const { return (i * step_ + offset_) % kCount; }
  size_t inRow(size_t i) const { return (i + offset_) % kCount; }

  static constexpr size_t kCount = 32768;
  static constexpr size_t kTail = 128;  // entries that can be read in a row from anywhere

  size_t offset_ = 0;
  size_t step_ = 1;
  std::vector<POINT> points_;         // on the whole page
  std::vector<POINT> outlinePoints_;  // around circles
  std::vector<RECT> rectangles_;
  std::vector<Colour> colours_;
  std::u16string letters_;
  std::vector<int32_t> advances_;
  std::vector<uint8_t> largePicture_;
  std::vector<uint8_t> smallPictures_;
  std::string svgContent_;
};

}  // namespace bench
