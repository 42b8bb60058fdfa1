/* The header as a C11 host sees it, alone and twice; the other half of it is header_test.cpp. */
#include <qzsvggen/qzsvggen.h>

_Static_assert(sizeof(SVG_Char) == 2, "text has 16-bit units");
#if !defined(_WIN32)
_Static_assert(sizeof(POINT) == 8 && sizeof(RECT) == 16, "coordinates have 32 bits");
#endif

int main(void) { return SVG_GetVersion() == 100 ? 0 : 1; }
