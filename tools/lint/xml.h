// XML read into a list of elements, through expat. Builds without expat read none.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace qz::tools {

struct XmlElement {
  std::string tag;
  std::vector<std::pair<std::string, std::string>> attributes;
  std::string text;                // of its own, white space as it stood
  std::string path;                // "/svg/g[2]/text[5]"
  std::size_t start = 0, end = 0;  // bytes of the text that was read
  int parent = -1;
  bool hasChildren = false;

  // The value of an attribute, or nothing.
  const std::string* find(std::string_view name) const;
  std::string get(std::string_view name) const;
};

struct Xml {
  std::vector<XmlElement> elements;
  std::string fault;  // why it is not well-formed
  std::size_t faultOffset = 0;
};

// Whether this build reads XML.
bool canReadXml();

// Reads a document; with a fault, what stands before it.
Xml readXml(const std::string& bytes);

}  // namespace qz::tools
