// What is measured: pages, each drawn by the same code onto the library, the floor and the peers.
// `define` gives the floor what stands in the page's definitions.
#pragma once

#include "flat_page.h"

namespace bench {

struct Scene {
  static void define(FlatPage&, PageData, int) {}
};

// ---- a to e, t, s: what every library can draw --------------------------------------------------

struct Lines : Scene {
  static void draw(auto& page, PageData data, int count) {
    for (int i = 0; i < count; ++i) {
      const auto [red, green, blue] = data.colour(i);
      if (i % 10 == 0) page.setStroke(255, red, green, blue, 3);
      page.drawLine(data.point(2 * i), data.point(2 * i + 1));
    }
  }
};

struct Rectangles : Scene {
  static void draw(auto& page, PageData data, int count) {
    const auto [red, green, blue] = data.colour(0);
    page.setFill(255, red, green, blue);
    page.setStroke(255, red, green, blue, 4);
    for (int i = 0; i < count; ++i) page.drawRectangle(data.rectangle(i));
  }
};

constexpr uint8_t M = PT_MOVETO, L = PT_LINETO, C = PT_BEZIERTO, Z = PT_CLOSEFIGURE;

struct Paths : Scene {
  static constexpr uint8_t kTypes[] = {M, L, C, C, C, L, C, C, C, L, C, C, C, L, C, C, C | Z};

  static void draw(auto& page, PageData data, int count) {
    page.setFill(255, 60, 120, 30);
    for (int i = 0; i < count; ++i)
      page.drawPath(data.outline(i * sizeof kTypes, sizeof kTypes), kTypes);
  }
};

struct Polylines : Scene {
  static void draw(auto& page, PageData data, int count) {
    page.setFill(0, 0, 0, 0);
    page.setStroke(255, 20, 40, 160, 4);
    for (int i = 0; i < count; ++i) page.drawPolyline(data.points(i, 100));
  }
};

struct Runs {
  static void define(FlatPage& page, PageData, int) {
    page.put(u"<style>.QZ_fnt0{font:120px Arial;}</style>");
  }
  static void draw(auto& page, PageData data, int count) {
    page.setFont(u"Arial", 120, false, false);
    for (int i = 0; i < count; ++i) page.drawText(data.run(i), data.point(i), data.advances(i));
  }
};

struct Mix : Runs {
  static void draw(auto& page, PageData data, int count) {
    Runs::draw(page, data, count / 4);
    Lines::draw(page, data, count / 4);
    Rectangles::draw(page, data, count / 4);
    page.clearStroke();
    Paths::draw(page, data, count / 4);
  }
};

// ---- f: character blocks ------------------------------------------------------------------------

// Glyphs that are placed once, then placements of the common ones, first in order, then in any.
struct Glyphs : Scene {
  static constexpr int kDistinct = 5000, kCommon = 80, kBlock = 50;
  static constexpr uint8_t kTypes[] = {M,     L, C, C, C, C, C, C, L, L, C, C,    C,
                                       L | Z, M, C, C, C, L, C, C, C, L, L, L | Z};

  // Character `first` is the first one that looks like this one.
  static void draw(qzsvggen::Page& page, PageData data, int number, int first) {
    if (number % kBlock == 0) page.beginCharacterBlock();
    page.beginCharacter(data.point(number));
    page.drawPath(data.outline(5 * first, sizeof kTypes), kTypes);
    page.endCharacter();
    if (number % kBlock == kBlock - 1) page.endCharacterBlock();
  }
  static void draw(FlatPage& page, PageData data, int number, int first) {
    const int block = first / kBlock, index = first % kBlock;
    if (number % kBlock == 0) page.put(u"<g>");
    if (number == first) {
      page.put(u"<path id=\"QZ_", block, u'_', index, u"\" d=\"");
      page.outline(data.outline(5 * first, sizeof kTypes), kTypes);
      page.put(u"\"/>");
    } else {
      const int32_t x = data.point(number).x - data.point(first).x;
      const int32_t y = data.point(number).y - data.point(first).y;
      page.put(u"<use xlink:href=\"#QZ_", block, u'_', index, u'"');
      if (x != 0) page.put(u" x=\"", x, u'"');
      if (y != 0) page.put(u" y=\"", y, u'"');
      page.put(u"/>");
    }
    if (number % kBlock == kBlock - 1) page.put(u"</g>");
  }
  static void draw(auto& page, PageData data, int count) {
    for (int i = 0; i < kDistinct + count; ++i)
      draw(page, data, i, i < kDistinct + kCommon ? i : kDistinct + data.point(i).x % kCommon);
  }
};

// ---- g, h, l: pictures --------------------------------------------------------------------------

template <qzsvggen::ImageFormat format, size_t size, bool distinct>
struct Rasters {
  static void define(FlatPage& page, PageData, int count) {
    constexpr bool png = format == qzsvggen::ImageFormat::kPng;
    for (int i = 0; i < (distinct ? count : 1); ++i)
      page.put(u"<symbol id=\"QZ_I", i, u"\" viewBox=\"0 0 400 300\"><image width=\"400\"",
               u" height=\"300\" xlink:href=\"data:image/",
               png ? std::u16string_view(u"png") : u"jpeg", u";base64,", PageData::picture(i, size),
               u"\"/></symbol>");
  }
  static void draw(auto& page, PageData data, int count) {
    for (int i = 0; i < count; ++i)
      page.drawImage(format, data.frame(i), PageData::picture(distinct ? i : 0, size));
  }
};
using Jpeg = Rasters<qzsvggen::ImageFormat::kJpeg, 1 << 20, false>;
using Pngs = Rasters<qzsvggen::ImageFormat::kPng, 268, true>;

struct SvgPicture {
  static constexpr std::string_view kStart =
      "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 1000 1000\">";
  static constexpr std::string_view kEnd = "</svg>";
  static inline const std::string kFile = [] {
    const PageData data(0);
    std::string file;
    file.reserve(1 << 20);
    file += kStart;
    for (int i = 0; file.size() + 100 < 1 << 20; ++i) {
      const auto [x, y] = data.point(i);
      file += "<path d=\"M" + std::to_string(x) + " " + std::to_string(y) +
              "l90 10\" fill=\"none\"/>\n";
    }
    file += kEnd;
    return file;  // without a copy, see makeList
  }();

