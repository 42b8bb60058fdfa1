// Other libraries that write SVG, drawing the same pages.
#pragma once

#include <memory>

#include "page_data.h"

namespace bench {

using qzsvggen::Points;
using qzsvggen::PointTypes;
using Advances = qzsvggen::Span<int32_t>;

// Has the calls of qzsvggen::Page that scenes draw with. Draws one page after another. What can be
// prepared once (contexts, fonts, the memory that the text goes to) is kept between the pages.
class Peer {
 public:
  virtual ~Peer() = default;
  virtual void beginPage() = 0;
  virtual void endPage() = 0;

  void setFill(uint8_t alpha, uint8_t red, uint8_t green, uint8_t blue) {
    hasFill_ = alpha != 0;
    fill_ = {red, green, blue};
  }
  void setStroke(uint8_t, uint8_t red, uint8_t green, uint8_t blue, int width) {
    stroke_ = {red, green, blue};
    strokeWidth_ = width;
  }
  void clearStroke() { strokeWidth_ = 0; }

  // The family is the peer's own.
  virtual void setFont(std::u16string_view family, int size, bool italic, bool bold) = 0;
  virtual void drawText(std::u16string_view run, const POINT& origin, Advances advances) = 0;
  virtual void drawPath(Points points, PointTypes types) = 0;

  void drawPolyline(Points points) {
    static const auto types = makeList(
        100, [](auto&, int i) { return static_cast<uint8_t>(i == 0 ? PT_MOVETO : PT_LINETO); });
    drawPath(points, {types.data(), points.size()});
  }
  void drawLine(const POINT& from, const POINT& to) { drawPolyline({from, to}); }
  void drawRectangle(const RECT& box) {
    drawPath({{box.left, box.top},
              {box.right, box.top},
              {box.right, box.bottom},
              {box.left, box.bottom}},
             {PT_MOVETO, PT_LINETO, PT_LINETO, PT_LINETO | PT_CLOSEFIGURE});
  }

 protected:
  // Hands a path to a pen with moveTo(x, y), lineTo(x, y), curveTo(x1, y1, ... y3) and close().
  static void trace(Points points, PointTypes types, auto& pen) {
    for (size_t i = 0; i < points.size(); ++i) {
      const POINT* const p = points.data() + i;
      if (types.data()[i] == PT_MOVETO)
        pen.moveTo(p->x, p->y);
      else if ((types.data()[i] & PT_LINETO) != 0)
        pen.lineTo(p->x, p->y);
      else
        pen.curveTo(p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y), i += 2;
      if ((types.data()[i] & PT_CLOSEFIGURE) != 0) pen.close();
    }
  }

  bool hasFill_ = false;
  Colour fill_ = {};
  Colour stroke_ = {};
  int strokeWidth_ = 0;  // 0: no stroke
};

std::unique_ptr<Peer> makeCairo();
std::unique_ptr<Peer> makeMuPdf();

}  // namespace bench
