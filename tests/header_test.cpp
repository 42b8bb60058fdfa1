// The headers as a C++17 host sees them, see header_test.c.
#if defined(WINDOWS_FIRST)
#include <windows.h>
#endif
// The standard library's own headers stand the macros only where its maker has seen to it.
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#undef min
#undef max
#define min(a, b) ((a) < (b) ? (a) : (b))
#define max(a, b) ((a) > (b) ? (a) : (b))

#include <qzsvggen/qzsvggen.h>

#include <qzsvggen/qzsvggen.hpp>
#if defined(_WIN32)
#include <windows.h>
#endif

static_assert(sizeof(SVG_Char) == 2, "text has 16-bit units");
static_assert(sizeof(POINT) == 8 && sizeof(RECT) == 16, "coordinates have 32 bits");
static_assert(noexcept(SVG_Delete(nullptr)), "no exception crosses the interface");

#if defined(_WIN32)
int32_t setFont(SvgGenerator* generator) { return SVG_SetFont(generator, L"Arial", 5, 12, 0, 1); }
#else
int32_t setFont(SvgGenerator* generator) { return SVG_SetFont(generator, u"Arial", 5, 12, 0, 1); }
#endif
