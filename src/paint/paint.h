// Fill and stroke: the state that the host sets, the record that drawing refers to, its attributes.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>

#include "markup/pieces.h"

namespace qz {

struct Colour {
  uint8_t red = 0, green = 0, blue = 0, alpha = 0;
};

// The paint at one moment. Each call that changes the paint makes another.
struct PaintRecord {
  Colour fill{0, 0, 0, 255};
  Colour stroke;
  uint32_t strokeWidth = 0;
  bool inverted = false;
  // Rectangles are displaced or inset by it.
  int32_t halfStrokeWidth() const { return static_cast<int32_t>(strokeWidth >> 1); }
};

// The attribute text of one paint record, with its leading space: a piece of markup.
class PaintAttributes {
 public:
  size_t maxSize() const { return length_; }
  char* put(char* out) const {
    // Most are short: a copy of fixed size is faster than one of the exact length.
    std::memcpy(out, text_.data(), kUsual);
    if (length_ > kUsual) [[unlikely]]
      std::memcpy(out + kUsual, text_.data() + kUsual, length_ - kUsual);
    return out + length_;
  }

 private:
  friend PaintAttributes writePaintAttributes(const PaintRecord& record);
  static constexpr size_t kUsual = kOverrun;
  static constexpr size_t kLongest = 146;

  std::array<char, kLongest + kUsual> text_;
  size_t length_ = 0;
};

// The attributes of a record. Black fill is left to the format's default while black stroke is
// written; a transparent fill is "none" while a transparent stroke is nothing at all; the opacity
// of a fill is a single-precision quotient, that of a stroke a double-precision one. All of this
// is meant: consumers compare documents.
PaintAttributes writePaintAttributes(const PaintRecord& record);

// The current paint.
class PaintState {
 public:
  PaintState() : attributes_(writePaintAttributes(current_)) {}

  // Each makes a new record, also when nothing changed. `inverted` tells whether invert painting
  // is on at this moment.
  void setFill(Colour fill, bool inverted);
  void setStroke(Colour stroke, uint32_t width, bool inverted);

  const PaintRecord& current() const { return current_; }
  const PaintAttributes& attributes() const { return attributes_; }

 private:
  void makePaintRecord(const PaintRecord& record, bool inverted);

  PaintRecord current_;
  PaintAttributes attributes_;
};

}  // namespace qz
