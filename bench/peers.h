// Other libraries that write SVG, drawing the same pages.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "page_data.h"

namespace bench {

// Draws one page after another. What can be prepared once (contexts, fonts, the memory that the
// text goes to) is kept between the pages.
class Peer {
 public:
  virtual ~Peer() = default;
  virtual std::string version() const = 0;

  virtual void beginPage() = 0;
  virtual void endPage() = 0;

  void fill(Colour colour) { fill_ = colour; }
  void noFill() { fill_.reset(); }
  void stroke(Colour colour, int width) {
    stroke_ = colour;
    strokeWidth_ = width;
  }

  void line(const POINT& from, const POINT& to) {
    beginPath();
    moveTo(from);
    lineTo(to);
    paintPath();
  }
  void rectangle(const RECT& box) {
    beginPath();
    addRectangle(box);
    paintPath();
  }
  void polyline(const POINT* points, int count) {
    beginPath();
    moveTo(points[0]);
    for (int i = 1; i < count; ++i) lineTo(points[i]);
    paintPath();
  }
  void path(const Outline& outline) {
    beginPath();
    for (int i = 0; i < outline.count; ++i) {
      const POINT* const point = outline.points + i;
      if (outline.types[i] == PT_MOVETO) {
        moveTo(*point);
        continue;
      }
      if ((outline.types[i] & PT_LINETO) != 0)
        lineTo(*point);
      else
        curveTo(point[0], point[1], point[2]), i += 2;
      if ((outline.types[i] & PT_CLOSEFIGURE) != 0) closeFigure();
    }
    paintPath();
  }

  virtual void font(int size) = 0;
  virtual void text(std::u16string_view run, const POINT& origin, const int32_t* advances) = 0;

 protected:
  virtual void beginPath() = 0;
  virtual void moveTo(const POINT& point) = 0;
  virtual void lineTo(const POINT& point) = 0;
  virtual void curveTo(const POINT& a, const POINT& b, const POINT& c) = 0;
  virtual void closeFigure() = 0;
  virtual void addRectangle(const RECT& box) = 0;
  virtual void paintPath() = 0;

  std::optional<Colour> fill_;
  Colour stroke_ = {};
  int strokeWidth_ = 0;  // 0: no stroke
};

std::unique_ptr<Peer> makeCairo();
std::unique_ptr<Peer> makeMuPdf();

}  // namespace bench
