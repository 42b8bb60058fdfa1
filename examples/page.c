/* Draws a page with the C interface and writes it to a file as UTF-16 with its mark.
 * usage: page FILE */
#include <qzsvggen/qzsvggen.h>
#if defined(_WIN32)
#include <windows.h> /* POINT and RECT */
#endif

#include <stdio.h>
#include <stdlib.h>

/* A literal as UTF-16, and its count of code units. */
#if defined(_WIN32)
#define UNITS(text) L##text, sizeof(L##text) / 2 - 1
#else
#define UNITS(text) u##text, sizeof(u##text) / 2 - 1
#endif

static void drawPage(SvgGenerator* generator) {
  /* A card. */
  const RECT card = {150, 150, 1950, 900};
  SVG_SetFill(generator, 255, 250, 246, 232);
  SVG_SetStroke(generator, 255, 120, 90, 40, 6);
  SVG_DrawRectangle(generator, &card);

  /* A heading, with the advance from each code unit to the next. */
  const POINT heading = {250, 330};
  const int32_t advances[] = {79, 55, 37, 49, 27, 110, 110};
  SVG_ClearStroke(generator);
  SVG_SetFill(generator, 255, 40, 40, 40);
  SVG_SetFont(generator, UNITS("Times New Roman"), 110, 0, 1);
  SVG_DrawText(generator, UNITS("Caf\u00E9 \u6F22\u5B57"), &heading, advances, 100);

  /* A link around a line of text. */
  const POINT address = {250, 450};
  SVG_SetFont(generator, UNITS("Arial"), 60, 0, 0);
  SVG_SetFill(generator, 255, 0, 70, 160);
  SVG_BeginLink(generator, SVG_LINK_EXTERNAL, UNITS("https://example.org/?a=1&b=2"));
  SVG_DrawText(generator, UNITS("example.org"), &address, NULL, 100);
  SVG_EndLink(generator);

  /* Curves, of which a clip region shows the left part. */
  const RECT left = {250, 500, 1200, 860};
  const POINT wave[] = {{250, 680},  {500, 480},  {700, 880},  {1000, 680}, {1300, 480},
                        {1400, 880}, {1700, 680}, {1700, 860}, {250, 860}};
  const uint8_t types[] = {PT_MOVETO,   PT_BEZIERTO, PT_BEZIERTO,
                           PT_BEZIERTO, PT_BEZIERTO, PT_BEZIERTO,
                           PT_BEZIERTO, PT_LINETO,   PT_LINETO | PT_CLOSEFIGURE};
  SVG_BeginClippingRegion(generator, &left);
  SVG_SetFill(generator, 128, 60, 140, 190);
  SVG_DrawPath(generator, wave, types, sizeof types);
  SVG_EndClippingRegion(generator);

  /* A check box with its tick. */
  const RECT box = {1500, 600, 1700, 800};
  const POINT tick[] = {{1540, 700}, {1590, 750}, {1670, 640}};
  SVG_SetFill(generator, 0, 0, 0, 0);
  SVG_SetStroke(generator, 255, 40, 40, 40, 10);
  SVG_BeginFormField(generator, SVG_FIELD_CHECKBOX, 1, 0, &box, UNITS("agreed"), NULL, 0);
  SVG_DrawRectangle(generator, &box);
  SVG_DrawPolyline(generator, tick, 3);
  SVG_EndFormField(generator);
}

/* The document with its terminating zero, to be freed, or null. */
static SVG_Char* closePage(SvgGenerator* generator, int32_t* size) {
  *size = SVG_Close(generator, NULL, 0);
  SVG_Char* document = *size > 0 ? malloc((size_t)*size * sizeof *document) : NULL;
  if (document != NULL) SVG_Close(generator, document, *size);
  return document;
}

static int writeFile(const char* path, const SVG_Char* document, size_t length) {
  const SVG_Char mark = 0xFEFF;
  FILE* file = fopen(path, "wb");
  if (file == NULL) return 0;
  size_t written = fwrite(&mark, sizeof mark, 1, file);
  written += fwrite(document, sizeof *document, length, file);
  return fclose(file) == 0 && written == length + 1;
}

int main(int argc, char** argv) {
  const RECT page = {0, 0, 2100, 1050};
  SvgGenerator* generator = argc == 2 ? SVG_Create(&page) : NULL;
  if (generator == NULL) return 2;
  drawPage(generator);
  int32_t size;
  SVG_Char* document = closePage(generator, &size);
  SVG_Delete(generator);
  const int done = document != NULL && writeFile(argv[1], document, (size_t)size - 1);
  free(document);
  return done ? 0 : 1;
}
