// What must hold for every document of well-formed text and pictures.
#pragma once

#include <qzsvggen/qzsvggen.h>

#include <string>

namespace qz::test {

using Document = std::basic_string<SVG_Char>;

// Returns what is wrong with a document, or nothing. It must be well-formed, bind its prefixes,
// have no id of its own twice, and every reference to such an id or font class must resolve.
// `danglingImages` allows placements that refer to no picture, as those of unknown formats do.
std::string documentFault(const Document& document, bool danglingImages = false);

// The document in ASCII, for messages.
std::string readable(const Document& document);

}  // namespace qz::test
