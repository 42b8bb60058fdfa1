/* The header as a C11 host sees it: first of all, or after windows.h (WINDOWS_FIRST), with
 * the macros that windows.h defines. header_test.cpp is the same for C++17. */
#if defined(WINDOWS_FIRST)
#include <windows.h>
#else
#define min(a, b) ((a) < (b) ? (a) : (b))
#define max(a, b) ((a) > (b) ? (a) : (b))
#endif
#if defined(OWN_TYPES) /* of a host that was ported from Windows */
typedef struct {
  int x, y;
} POINT;
typedef struct {
  int left, top, right, bottom;
} RECT;
#define PT_CLOSEFIGURE 1
#define PT_LINETO 2
#define PT_BEZIERTO 4
#define PT_MOVETO 6
#define QZSVGGEN_HAS_POINT_AND_RECT
#endif
#include <qzsvggen/qzsvggen.h>
#if defined(_WIN32)
#include <windows.h>
#endif

_Static_assert(sizeof QZSVGGEN_VERSION_STRING > 5 && QZSVGGEN_VERSION >= 10000, "the release");
_Static_assert(sizeof(SVG_Char) == 2, "text has 16-bit units");
_Static_assert(sizeof(POINT) == 8 && sizeof(RECT) == 16, "coordinates have 32 bits");
_Static_assert(PT_MOVETO == 6 && PT_LINETO == 2 && PT_BEZIERTO == 4 && PT_CLOSEFIGURE == 1,
               "the platform's point types");

int main(void) {
#if defined(_WIN32)
  static const wchar_t text[] = L"wide"; /* passes without a cast */
#else
  static const uint_least16_t text[] = u"wide";
#endif
  const RECT page = {0, 0, 100, 100};
  const POINT origin = {10, 20};
  SvgGenerator* generator = SVG_Create(&page);
  int32_t failed = generator == NULL || SVG_GetVersion() != 100;
  failed |= SVG_DrawText(generator, text, 4, &origin, NULL, 100);
  failed |= SVG_Close(generator, NULL, 0) == 0;
  return failed | SVG_Delete(generator);
}
