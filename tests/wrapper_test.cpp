// The C++ wrapper: each of its calls does what the C call does, and no document comes out in part.
#include "page.h"

namespace {
decltype(&SVG_Close) closing = SVG_Close;  // what the wrapper calls
}
#define SVG_Close (*closing)
#include <qzsvggen/qzsvggen.hpp>
#undef SVG_Close

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace qz::test {
namespace {

using qzsvggen::FieldType;
using qzsvggen::ImageFormat;
using qzsvggen::LinkType;

const std::vector<POINT> points = {{1, 2}, {3, 5}, {4, 9}};
const std::vector<uint8_t> types = {PT_MOVETO, PT_LINETO, PT_LINETO | PT_CLOSEFIGURE};
const RECT wide = {0, 0, 90, 40}, small = {10, 10, 20, 30};
const std::string date("\1\0\0\0\0\0\0\0d\0", 10);

void drawWithC(Page& page) {
  page(SVG_SetStroke, 255, 1, 2, 3, 4)(SVG_BeginInvertPainting)(SVG_SetFill, 5, 6, 7, 8).line();
  page(SVG_EndInvertPainting)(SVG_ClearStroke)(SVG_DrawRectangle, &small);
  page(SVG_DrawRoundedRectangle, &small, 6, 4, 15).polyline(points);
  page(SVG_DrawPolygon, points.data(), 3).path({})(SVG_DrawPath, points.data(), types.data(), 3);
  page.font(u"A", 12, true, false).text(u"ab\U0001F600", {1, 2}, {3, 4, 5, 6}, 90);
  page(SVG_ClearFont).text(u"plain")(SVG_InvertPath, points.data(), types.data(), 3);
  page(SVG_InvertRectangle, &small)(SVG_BeginCharacterBlock)(SVG_BeginCharacter, &points[0]).line();
  page(SVG_EndCharacter)(SVG_SetCharacterReference, 0, &points[1])(SVG_EndCharacterBlock);
  page.image(SVG_IMAGE_PNG, small, "dot", 80).clip(wide)(SVG_ExcludeClippingRegion, &small).line();
  page.clip(small)(SVG_AddClippingRegion, &wide).line();
  page(SVG_SetCurrentClippingRegion, 1).line()(SVG_EndClippingRegion).line();
  page(SVG_BeginFormField, SVG_FIELD_DATE, 1, 2, &small, units(u"due").data(), 3, date.data(), 10);
  page.line()(SVG_EndFormField).line().link(SVG_LINK_INTERNAL, u"here").line()(SVG_EndLink).line();
  page(SVG_BeginSignatureField, &small, units(u"by").data(), 2, units(u"info").data(), 8).line();
  page(SVG_EndSignatureField).target({7, 8}, u"here");
}

void drawLine(qzsvggen::Page& page) { page.drawLine({1, 2}, {3, 4}); }

// A scope ends where this returns.
template <class Scope>
void drawLineWithin(Scope, qzsvggen::Page& page) {
  drawLine(page);
}

void drawWithWrapper(qzsvggen::Page& page) {
  page.setStroke(255, 1, 2, 3, 4);
  auto inverted = page.invertPainting();
  page.setFill(5, 6, 7, 8);
  drawLine(page);
  inverted.end();
  page.clearStroke();
  page.drawRectangle(small);
  page.drawRoundedRectangle(small, 6, 4);
  page.drawPolyline(points);
  page.drawPolygon(points);
  page.drawPath({}, {});
  page.drawPath(points, types);
  page.setFont(u"A", 12, true);
  page.drawText(std::u16string(u"ab\U0001F600"), {1, 2}, {3, 4, 5, 6}, 90);
  page.clearFont();
  page.drawText(u"plain", {1, 2});
  page.invertPath(points, types);
  page.invertRectangle(small);
  auto block = page.characterBlock();
  page.beginCharacter(points[0]);
  drawLine(page);
  page.endCharacter();
  page.setCharacterReference(0, points[1]);
  block.end();
  page.drawImage(ImageFormat::kPng, small, std::string("dot"), 80);
  auto outer = page.clip(wide);
  page.excludeClippingRegion(small);
  EXPECT_EQ(1u, page.currentClippingRegion());
  drawLine(page);
  auto inner = page.clip(small);
  page.addClippingRegion(wide);
  drawLineWithin(std::move(inner), page);
  drawLineWithin(std::move(outer), page);
  EXPECT_EQ(std::nullopt, page.currentClippingRegion());
  EXPECT_FALSE(page.setCurrentClippingRegion(99));
  drawLine(page);
  drawLineWithin(page.formField(FieldType::kDate, small, u"due", date, 1, 2), page);
  drawLine(page);
  drawLineWithin(page.link(LinkType::kInternal, u"here"), page);
  drawLine(page);
  drawLineWithin(page.signatureField(small, u"by", u"info"), page);
  page.setDocumentTarget({7, 8}, u"here");
}

TEST(Wrapper, CallsWriteWhatTheCCallsWrite) {
  Page expected;
  drawWithC(expected);
  qzsvggen::Page drawn({0, 0, 100, 50});
  drawWithWrapper(drawn);
  qzsvggen::Page moved(std::move(drawn));
  EXPECT_SAME(expected.close(), readable(units(moved.close())));
}

TEST(Wrapper, RefusesWhatIsUndefined) {
  qzsvggen::Page page(wide);
  EXPECT_THROW(page.drawPath(points, {PT_MOVETO}), std::invalid_argument);
  EXPECT_THROW(page.drawText(u"ab", {1, 2}, {1}), std::invalid_argument);
  EXPECT_THROW(page.beginFormField(FieldType::kDate, small, u"due", u"abc"), std::invalid_argument);
}

TEST(Wrapper, HandsOverAWholeDocumentOnceOrNothing) {
  const std::u16string empty = qzsvggen::Page(wide).close();
  qzsvggen::Page page(wide);
  closing = [](SvgGenerator*, SVG_Char*, int32_t) noexcept { return 0; };
  EXPECT_THROW(page.close(), qzsvggen::Error) << "no memory";
  closing = [](SvgGenerator* generator, SVG_Char* buffer, int32_t size) noexcept {
    return SVG_Close(generator, buffer, buffer == nullptr ? size : size - 1);
  };
  EXPECT_THROW(page.close(), qzsvggen::Error) << "the copy is refused";
  closing = SVG_Close;
  EXPECT_EQ(empty, page.close());
  EXPECT_THROW(page.close(), qzsvggen::Error) << "handed over already";
}

TEST(Wrapper, WritesBytes) {
  EXPECT_EQ("a\xC3\xA9\xE6\xBC\xA2\xF0\x9F\x98\x80", qzsvggen::toUtf8(u"a\u00E9\u6F22\U0001F600"));
  const char16_t lone[] = {0xDE00, u'x', 0xD83D};
  EXPECT_EQ("\xEF\xBF\xBDx\xEF\xBF\xBD", qzsvggen::toUtf8({lone, 3}));

  const auto path = std::filesystem::temp_directory_path() /
                    ("qzsvggen_wrapper_test_" + std::to_string(std::random_device()()) + ".svg");
  qzsvggen::writeFile(path, u"a\n\u6F22");
  std::ifstream file(path, std::ios::binary);
  EXPECT_EQ("\xFF\xFE\x61\0\n\0\x22\x6F"s, std::string(std::istreambuf_iterator<char>(file), {}));
  file.close();
  const auto reason = [](const std::filesystem::path& target) {
    try {
      qzsvggen::writeFile(target, u"b");
    } catch (const std::filesystem::filesystem_error& error) {
      return error.code();
    }
    return std::error_code();
  };
  EXPECT_EQ(std::errc::no_such_file_or_directory, reason(path.parent_path() / "none" / "page.svg"));
  const std::filesystem::path aside = path.string() + ".part";
  std::filesystem::create_directory(aside);  // so that nothing can be written there
  EXPECT_TRUE(reason(path));
  EXPECT_EQ(8u, std::filesystem::file_size(path)) << "what was there stays";
  std::filesystem::remove(aside);
  std::filesystem::remove(path);
}

}  // namespace
}  // namespace qz::test
