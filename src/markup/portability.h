// What differs between platforms and compilers, and nothing else. Every other file is plain C++.
#pragma once

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>  // POINT, RECT and the PT_ values are the platform's own
#endif

#include <string>
#include <string_view>

// What qzsvggen.def exports is visible, by Windows' linker or by this.
#if defined(__ELF__)
#pragma GCC visibility push(default)
#endif
#include "qzsvggen/qzsvggen.h"
#if defined(__ELF__)
#pragma GCC visibility pop
#endif

// Marks the rare half of a function that is called for every element.
#if defined(__GNUC__)
#define QZ_NOINLINE __attribute__((noinline))
#else
#define QZ_NOINLINE
#endif

namespace qz {

// Host text: UTF-16 code units, whatever the width of the platform's own wide character.
using Unit = SVG_Char;
using UnitView = std::basic_string_view<Unit>;
using UnitString = std::basic_string<Unit>;
static_assert(sizeof(Unit) == 2);

}  // namespace qz
