#include "document_check.h"

#include <expat.h>

#include <memory>
#include <set>
#include <string_view>

namespace qz::test {
namespace {

// Ids and classes are told apart by their names: "QZ_fnt3", "QZ_I0".
struct Names {
  std::set<std::string> defined;
  std::set<std::string> referred;
  std::string style;
  std::string fault;

  void define(const std::string& name) {
    if (name.starts_with("QZ_") && !defined.insert(name).second) fault = "twice: " + name;
  }
  void refer(std::string_view name) {
    if (name.starts_with("QZ_")) referred.emplace(name);
  }
  void readAttribute(std::string_view name, std::string_view value) {
    name.remove_prefix(name.find('|') + 1);  // the namespace
    if (name == "id") define(std::string(value));
    if (name == "class") refer(value);
    if (name == "href" && value.starts_with("#")) refer(value.substr(1));
    if (value.starts_with("url(#")) refer(value.substr(5, value.size() - 6));
  }
};

void XMLCALL startElement(void* user, const XML_Char*, const XML_Char** attributes) {
  for (; *attributes != nullptr; attributes += 2)
    static_cast<Names*>(user)->readAttribute(attributes[0], attributes[1]);
}

// Rules are found in all character data: text that looks like one is not drawn in these tests.
void XMLCALL characters(void* user, const XML_Char* text, int length) {
  static_cast<Names*>(user)->style.append(text, static_cast<size_t>(length));
}

}  // namespace

std::string documentFault(const Document& document, bool danglingImages) {
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
      XML_ParserCreateNS("UTF-16LE", '|'), XML_ParserFree);
  Names names;
  XML_SetUserData(parser.get(), &names);
  XML_SetElementHandler(parser.get(), startElement, nullptr);
  XML_SetCharacterDataHandler(parser.get(), characters);
  if (XML_Parse(parser.get(), reinterpret_cast<const char*>(document.data()),
                static_cast<int>(2 * document.size()), 1) != XML_STATUS_OK)
    return XML_ErrorString(XML_GetErrorCode(parser.get()));
  for (const std::string& name : names.referred) {
    const bool isClass = name.starts_with("QZ_fnt");
    if (isClass ? names.style.find("." + name + "{") == std::string::npos
                : !names.defined.contains(name) && !(danglingImages && name.starts_with("QZ_I")))
      return "refers to nothing: " + name;
  }
  return names.fault;
}

std::string readable(const Document& document) {
  std::string text;
  for (const SVG_Char unit : document) text.push_back(unit < 0x7F ? static_cast<char>(unit) : '?');
  return text;
}

}  // namespace qz::test
