#include "workloads.h"

#include <array>

#include "canvases.h"

namespace bench {
namespace {

const PageData& data = PageData::get();

// ---- The floor's page ---------------------------------------------------------------------------

constexpr auto nothing = [] {};

template <class Definitions, class Content>
void writePage(FlatWriter& out, Definitions definitions, Content content) {
  out.put(
      u"<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\""
      u" width=\"",
      kPageSize, u"\" height=\"", kPageSize, u"\"><defs>");
  definitions();
  out.put(u"</defs>");
  content();
  out.put(u"</svg>");
}

// ---- a to e: scenes that every library can draw -------------------------------------------------

struct Lines {
  template <class Canvas>
  static void draw(Canvas& canvas, int count) {
    for (int i = 0; i < count; ++i) {
      if (i % 10 == 0) canvas.stroke(data.colour(i / 10), 3);
      canvas.line(data.point(2 * i), data.point(2 * i + 1));
    }
  }
};

struct Rectangles {
  template <class Canvas>
  static void draw(Canvas& canvas, int count) {
    canvas.fill({255, 240, 200});
    canvas.stroke({20, 40, 160}, 4);
    for (int i = 0; i < count; ++i) canvas.rectangle(data.rectangle(i));
  }
};

struct Paths {
  template <class Canvas>
  static void draw(Canvas& canvas, int count) {
    canvas.fill({60, 120, 30});
    for (int i = 0; i < count; ++i) canvas.path(data.figure(i));
  }
};

struct Polylines {
  template <class Canvas>
  static void draw(Canvas& canvas, int count) {
    canvas.noFill();
    canvas.stroke({20, 40, 160}, 4);
    for (int i = 0; i < count; ++i) canvas.polyline(data.points(i, 100), 100);
  }
};

struct Runs {
  template <class Canvas>
  static void draw(Canvas& canvas, int count) {
    canvas.font(120);
    for (int i = 0; i < count; ++i) canvas.text(data.run(i), data.point(i), data.advances(i));
  }
};

template <class Scene>
Workload scene(const char* name, const char* title, std::vector<int> counts,
               std::vector<Target> targets) {
  return {name,
          title,
          std::move(counts),
          std::move(targets),
          [](SvgGenerator* generator, int count) {
            LibraryCanvas canvas(generator);
            Scene::draw(canvas, count);
          },
          [](FlatWriter& out, int count) {
            const auto definitions = [&] {
              if constexpr (std::is_same_v<Scene, Runs>)
                out.put(u"<style>.QZ_fnt0{font:120px Arial;}</style>");
            };
            writePage(out, definitions, [&] {
              FlatCanvas canvas(out);
              Scene::draw(canvas, count);
            });
          },
          [](Peer& peer, int count) {
            peer.beginPage();
            Scene::draw(peer, count);
            peer.endPage();
          }};
}

// ---- f: character blocks ------------------------------------------------------------------------

constexpr int kDistinct = 5000;  // glyphs that are placed once
constexpr int kCommon = 80;      // glyphs of the placements that follow
constexpr int kBlock = 50;       // characters

// The glyph of a character. The common ones come in order first, then in any order.
int glyphOf(int character) {
  if (character < kDistinct + kCommon) return character;
  return kDistinct + data.point(character).x % kCommon;
}

void drawGlyphs(SvgGenerator* generator, int count) {
  LibraryCanvas canvas(generator);
  for (int i = 0; i < kDistinct + count; ++i) {
    if (i % kBlock == 0) SVG_BeginCharacterBlock(generator);
    SVG_BeginCharacter(generator, &data.point(i));
    canvas.path(data.glyph(glyphOf(i)));
    SVG_EndCharacter(generator);
    if (i % kBlock == kBlock - 1) SVG_EndCharacterBlock(generator);
  }
}

void writeGlyphs(FlatWriter& out, int count) {
  FlatCanvas canvas(out);
  writePage(out, nothing, [&] {
    const int characters = kDistinct + count;
    for (int i = 0; i < characters; ++i) {
      if (i % kBlock == 0) out.put(u"<g>");
      const int first = glyphOf(i);  // character i is the first with glyph i
      const int block = first / kBlock, index = first % kBlock;
      if (i == first) {
        out.put(u"<path id=\"QZ_", block, u'_', index, u"\" d=\"");
        canvas.pathData(data.glyph(i));
        out.put(u"\"/>");
      } else {
        out.put(u"<use xlink:href=\"#QZ_", block, u'_', index, u'"');
        const int32_t x = data.point(i).x - data.point(first).x;
        const int32_t y = data.point(i).y - data.point(first).y;
        if (x != 0) out.put(u" x=\"", x, u'"');
        if (y != 0) out.put(u" y=\"", y, u'"');
        out.put(u"/>");
      }
      if (i % kBlock == kBlock - 1 || i == characters - 1) out.put(u"</g>");
    }
  });
}

// ---- g, h, l: pictures --------------------------------------------------------------------------

void writePlacement(FlatWriter& out, int picture, const RECT& frame) {
  out.put(u"<use xlink:href=\"#QZ_I", picture, u"\" x=\"", frame.left, u"\" y=\"", frame.top,
          u"\" width=\"", frame.right - frame.left, u"\" height=\"", frame.bottom - frame.top,
          u"\"/>");
}

template <size_t size>
void writeSymbol(FlatWriter& out, int picture, const char16_t (&prefix)[size], Base64 bytes) {
  out.put(u"<symbol id=\"QZ_I", picture, u"\" viewBox=\"0 0 ", kPictureWidth, u' ', kPictureHeight,
          u"\"><image width=\"", kPictureWidth, u"\" height=\"", kPictureHeight,
          u"\" xlink:href=\"", prefix, bytes, u"\"/></symbol>");
}

void drawJpeg(SvgGenerator* generator, int count) {
  const auto& picture = data.largePicture();
  for (int i = 0; i < count; ++i) {
    const RECT frame = data.frame(i);
    SVG_DrawImage(generator, SVG_IMAGE_JPEG, &frame, picture.data(),
                  static_cast<int32_t>(picture.size()), 100);
  }
}

void writeJpeg(FlatWriter& out, int count) {
  const auto& picture = data.largePicture();
  writePage(
      out,
      [&] {
        writeSymbol(out, 0, u"data:image/jpeg;base64,", {picture.data(), picture.size()});
      },
      [&] {
        for (int i = 0; i < count; ++i) writePlacement(out, 0, data.frame(i));
      });
}

void drawPngs(SvgGenerator* generator, int count) {
  for (int i = 0; i < count; ++i) {
    const RECT frame = data.frame(i);
    SVG_DrawImage(generator, SVG_IMAGE_PNG, &frame, data.smallPicture(i), PageData::kSmallPicture,
                  100);
  }
}

void writePngs(FlatWriter& out, int count) {
  writePage(
      out,
      [&] {
        for (int i = 0; i < count; ++i)
          writeSymbol(out, i, u"data:image/png;base64,",
                      {data.smallPicture(i), PageData::kSmallPicture});
      },
      [&] {
        for (int i = 0; i < count; ++i) writePlacement(out, i, data.frame(i));
      });
}

void drawSvgPicture(SvgGenerator* generator, int count) {
  static const std::string picture =
      "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 1000 1000\">" + data.svgContent() +
      "</svg>";
  for (int i = 0; i < count; ++i) {
    const RECT frame = data.frame(i);
    SVG_DrawImage(generator, SVG_IMAGE_SVG, &frame,
                  reinterpret_cast<const uint8_t*>(picture.data()),
                  static_cast<int32_t>(picture.size()), 100);
  }
}

void writeSvgPicture(FlatWriter& out, int count) {
  writePage(
      out,
      [&] {
        out.put(u"<g id=\"QZ_G0\"><g  xmlns=\"http://www.w3.org/2000/svg\" >",
                std::string_view(data.svgContent()), u"</g></g><symbol id=\"QZ_S0\" width=\"",
                kPictureWidth, u"\" height=\"", kPictureHeight,
                u"\" viewBox=\"0 0 1000 1000\"><use xlink:href=\"#QZ_G0\"/></symbol>");
      },
      [&] {
        for (int i = 0; i < count; ++i) {
          const RECT frame = data.frame(i);
          out.put(u"<use xlink:href=\"#QZ_S0\" transform=\"translate(", Pair(frame.left, frame.top),
                  u")\"/>");
        }
      });
}

// ---- i, k: clip regions -------------------------------------------------------------------------

constexpr int kParts = 20;  // rectangles of a region

void drawRegions(SvgGenerator* generator, int count) {
  LibraryCanvas canvas(generator);
  for (int i = 0; i < count; ++i) {
    SVG_BeginClippingRegion(generator, &data.rectangle(kParts * i));
    for (int j = 1; j < kParts; ++j)
      SVG_AddClippingRegion(generator, &data.rectangle(kParts * i + j));
    canvas.rectangle(data.rectangle(i));
    canvas.rectangle(data.rectangle(i + 1));
  }
}

void writeRegions(FlatWriter& out, int count) {
  FlatCanvas canvas(out);
  writePage(
      out,
      [&] {
        for (int i = 0; i < count; ++i) {
          out.put(u"<clipPath id=\"QZ_C", kParts * i + kParts - 1, u"\"><path d=\"");
          for (int j = 0; j < kParts; ++j) canvas.rectangleOutline(data.rectangle(kParts * i + j));
          out.put(u"\" clip-rule=\"evenodd\"/></clipPath>");
        }
      },
      [&] {
        for (int i = 0; i < count; ++i) {
          out.put(u"<g clip-path=\"url(#QZ_C", kParts * i + kParts - 1, u")\">");
          canvas.rectangle(data.rectangle(i));
          canvas.rectangle(data.rectangle(i + 1));
          out.put(u"</g>");
        }
      });
}

template <bool drawEach>
void drawExclusions(SvgGenerator* generator, int count) {
  LibraryCanvas canvas(generator);
  for (int i = 0; i < count; ++i) {
    const RECT cut = data.cell(i);
    SVG_ExcludeClippingRegion(generator, &cut);
    if (drawEach || i == count - 1) canvas.rectangle(data.rectangle(i));
  }
}

// The page is region 0; the one with i cuts is region i.
template <bool drawEach>
void writeExclusions(FlatWriter& out, int count) {
  FlatCanvas canvas(out);
  writePage(
      out,
      [&] {
        for (int cuts = drawEach ? 1 : count; cuts <= count; ++cuts) {
          out.put(u"<clipPath id=\"QZ_C", cuts, u"\"><path d=\"");
          canvas.rectangleOutline(kPage);
          for (int i = 0; i < cuts; ++i) canvas.rectangleOutline(data.cell(i));
          out.put(u"\" clip-rule=\"evenodd\"/></clipPath>");
        }
      },
      [&] {
        for (int cuts = drawEach ? 1 : count; cuts <= count; ++cuts) {
          out.put(u"<g clip-path=\"url(#QZ_C", cuts, u")\">");
          canvas.rectangle(data.rectangle(cuts - 1));
          out.put(u"</g>");
        }
      });
}

// ---- j: fonts -----------------------------------------------------------------------------------

void drawFonts(SvgGenerator* generator, int count) {
  std::u16string family = u"Family 00000";
  for (int i = 0; i < count; ++i) {
    for (int digit = 0, rest = i; digit < 5; ++digit, rest /= 10)
      family[family.size() - 1 - digit] = static_cast<char16_t>(u'0' + rest % 10);
    SVG_SetFont(generator, family.data(), static_cast<uint32_t>(family.size()), 12, 0, 1);
    SVG_DrawText(generator, u"Text", 4, &data.point(i), nullptr, 100);
  }
}

void writeFonts(FlatWriter& out, int count) {
  writePage(
      out,
      [&] {
        out.put(u"<style>");
        for (int i = 0; i < count; ++i) {
          out.put(u".QZ_fnt", i, u"{font:bold 12px Family ");
          for (int unit = 10000; unit > 0; unit /= 10) out.put(i / unit % 10);
          out.put(u";}");
        }
        out.put(u"</style>");
      },
      [&] {
        for (int i = 0; i < count; ++i)
          out.put(u"<text x=\"", data.point(i).x, u"\" y=\"", data.point(i).y, u"\" class=\"QZ_fnt",
                  i, u"\" xml:space=\"preserve\">Text</text>");
      });
}

// The targets of a scene at 10,000 elements that concern the peers and the memory.
std::vector<Target> besidePeers(double cairo, double muPdf, std::vector<Target> targets) {
  targets.push_back({10000, kCairo, cairo});
  targets.push_back({10000, kMuPdf, muPdf});
  targets.push_back({10000, kPeakPerByte, 1.0, 0.6});
  return targets;
}

}  // namespace

const std::vector<Workload>& workloads() {
  static const std::vector<int> decades = {1000, 10000, 100000};
  static const std::vector<Workload> all = {
      scene<Lines>("a", "lines, colour change every 10", {1000, 10000, 100000, 1000000},
                   besidePeers(80, 15,
                               {{10000, kToFloor, 1.8, 1.0},
                                {100000, kToFloor, 2.0, 1.0},
                                {1000000, kToFresh, 1.0}})),
      scene<Rectangles>(
          "b", "filled and stroked rectangles", decades,
          besidePeers(80, 15, {{10000, kToFloor, 1.7, 1.0}, {100000, kToFloor, 1.9, 1.0}})),
      scene<Paths>(
          "c", "paths of 4 lines and 4 curves", decades,
          besidePeers(80, 15, {{10000, kToFloor, 0.9, 0.6}, {100000, kToFloor, 1.1, 0.6}})),
      scene<Polylines>(
          "d", "polylines of 100 points", decades,
          besidePeers(80, 15, {{10000, kToFloor, 0.8, 0.55}, {100000, kToFloor, 2.0, 0.55}})),
      scene<Runs>("e", "text runs of 40 characters with advances", decades,
                  besidePeers(60, 8, {{10000, kToFloor, 1.2, 0.7}, {100000, kToFloor, 2.1, 0.7}})),
      {"f",
       "5,000 distinct glyphs, then N placements of 80 others",
       decades,
       {{10000, kToFloor, 1.5, 1.2}, {100000, kToFloor, 2.7, 1.2}},
       drawGlyphs,
       writeGlyphs,
       nullptr,
       kDistinct},
      {"g",
       "one JPEG of 1 MiB, placed N times",
       {1, 200},
       {{1, kToFloor, 2.8, 1.4}, {200, kNanoseconds, 45e3, 25e3}},
       drawJpeg,
       writeJpeg},
      {"h",
       "distinct PNGs of 268 bytes",
       {1000, 10000, PageData::kSmallPictures},
       {{10000, kToFloor, 2.3, 1.5}, {PageData::kSmallPictures, kGrowth, 1.3}},
       drawPngs,
       writePngs},
      {"i",
       "clip regions of 20 rectangles, two drawings each",
       decades,
       {{10000, kToFloor, 1.6, 0.8}},
       drawRegions,
       writeRegions},
      {"j",
       "distinct fonts, each set and used",
       {1000, 20000},
       {{20000, kNanoseconds, 250}, {20000, kGrowth, 1.3}},
       drawFonts,
       writeFonts},
      {"k",
       "exclusions in a row, then one drawing",
       {1000, 5000},
       {{5000, kNanoseconds, 4e3}},
       drawExclusions<false>,
       writeExclusions<false>},
      {"k2",
       "exclusions with a drawing after each",
       {1000, 5000},
       {{5000, kNanoseconds, 80e3, 15e3}},
       drawExclusions<true>,
       writeExclusions<true>},
      {"l",
       "one SVG picture of 1 MiB, placed N times",
       {1, 200},
       {{1, kNanoseconds, 1.8e6}, {200, kNanoseconds, 50e3}},
       drawSvgPicture,
       writeSvgPicture},
  };
  return all;
}

}  // namespace bench
