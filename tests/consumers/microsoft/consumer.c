/* A host built for Microsoft's linker, without any run-time library. */
#include <qzsvggen/qzsvggen.h>

int start(void) {
  SvgGenerator* generator = SVG_Create((const RECT*)(const int32_t[4]){0, 0, 10, 10});
  int failed = SVG_GetVersion() != 100 || SVG_Close(generator, NULL, 0) <= 0;
  return failed | SVG_Delete(generator);
}
