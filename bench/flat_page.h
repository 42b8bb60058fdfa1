// The floor's page: it writes what the library writes, with the state that the text needs and no
// more. What the page's definitions hold the workload tells.
#pragma once

#include "flat_writer.h"
#include "page_data.h"

namespace bench {

// Has the calls of qzsvggen::Page that the workloads draw with.
class FlatPage : public FlatWriter {
 public:
  using FlatWriter::FlatWriter;

  void setFill(uint8_t alpha, uint8_t red, uint8_t green, uint8_t blue) {
    hasFill_ = alpha != 0;
    fill_ = {red, green, blue};
  }
  void setStroke(uint8_t, uint8_t red, uint8_t green, uint8_t blue, int32_t width) {
    stroke_ = {red, green, blue};
    strokeWidth_ = width;
  }
  void clearStroke() { strokeWidth_ = 0; }

  void drawLine(const POINT& from, const POINT& to) {
    put(u"<line");
    paint();
    put(u" x1=\"", from.x, u"\" y1=\"", from.y, u"\" x2=\"", to.x, u"\" y2=\"", to.y, u"\"/>");
  }

  void drawRectangle(const RECT& box) {
    const int32_t half = strokeWidth_ / 2;
    put(u"<path");
    paint();
    put(u" d=\"");
    outline({box.left + half, box.top + half, box.right + half, box.bottom + half});
    put(u"\"/>");
  }

  void drawPolyline(qzsvggen::Points points) {
    put(u"<polyline");
    paint();
    put(u" points=\"", Pair(points.data()[0]));
    for (size_t i = 1; i < points.size(); ++i) put(u' ', Pair(points.data()[i]));
    put(u"\"/>");
  }

  void drawPath(qzsvggen::Points points, qzsvggen::PointTypes types) {
    put(u"<path");
    paint();
    put(u" d=\"");
    outline(points, types);
    put(u"\"/>");
  }

  void setFont(std::u16string_view, int, bool, bool) { ++font_; }

  void drawText(std::u16string_view run, const POINT& origin,
                qzsvggen::Span<int32_t> advances = {}) {
    int32_t x = origin.x;
    put(u"<text x=\"", x);
    for (size_t i = 1; i < advances.size(); ++i) {
      x += advances.data()[i - 1];
      if (x >= 0) put(u' ');
      put(x);
    }
    put(u"\" y=\"", origin.y, u"\" class=\"QZ_fnt", font_, u'"');
    paint();
    put(u" xml:space=\"preserve\">", Escaped{run}, u"</text>");
  }

  // Pictures are told apart by where their bytes lie.
  void drawImage(qzsvggen::ImageFormat format, const RECT& frame, qzsvggen::Bytes file) {
    if (file.data() != std::exchange(picture_, file.data())) ++pictures_;
    if (format == qzsvggen::ImageFormat::kSvg)
      put(u"<use xlink:href=\"#QZ_S", pictures_ - 1, u"\" transform=\"translate(",
          Pair(frame.left, frame.top), u")\"/>");
    else
      put(u"<use xlink:href=\"#QZ_I", pictures_ - 1, u"\" x=\"", frame.left, u"\" y=\"", frame.top,
          u"\" width=\"", frame.right - frame.left, u"\" height=\"", frame.bottom - frame.top,
          u"\"/>");
  }

  void beginClippingRegion(const RECT&) {}
  void addClippingRegion(const RECT&) {}
  void excludeClippingRegion(const RECT&) {}

  void outline(const RECT& box) {
    const int32_t width = box.right - box.left;
    put(u'M', Pair(box.left, box.top), u'h', width, u'v', box.bottom - box.top, u"h-", width, u'z');
  }

  void outline(qzsvggen::Points points, qzsvggen::PointTypes types) {
    const POINT* const point = points.data();
    POINT start = {}, reference = {};
    char16_t run = 0;
    for (size_t i = 0; i < points.size(); ++i) {
      const uint8_t type = types.data()[i];
      if (type == PT_MOVETO) {
        put(i == 0 ? u'M' : u'm', Pair(point[i].x - start.x, point[i].y - start.y));
        start = reference = point[i];
        run = 0;
        continue;
      }
      const bool curve = (type & PT_BEZIERTO) != 0;
      const char16_t letter = curve ? u'c' : u'l';
      for (const size_t last = i + (curve ? 2 : 0);; ++i) {
        const Pair step(point[i].x - reference.x, point[i].y - reference.y);
        if (run != letter)
          put(run = letter);
        else if (step.x >= 0)
          put(u' ');
        put(step);
        if (i == last) break;
      }
      reference = point[i];
      if ((types.data()[i] & PT_CLOSEFIGURE) != 0) put(u'z');
    }
  }

 private:
  void paint() {
    if (!hasFill_)
      put(u" fill=\"none\"");
    else if (fill_.red != 0)
      colour(u" fill=\"rgb(", fill_);
    if (strokeWidth_ == 0) return;
    colour(u" stroke=\"rgb(", stroke_);
    put(u" stroke-width=\"", strokeWidth_, u"\"");
  }

  template <size_t size>
  void colour(const char16_t (&start)[size], Colour c) {
    put(start, int32_t{c.red}, u',', int32_t{c.green}, u',', int32_t{c.blue}, u")\"");
  }

  bool hasFill_ = true;
  Colour fill_ = {};  // black without red
  Colour stroke_ = {};
  int32_t strokeWidth_ = 0;
  int32_t font_ = -1;  // number of the current one
  int32_t pictures_ = 0;
  const void* picture_ = nullptr;
};

}  // namespace bench
