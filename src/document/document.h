// The finished document.
#pragma once

#include <cstdint>

#include "document/page.h"
#include "invert/inversion.h"
#include "markup/markup_text.h"

namespace qz {

// Joins the page's texts to one document, front to back, and takes them off the page. Fails, with
// an exception, only before anything was taken: then the page is unchanged.
MarkupText assembleDocument(Page& page, const InversionTrace& inversion, int32_t extraLength);

// The size that a document of so many code units needs, or 0 if no signed 32-bit number tells it.
int32_t documentSize(uint64_t length, int32_t extraLength);

}  // namespace qz
