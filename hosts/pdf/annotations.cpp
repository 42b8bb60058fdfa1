#include "annotations.h"

#include <cstring>

#include "dates.h"

namespace qz::pdf {
namespace {

using OwnedPage = Owned<fz_page, fz_drop_page>;
using OwnedLink = Owned<fz_link, fz_drop_link>;

// XML refuses most control characters, and turns line breaks in attributes into blanks: those
// become U+2028, the separator of lines.
char32_t attributeCharacter(int code) {
  if (code == '\r' || code == '\n') return 0x2028;
  if (code < 0x20 || code == 0xFFFE || code == 0xFFFF) return ' ';
  return code >= 0xD800 && code < 0xE000 ? 0xFFFD : static_cast<char32_t>(code);
}

std::u16string toText(const char* utf8) {
  std::u16string text;
  for (int code = 0; utf8 != nullptr && *utf8 != 0;) {
    utf8 += fz_chartorune(&code, utf8);
    const char32_t c = attributeCharacter(code);
    if (code == '\r' && *utf8 == '\n') ++utf8;
    if (c >= 0x10000) {
      text += static_cast<char16_t>(0xD7C0 + (c >> 10));
      text += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
    } else {
      text += static_cast<char16_t>(c);
    }
  }
  return text;
}

// Calls MuPDF for a string that it keeps.
template <class Call>
const char* borrow(fz_context* context, const Call& call) {
  const char* result = nullptr;
  attempt(context, [&] { result = call(); });
  return result;
}

// Calls MuPDF for a string that is to be freed.
template <class Call>
std::string take(fz_context* context, const Call& call) {
  char* text = nullptr;
  attempt(context, [&] { text = call(); });
  std::string result = text != nullptr ? text : "";
  fz_free(context, text);
  return result;
}

// ---- Links and targets --------------------------------------------------------------------------

struct Place {
  int page = -1;  // none
  Point position;
};

std::u16string nameOf(const Place& place) {
  const POINT at = toUnits(place.position);
  char name[48];
  std::snprintf(name, sizeof name, "p%d.%d.%d", place.page + 1, at.x, at.y);
  return toText(name);
}

Place resolve(fz_context* context, pdf_document* document, const char* address) {
  Place place;
  attempt(context, [&] {
    const fz_link_dest found = pdf_resolve_link_dest(context, document, address);
    place.page = found.loc.page;
    place.position = {std::isnan(found.x) ? 0 : found.x * unitsPerPoint,
                      std::isnan(found.y) ? 0 : found.y * unitsPerPoint};
  });
  if (place.page >= pdf_count_pages(context, document)) place.page = -1;
  return place;
}

bool startsWith(const char* address, const char* scheme) {
  return fz_strncasecmp(address, scheme, std::strlen(scheme)) == 0;
}

bool mayBePassedOn(const char* address) {
  return startsWith(address, "http:") || startsWith(address, "https:") ||
         startsWith(address, "mailto:");
}

bool hasLinks(fz_context* context, pdf_document* document, int page) {
  bool found = false;
  attempt(context, [&] {
    pdf_obj* const dictionary = pdf_lookup_page_obj(context, document, page);
    pdf_obj* const annotations = pdf_dict_get(context, dictionary, PDF_NAME(Annots));
    for (int i = 0; i < pdf_array_len(context, annotations) && !found; ++i)
      found = pdf_dict_get(context, pdf_array_get(context, annotations, i), PDF_NAME(Subtype)) ==
              PDF_NAME(Link);
  });
  return found;
}

void readTargetsOf(fz_context* context, pdf_document* document, int page,
                   std::vector<std::vector<Target>>& targets) {
  if (!hasLinks(context, document, page)) return;
  OwnedPage loaded(context);
  OwnedLink links(context);
  attempt(context, [&] { loaded.reset(fz_load_page(context, &document->super, page)); });
  attempt(context, [&] { links.reset(fz_load_links(context, loaded.get())); });
  for (const fz_link* link = links.get(); link != nullptr; link = link->next) {
    if (link->uri == nullptr || fz_is_external_link(context, link->uri) != 0) continue;
    const Place place = resolve(context, document, link->uri);
    if (place.page >= 0)
      targets[static_cast<size_t>(place.page)].push_back({place.position, nameOf(place)});
  }
}

// ---- Fields -------------------------------------------------------------------------------------

// The script that formats a field, or an empty string.
std::string formatScript(fz_context* context, pdf_obj* field) {
  return take(context, [&]() -> char* {
    pdf_obj* const actions = pdf_dict_get_inheritable(context, field, PDF_NAME(AA));
    pdf_obj* const script = pdf_dict_getl(context, actions, PDF_NAME(F), PDF_NAME(JS), nullptr);
    return script != nullptr ? pdf_load_stream_or_string_as_utf8(context, script) : nullptr;
  });
}

void readText(fz_context* context, pdf_obj* object, Field& field) {
  const char* value = borrow(context, [&] { return pdf_field_value(context, object); });
  field.data = toText(value);
  const std::optional<std::string> pattern = datePattern(formatScript(context, object));
  if (!pattern) return;
  field.type = Field::Type::kDate;
  field.days = daysOfDate(value != nullptr ? value : "", *pattern);
  field.data = toText(pattern->c_str());
}

// The value, then the choices, each with a NUL behind it.
void readChoices(fz_context* context, pdf_obj* object, Field& field) {
  field.type = Field::Type::kComboBox;
  field.data = toText(borrow(context, [&] { return pdf_field_value(context, object); })) + u'\0';
  int count = 0;
  attempt(context, [&] { count = pdf_choice_field_option_count(context, object); });
  for (int i = 0; i < count; ++i)
    field.data +=
        toText(borrow(context, [&] { return pdf_choice_field_option(context, object, 0, i); })) +
        u'\0';
}

// The name of the state that is shown, which is "Off" when the box is empty.
void readCheckBox(fz_context* context, pdf_obj* object, Field& field) {
  field.type = Field::Type::kCheckBox;
  const char* const state = borrow(
      context, [&] { return pdf_to_name(context, pdf_dict_get(context, object, PDF_NAME(AS))); });
  field.data = toText(*state != 0 ? state : "Off");
}

void readSignature(fz_context* context, pdf_obj* object, Field& field) {
  field.type = Field::Type::kSignature;
  pdf_obj* signature = nullptr;
  attempt(context, [&] { signature = pdf_dict_get_inheritable(context, object, PDF_NAME(V)); });
  for (const auto& [key, label] :
       {std::pair(PDF_NAME(Name), u"Name="), std::pair(PDF_NAME(Reason), u"Reason="),
        std::pair(PDF_NAME(M), u"M=")}) {
    const std::u16string value = toText(borrow(
        context, [&, name = key] { return pdf_dict_get_text_string(context, signature, name); }));
    if (!value.empty()) field.data += (field.data.empty() ? u"" : u"; ") + (label + value);
  }
}

}  // namespace

fz_matrix unitsMatrix(fz_context* context, pdf_page* page) {
  fz_rect bounds = fz_empty_rect;
  attempt(context, [&] { bounds = fz_bound_page(context, &page->super); });
  return fz_post_scale(fz_translate(-bounds.x0, -bounds.y0), unitsPerPoint, unitsPerPoint);
}

std::vector<Link> readLinks(fz_context* context, pdf_document* document, pdf_page* page,
                            int& dropped) {
  const fz_matrix matrix = unitsMatrix(context, page);
  OwnedLink links(context);
  attempt(context, [&] { links.reset(pdf_load_links(context, page)); });
  std::vector<Link> result;
  for (const fz_link* link = links.get(); link != nullptr; link = link->next) {
    const char* const address = link->uri != nullptr ? link->uri : "";
    const Box bounds = toBox(fz_transform_rect(link->rect, matrix));
    if (fz_is_external_link(context, address) == 0) {
      const Place place = resolve(context, document, address);
      if (place.page >= 0) result.push_back({bounds, true, nameOf(place)});
    } else if (mayBePassedOn(address)) {
      result.push_back({bounds, false, toText(address)});
    } else {
      ++dropped;
    }
  }
  return result;
}

std::vector<std::vector<Target>> readTargets(fz_context* context, pdf_document* document) {
  std::vector<std::vector<Target>> targets;
  targets.resize(static_cast<size_t>(pdf_count_pages(context, document)));
  for (int page = 0; page < static_cast<int>(targets.size()); ++page) {
    try {
      readTargetsOf(context, document, page, targets);
    } catch (const EngineError&) {  // it is reported when the page is read
    }
  }
  for (std::vector<Target>& each : targets) {
    const auto byName = [](const Target& a, const Target& b) { return a.name < b.name; };
    std::sort(each.begin(), each.end(), byName);
    each.erase(std::unique(each.begin(), each.end(),
                           [](const Target& a, const Target& b) { return a.name == b.name; }),
               each.end());
  }
  return targets;
}

std::optional<Field> readField(fz_context* context, pdf_annot* widget, fz_matrix toUnits) {
  Field field;
  pdf_obj* object = nullptr;
  int type = PDF_WIDGET_TYPE_UNKNOWN, flags = 0;
  fz_rect bounds = fz_empty_rect;
  attempt(context, [&] {
    object = pdf_annot_obj(context, widget);
    type = pdf_widget_type(context, widget);
    flags = pdf_field_flags(context, object);
    bounds = fz_transform_rect(pdf_bound_widget(context, widget), toUnits);
  });
  field.bounds = toBox(bounds);
  field.flags = static_cast<uint8_t>(flags);
  field.exFlags = static_cast<uint8_t>(flags >> 8);
  field.name = toText(take(context, [&] { return pdf_field_name(context, object); }).c_str());
  if (type == PDF_WIDGET_TYPE_TEXT)
    readText(context, object, field);
  else if (type == PDF_WIDGET_TYPE_COMBOBOX)
    readChoices(context, object, field);
  else if (type == PDF_WIDGET_TYPE_CHECKBOX)
    readCheckBox(context, object, field);
  else if (type == PDF_WIDGET_TYPE_SIGNATURE)
    readSignature(context, object, field);
  else
    return std::nullopt;
  return field;
}

}  // namespace qz::pdf
