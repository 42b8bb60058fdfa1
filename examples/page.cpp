// Draws a page with the C++ interface and writes it to a file as UTF-16 with its mark.
// usage: page FILE
#include <qzsvggen/qzsvggen.hpp>
#if defined(_WIN32)
#include <windows.h>  // POINT and RECT
#endif

#include <exception>
#include <iostream>

namespace {

void drawPage(qzsvggen::Page& page) {
  // A card.
  page.setFill(255, 250, 246, 232);
  page.setStroke(255, 120, 90, 40, 6);
  page.drawRectangle({150, 150, 1950, 900});

  // A heading, with the advance from each code unit to the next.
  page.clearStroke();
  page.setFill(255, 40, 40, 40);
  page.setFont(u"Times New Roman", 110, false, true);
  page.drawText(u"Caf\u00E9 \u6F22\u5B57", {250, 330}, {79, 55, 37, 49, 27, 110, 110});

  // A link around a line of text.
  page.setFont(u"Arial", 60);
  page.setFill(255, 0, 70, 160);
  {
    auto link = page.link(qzsvggen::LinkType::kExternal, u"https://example.org/?a=1&b=2");
    page.drawText(u"example.org", {250, 450});
  }

  // Curves, of which a clip region shows the left part.
  {
    auto clip = page.clip({250, 500, 1200, 860});
    page.setFill(128, 60, 140, 190);
    page.drawPath({{250, 680},
                   {500, 480},
                   {700, 880},
                   {1000, 680},
                   {1300, 480},
                   {1400, 880},
                   {1700, 680},
                   {1700, 860},
                   {250, 860}},
                  {PT_MOVETO, PT_BEZIERTO, PT_BEZIERTO, PT_BEZIERTO, PT_BEZIERTO, PT_BEZIERTO,
                   PT_BEZIERTO, PT_LINETO, PT_LINETO | PT_CLOSEFIGURE});
  }

  // A check box with its tick.
  const RECT box = {1500, 600, 1700, 800};
  page.setFill(0, 0, 0, 0);
  page.setStroke(255, 40, 40, 40, 10);
  auto field = page.formField(qzsvggen::FieldType::kCheckBox, box, u"agreed", {}, 1);
  page.drawRectangle(box);
  page.drawPolyline({{1540, 700}, {1590, 750}, {1670, 640}});
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 2) return 2;
  qzsvggen::Page page({0, 0, 2100, 1050});
  drawPage(page);
  qzsvggen::writeFile(argv[1], page.close());
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return 1;
}
