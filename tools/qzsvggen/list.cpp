// qzsvggen list: one call a line with the state in force and the element that it made; of a
// document one element a line. Two listings and any diff tell two pages apart.
#include <algorithm>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "commands.h"
#include "document_lint.h"
#include "page_state.h"

namespace qz::tools {
namespace {

constexpr std::size_t kLongest = 160;  // characters of a call or text that are shown

// On one line, and not too long.
std::string shortened(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](unsigned char c) { return c < ' '; }, ' ');
  if (text.size() <= kLongest) return text;
  std::size_t end = kLongest;
  while ((text[end] & 0xC0) == 0x80) --end;
  return text.substr(0, end) + "...";
}

std::string colour(const Colour& value) {
  if (value.alpha == 0) return "none";
  char text[16];
  std::snprintf(text, sizeof text, "#%02x%02x%02x", value.red, value.green, value.blue);
  return text + (value.alpha < 255 ? "/" + std::to_string(value.alpha) : std::string());
}

std::string stateOf(const PageState& state) {
  if (state.isClosed()) return "closed";
  const Paint& paint = state.paint();
  std::string text = "fill " + colour(paint.fill);
  if (paint.strokes())
    text += ", stroke " + colour(paint.stroke) + " " + std::to_string(paint.width);
  if (paint.inverted) text += ", inverted";
  if (const Font* font = state.font())
    text += ", font " + std::string(font->bold ? "bold " : "") + (font->italic ? "italic " : "") +
            std::to_string(font->size) + " " + toUtf8(font->family);
  if (state.region() != kNone) text += ", region " + std::to_string(state.region());
  if (const Group* group = state.group()) text += ", group of line " + std::to_string(group->line);
  if (const auto* block = state.block()) text += ", block of line " + std::to_string(block->line);
  return text;
}

using ElementsOfLines = std::map<int, std::vector<std::string>>;

ElementsOfLines elementsOfLines(const Recording& recording) {
  ElementsOfLines lines;
  for (const PlacedElement& each : elementsOf(recording)) lines[each.line].push_back(each.path);
  return lines;
}

// What a call made in the content, or else in the definitions.
std::string madeBy(const ElementsOfLines& elements, int line) {
  const auto found = elements.find(line);
  return found == elements.end() ? std::string() : found->second.back();
}

void listCalls(const Recording& recording, std::ostream& out) {
  const ElementsOfLines elements = elementsOfLines(recording);
  PageState state(*recording.page(), recording.pageLine());
  const auto listLine = [&](int line, JsonText& json, const std::string& element) {
    std::string text = json.take();
    text.pop_back();  // the line feed
    out << line << '\t' << shortened(text) << '\t' << (element.empty() ? "-" : element) << '\t'
        << stateOf(state) << '\n';
  };
  JsonText create;
  create.begin("SVG_Create");
  create.rectangle(*recording.page());
  create.end();
  listLine(recording.pageLine(), create, "/svg");
  for (const Call& call : recording.calls()) {
    state.setLine(call.line);
    JsonText json;
    call.to(WriteJson{json});
    call.to(state);
    listLine(call.line, json, madeBy(elements, call.line));
  }
}

void listMap(const Recording& recording, std::ostream& out) {
  nlohmann::json map = nlohmann::json::object();
  for (const auto& [line, paths] : elementsOfLines(recording)) map[std::to_string(line)] = paths;
  out << map.dump(1) << '\n';
}

Xml readDocument(const fs::path& file) {
  if (!canReadXml())
    throw Failure(file.string() + ": this build lists recordings alone, it was made without expat");
  const DecodedDocument document = decodeDocument(readFile(file));
  Xml xml = readXml(document.text);
  if (!xml.fault.empty())
    throw Failure(file.string() + ":" + std::to_string(document.fileOffset(xml.faultOffset)) +
                  ": " + xml.fault + "; `qzsvggen lint` tells more");
  return xml;
}

void listElements(const Xml& xml, std::ostream& out) {
  for (const XmlElement& element : xml.elements) {
    std::string text = element.tag;
    for (const auto& [name, value] : element.attributes)
      text += " " + name + "=\"" + shortened(value) + "\"";
    if (!element.text.empty()) text += " " + shortened(element.text);
    out << element.path << '\t' << text << '\n';
  }
}

// How many elements of each kind, which part of the bytes they are, and how often what is defined
// once is used.
void listStatistics(const Xml& xml, std::ostream& out) {
  struct Kind {
    std::size_t count = 0, bytes = 0;
  };
  std::map<std::string, Kind> kinds, parts;
  std::map<std::string, std::size_t> uses;
  const std::size_t total = xml.elements.front().end;
  for (const XmlElement& element : xml.elements) {
    Kind& kind = kinds[element.tag];
    ++kind.count;
    kind.bytes += element.end - element.start;
    const bool isPart = element.path.find('/', 5) == std::string::npos && element.parent == 0;
    const bool isDefinition =
        element.parent > 0 && xml.elements[static_cast<std::size_t>(element.parent)].tag == "defs";
    if (isDefinition || (isPart && element.tag != "defs")) {
      Kind& part = parts[isDefinition ? "definitions: " + element.tag : "content"];
      ++part.count;
      part.bytes += element.end - element.start;
    }
    for (const char* name : {"xlink:href", "clip-path", "class", "filter"}) {
      std::string value = element.get(name);
      value = value.substr(0, value.find(')'));
      if (const std::size_t id = value.find("QZ_"); id != std::string::npos)
        ++uses[value.substr(id)];
    }
  }
  out << "elements\n";
  for (const auto& [tag, kind] : kinds) out << "  " << kind.count << '\t' << tag << '\n';
  out << "bytes, of " << total << '\n';
  for (const auto& [name, part] : parts)
    out << "  " << part.bytes << '\t' << name << " (" << part.count << ")\n";
  out << "shared, with the times that it is used\n";
  for (const auto& [id, count] : uses)
    if (count > 1) out << "  " << count << '\t' << id << '\n';
}

Xml readOwnDocument(const fs::path& file, const Recording& recording) {
  int replaced = 0;
  const std::string text = encodeUtf8(drawDocument(file, recording), replaced);
  Xml xml = readXml(decodeDocument(text).text);
  if (!xml.fault.empty() || xml.elements.empty())
    throw Failure(file.string() + ": its document cannot be read; `qzsvggen lint` tells more");
  return xml;
}

}  // namespace

int ListCommand::run() const {
  std::ostringstream out;
  if (file.extension() == ".jsonl") {
    const Recording recording = readRecording(file);
    if (statistics)
      listStatistics(readOwnDocument(file, recording), out);
    else
      (map ? listMap : listCalls)(recording, out);
  } else {
    if (map) throw Failure(file.string() + ": --map needs a recording");
    const Xml xml = readDocument(file);
    (statistics ? listStatistics : listElements)(xml, out);
  }
  writeOutput(out.str(), std::nullopt);
  return 0;
}

}  // namespace qz::tools
