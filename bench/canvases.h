// Two surfaces for the same drawing code: the library, and the floor.
#pragma once

#include "flat_writer.h"
#include "page_data.h"

namespace bench {

class LibraryCanvas {
 public:
  explicit LibraryCanvas(SvgGenerator* generator) : generator_(generator) {}

  void fill(Colour c) { SVG_SetFill(generator_, 255, c.red, c.green, c.blue); }
  void noFill() { SVG_SetFill(generator_, 0, 0, 0, 0); }
  void stroke(Colour c, int width) {
    SVG_SetStroke(generator_, 255, c.red, c.green, c.blue, static_cast<uint32_t>(width));
  }
  void line(const POINT& from, const POINT& to) { SVG_DrawLine(generator_, &from, &to); }
  void rectangle(const RECT& box) { SVG_DrawRectangle(generator_, &box); }
  void polyline(const POINT* points, int count) {
    SVG_DrawPolyline(generator_, points, static_cast<uint32_t>(count));
  }
  void path(const Outline& outline) {
    SVG_DrawPath(generator_, outline.points, outline.types, static_cast<uint32_t>(outline.count));
  }
  void font(int size) { SVG_SetFont(generator_, u"Arial", 5, size, 0, 0); }
  void text(std::u16string_view run, const POINT& origin, const int32_t* advances) {
    SVG_DrawText(generator_, run.data(), static_cast<int32_t>(run.size()), &origin, advances, 100);
  }

 private:
  SvgGenerator* generator_;
};

class FlatCanvas {
 public:
  explicit FlatCanvas(FlatWriter& writer) : writer_(writer) {}

  void fill(Colour c) {
    fill_ = c;
    hasFill_ = true;
  }
  void noFill() { hasFill_ = false; }
  void stroke(Colour c, int width) {
    stroke_ = c;
    strokeWidth_ = width;
  }

  void line(const POINT& from, const POINT& to) {
    writer_.put(u"<line");
    paint();
    writer_.put(u" x1=\"", from.x, u"\" y1=\"", from.y, u"\" x2=\"", to.x, u"\" y2=\"", to.y,
                u"\"/>");
  }

  void rectangle(const RECT& box) {
    const int32_t half = strokeWidth_ / 2;
    writer_.put(u"<path");
    paint();
    writer_.put(u" d=\"");
    rectangleOutline({box.left + half, box.top + half, box.right + half, box.bottom + half});
    writer_.put(u"\"/>");
  }

  void polyline(const POINT* points, int count) {
    writer_.put(u"<polyline");
    paint();
    writer_.put(u" points=\"", Pair(points[0]));
    for (int i = 1; i < count; ++i) writer_.put(u' ', Pair(points[i]));
    writer_.put(u"\"/>");
  }

  void path(const Outline& outline) {
    writer_.put(u"<path");
    paint();
    writer_.put(u" d=\"");
    pathData(outline);
    writer_.put(u"\"/>");
  }

  void font(int) { hasFont_ = true; }

  void text(std::u16string_view run, const POINT& origin, const int32_t* advances) {
    int32_t x = origin.x;
    writer_.put(u"<text x=\"", x);
    for (size_t i = 1; i < run.size(); ++i) {
      x += advances[i - 1];
      if (x >= 0) writer_.put(u' ');
      writer_.put(x);
    }
    writer_.put(u"\" y=\"", origin.y, u"\"");
    if (hasFont_) writer_.put(u" class=\"QZ_fnt0\"");
    paint();
    writer_.put(u" xml:space=\"preserve\">", Escaped{run}, u"</text>");
  }

  void rectangleOutline(const RECT& box) {
    const int32_t width = box.right - box.left;
    writer_.put(u'M', Pair(box.left, box.top), u'h', width, u'v', box.bottom - box.top, u"h-",
                width, u'z');
  }

  void pathData(const Outline& outline) {
    const POINT* const points = outline.points;
    POINT start = {}, reference = {};
    char16_t run = 0;
    for (int i = 0; i < outline.count; ++i) {
      const uint8_t type = outline.types[i];
      if (type == PT_MOVETO) {
        writer_.put(i == 0 ? u'M' : u'm', Pair(points[i].x - start.x, points[i].y - start.y));
        start = reference = points[i];
        run = 0;
        continue;
      }
      const bool curve = (type & PT_BEZIERTO) != 0;
      const char16_t letter = curve ? u'c' : u'l';
      for (const int last = i + (curve ? 2 : 0);; ++i) {
        const Pair step(points[i].x - reference.x, points[i].y - reference.y);
        if (run != letter)
          writer_.put(run = letter);
        else if (step.x >= 0)
          writer_.put(u' ');
        writer_.put(step);
        if (i == last) break;
      }
      reference = points[i];
      if ((outline.types[i] & PT_CLOSEFIGURE) != 0) writer_.put(u'z');
    }
  }

 private:
  void paint() {
    if (!hasFill_)
      writer_.put(u" fill=\"none\"");
    else if (fill_.red != 0)
      colour(u" fill=\"rgb(", fill_);
    if (strokeWidth_ == 0) return;
    colour(u" stroke=\"rgb(", stroke_);
    writer_.put(u" stroke-width=\"", strokeWidth_, u"\"");
  }

  template <size_t size>
  void colour(const char16_t (&start)[size], Colour c) {
    writer_.put(start, int32_t{c.red}, u',', int32_t{c.green}, u',', int32_t{c.blue}, u")\"");
  }

  FlatWriter& writer_;
  bool hasFill_ = true;
  bool hasFont_ = false;
  Colour fill_ = {};
  Colour stroke_ = {};
  int strokeWidth_ = 0;
};

}  // namespace bench
