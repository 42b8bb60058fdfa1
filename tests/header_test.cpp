// The header as a C++17 host sees it, alone and twice.
#include <qzsvggen/qzsvggen.h>

static_assert(sizeof(SVG_Char) == 2, "text has 16-bit units");
static_assert(noexcept(SVG_Delete(nullptr)), "no exception crosses the interface");
