#pragma once

#include <cstddef>
#include <cstdint>

#include "markup/markup_text.h"

namespace qz {

// Appends the bytes in base64, standard alphabet, padded, without line breaks.
void appendBase64(MarkupText& out, const uint8_t* bytes, size_t size);

}  // namespace qz
