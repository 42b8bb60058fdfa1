// Host text: UTF-16 code units, whatever the width of the platform's own wide character.
#pragma once

#include <string>
#include <string_view>

#include "base/portability.h"

namespace qz {

using CodeUnit = SVG_Char;
using Utf16View = std::basic_string_view<CodeUnit>;
using Utf16String = std::basic_string<CodeUnit>;
static_assert(sizeof(CodeUnit) == 2);

}  // namespace qz
