#include "xml.h"

#include <map>

#if defined(QZSVGGEN_HAS_EXPAT)
#include <expat.h>

#include <memory>

#if XML_MAJOR_VERSION == 2 && XML_MINOR_VERSION < 9  // which deprecates the older calls
#define XML_GetCurrentByteIndex64 XML_GetCurrentByteIndex
#define XML_GetCurrentByteCount64 XML_GetCurrentByteCount
#endif
#endif

namespace qz::tools {

const std::string* XmlElement::find(std::string_view name) const {
  for (const auto& [key, value] : attributes)
    if (key == name) return &value;
  return nullptr;
}

std::string XmlElement::get(std::string_view name) const {
  const std::string* value = find(name);
  return value != nullptr ? *value : std::string();
}

#if defined(QZSVGGEN_HAS_EXPAT)
namespace {

struct Reader {
  XML_Parser parser;
  Xml& xml;
  const std::string& bytes;
  std::vector<int> open;
  std::vector<std::map<std::string, int>> counts{1};

  std::size_t offset() const { return static_cast<std::size_t>(XML_GetCurrentByteIndex64(parser)); }

  void start(const char* tag, const char** attributes) {
    XmlElement element;
    element.tag = tag;
    element.start = offset();
    element.parent = open.empty() ? -1 : open.back();
    const int count = ++counts.back()[tag];
    if (open.empty()) {
      element.path = "/" + element.tag;
    } else {
      XmlElement& parent = xml.elements[static_cast<std::size_t>(open.back())];
      parent.hasChildren = true;
      element.path = parent.path + "/" + element.tag + "[" + std::to_string(count) + "]";
    }
    for (; *attributes != nullptr; attributes += 2)
      element.attributes.emplace_back(attributes[0], attributes[1]);
    open.push_back(static_cast<int>(xml.elements.size()));
    counts.emplace_back();
    xml.elements.push_back(std::move(element));
  }

  void end() {
    xml.elements[static_cast<std::size_t>(open.back())].end =
        offset() + static_cast<std::size_t>(XML_GetCurrentByteCount64(parser));
    open.pop_back();
    counts.pop_back();
  }

  // Line ends as they stood: XML reads each as one line feed.
  void text(const char* characters, int length) {
    if (open.empty()) return;
    const bool isLineEnd =
        length == 1 && *characters == '\n' && offset() < bytes.size() && bytes[offset()] == '\r';
    std::string& all = xml.elements[static_cast<std::size_t>(open.back())].text;
    if (isLineEnd)
      all += bytes.compare(offset(), 2, "\r\n") == 0 ? "\r\n" : "\r";
    else
      all.append(characters, static_cast<std::size_t>(length));
  }
};

}  // namespace

bool canReadXml() { return true; }

Xml readXml(const std::string& bytes) {
  Xml xml;
  const std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> parser(
      XML_ParserCreate(nullptr), XML_ParserFree);
  Reader reader{parser.get(), xml, bytes, {}};
  XML_SetUserData(parser.get(), &reader);
  XML_SetElementHandler(
      parser.get(),
      [](void* self, const char* tag, const char** attributes) {
        static_cast<Reader*>(self)->start(tag, attributes);
      },
      [](void* self, const char*) { static_cast<Reader*>(self)->end(); });
  XML_SetCharacterDataHandler(parser.get(), [](void* self, const char* characters, int length) {
    static_cast<Reader*>(self)->text(characters, length);
  });
  if (XML_Parse(parser.get(), bytes.data(), static_cast<int>(bytes.size()), 1) ==
      XML_STATUS_ERROR) {
    xml.fault = XML_ErrorString(XML_GetErrorCode(parser.get()));
    xml.faultOffset = reader.offset();
  }
  return xml;
}

#else

bool canReadXml() { return false; }
Xml readXml(const std::string&) { return {}; }

#endif

}  // namespace qz::tools
