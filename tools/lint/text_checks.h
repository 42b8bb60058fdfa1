// Checks of text that recordings and documents share.
#pragma once

#include <string>
#include <string_view>

namespace qz::tools {

// Whether XML has a place for a code point that is no surrogate.
bool isXmlCharacter(char32_t codePoint);

// What makes a name, in UTF-8, no font-family of CSS; nothing when it is one.
std::string fontFamilyFault(std::string_view family);

// Whether an address, in UTF-8, is a script or data.
bool isScriptAddress(std::string_view address);

std::string codePointName(char32_t codePoint);

}  // namespace qz::tools
