// Links, targets, form fields and signatures of a page. Part of the engine.
#pragma once

#include "mupdf.h"
#include "scene.h"

namespace qz::pdf {

// Maps page space to units.
fz_matrix unitsMatrix(fz_context* context, pdf_page* page);

// The links of a page; those with schemes that are not passed on are counted. Throws EngineError.
std::vector<Link> readLinks(fz_context* context, pdf_document* document, pdf_page* page,
                            int& dropped);

// For each page the targets that links of the document lead to. Throws EngineError.
std::vector<std::vector<Target>> readTargets(fz_context* context, pdf_document* document);

// The field that a widget stands for; nothing if the format has no type for it. Throws EngineError.
std::optional<Field> readField(fz_context* context, pdf_annot* widget, fz_matrix toUnits);

}  // namespace qz::pdf