  static void define(FlatPage& page, PageData, int) {
    const auto content =
        std::string_view(kFile).substr(kStart.size(), kFile.size() - kStart.size() - kEnd.size());
    page.put(
        u"<g id=\"QZ_G0\"><g  xmlns=\"http://www.w3.org/2000/svg\" >", content,
        u"</g></g><symbol id=\"QZ_S0\" width=\"400\" height=\"300\" viewBox=\"0 0 1000 1000\">",
        u"<use xlink:href=\"#QZ_G0\"/></symbol>");
  }
  static void draw(auto& page, PageData data, int count) {
    for (int i = 0; i < count; ++i)
      page.drawImage(qzsvggen::ImageFormat::kSvg, data.frame(i), kFile);
  }
};

// ---- i, k: clip regions -------------------------------------------------------------------------

void defineRegion(FlatPage& page, int number, auto outlines) {
  page.put(u"<clipPath id=\"QZ_C", number, u"\"><path d=\"");
  outlines();
  page.put(u"\" clip-rule=\"evenodd\"/></clipPath>");
}

// Draws under the current region, of which the floor has to know the number.
void drawClipped(qzsvggen::Page&, int, auto draw) { draw(); }
void drawClipped(FlatPage& page, int region, auto draw) {
  page.put(u"<g clip-path=\"url(#QZ_C", region, u")\">");
  draw();
  page.put(u"</g>");
}

struct Regions {
  static constexpr int kParts = 20;  // each makes a region of the next number

  static void define(FlatPage& page, PageData data, int count) {
    for (int i = 0; i < count; ++i)
      defineRegion(page, kParts * (i + 1) - 1, [&] {
        for (int j = 0; j < kParts; ++j) page.outline(data.rectangle(kParts * i + j));
      });
  }
  static void draw(auto& page, PageData data, int count) {
    for (int i = 0; i < count; ++i) {
      page.beginClippingRegion(data.rectangle(kParts * i));
      for (int j = 1; j < kParts; ++j) page.addClippingRegion(data.rectangle(kParts * i + j));
      drawClipped(page, kParts * (i + 1) - 1, [&] {
        page.drawRectangle(data.rectangle(i));
        page.drawRectangle(data.rectangle(i + 1));
      });
    }
  }
};

// The page is region 0; the one with i cuts is region i.
template <bool drawEach>
struct Exclusions {
  static void define(FlatPage& page, PageData data, int count) {
    for (int cuts = drawEach ? 1 : count; cuts <= count; ++cuts)
      defineRegion(page, cuts, [&] {
        page.outline(kPage);
        for (int i = 0; i < cuts; ++i) page.outline(data.cell(i));
      });
  }
  static void draw(auto& page, PageData data, int count) {
    for (int i = 0; i < count; ++i) {
      page.excludeClippingRegion(data.cell(i));
      if (drawEach || i == count - 1)
        drawClipped(page, i + 1, [&] { page.drawRectangle(data.rectangle(i)); });
    }
  }
};

// ---- j: fonts -----------------------------------------------------------------------------------

struct Fonts {
  struct Family : std::array<char16_t, 12> {
    explicit Family(int number) : array{u'F', u'a', u'm', u'i', u'l', u'y', u' '} {
      for (auto digit = rbegin(); *digit == 0; ++digit, number /= 10)
        *digit = static_cast<char16_t>(u'0' + number % 10);
    }
    operator std::u16string_view() const { return {data(), size()}; }
  };

  static void define(FlatPage& page, PageData, int count) {
    page.put(u"<style>");
    for (int i = 0; i < count; ++i)
      page.put(u".QZ_fnt", i, u"{font:bold 12px ", std::u16string_view(Family(i)), u";}");
    page.put(u"</style>");
  }
  static void draw(auto& page, PageData data, int count) {
    for (int i = 0; i < count; ++i) {
      page.setFont(Family(i), 12, false, true);
      page.drawText(u"Text", data.point(i));
    }
  }
};

}  // namespace bench
