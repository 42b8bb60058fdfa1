#include "document_lint.h"

#include <utf8.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <map>
#include <regex>
#include <set>

#include "recording_lint.h"
#include "text_checks.h"

namespace qz::tools {
namespace {

using Numbers = std::vector<double>;

// The numbers of a list in which a minus sign may be the separator.
Numbers numbersOf(const std::string& text) {
  Numbers numbers;
  for (const char* at = text.c_str(); *at != '\0';) {
    char* end = nullptr;
    const double value = std::strtod(at, &end);
    if (end != at) numbers.push_back(value);
    at = end != at ? end : at + 1;
  }
  return numbers;
}

double numberOf(const std::string& text) { return std::strtod(text.c_str(), nullptr); }

bool fills(const XmlElement& element) { return element.get("fill") != "none"; }
bool strokes(const XmlElement& element) { return element.find("stroke") != nullptr; }
bool isInverted(const XmlElement& element) { return element.get("filter") == "url(#QZ_V)"; }

std::string decodeBase64(std::string_view text) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  uint32_t bits = 0;
  int count = 0;
  for (const char digit : text) {
    const std::size_t value = kDigits.find(digit);
    if (value == std::string_view::npos) break;
    bits = bits << 6 | static_cast<uint32_t>(value);
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count & 0xFF);
  }
  return bytes;
}

class DocumentLint {
 public:
  DocumentLint(const DecodedDocument& document, Findings& findings)
      : document_(document), findings_(findings), xml_(readXml(document.text)) {}

  void run() {
    for (const auto& each : document_.replaced) {
      const XmlElement* element = elementAt(each.offset);
      findings_.add(*each.rule, document_.fileOffset(each.offset), each.cause,
                    element != nullptr ? element->path : "/");
    }
    if (!xml_.fault.empty()) tellFault();
    for (const XmlElement& element : xml_.elements)
      if (!element.get("id").empty()) ids_.insert(element.get("id"));
    for (const XmlElement& element : xml_.elements) check(element);
  }

 private:
  void tell(const XmlElement& element, const Rule& rule, std::string cause = {}) {
    findings_.add(rule, document_.fileOffset(element.start), std::move(cause), element.path);
  }

  const XmlElement* parentOf(const XmlElement& element) const {
    return element.parent < 0 ? nullptr : &xml_.elements[static_cast<std::size_t>(element.parent)];
  }

  // The innermost element that an offset is in.
  const XmlElement* elementAt(std::size_t offset) const {
    const XmlElement* found = nullptr;
    for (const XmlElement& each : xml_.elements)
      if (each.start <= offset && (each.end == 0 || offset < each.end)) found = &each;
    return found;
  }

  // Whether an element stands in the copy of an SVG picture.
  bool isInPicture(const XmlElement& element) const {
    for (const XmlElement* each = parentOf(element); each != nullptr; each = parentOf(*each))
      if (each->tag == "g" && each->get("id").starts_with("QZ_G")) return true;
    return false;
  }

  void tellFault() {
    const XmlElement* element = elementAt(xml_.faultOffset);
    const bool isPicture =
        element != nullptr && (isInPicture(*element) || element->get("id").starts_with("QZ_G"));
    findings_.add(isPicture ? rule("svg-broken") : rule("not-well-formed"),
                  document_.fileOffset(xml_.faultOffset), xml_.fault,
                  element != nullptr ? element->path : "/");
  }

  void check(const XmlElement& element) {
    if (isInPicture(element)) {
      if (const Rule* which = pictureElementRule(element.tag, element.attributes))
        tell(element, *which);
      return;
    }
    const bool isOutline = element.get("id").starts_with("QZ_");
    const std::string& tag = element.tag;
    if (tag == "svg" && element.parent < 0) checkRoot(element);
    if (tag == "text") checkText(element);
    if (tag == "style") checkStyle(element);
    if (tag == "path") checkPath(element, isOutline);
    if (tag == "line" || tag == "polyline" || tag == "polygon") checkPoints(element, isOutline);
    if (tag == "use") checkUse(element);
    if (tag == "image") checkImage(element);
    if (tag == "a") checkLink(element);
    if (tag == "filter" && element.get("filterUnits") == "userSpaceOnUse" && isFlat(element))
      tell(element, rule("invert-rectangle"));
    if (tag == "velumark:target" && !targets_.insert(element.get("name")).second)
      tell(element, rule("target-repeated"));
    if (const std::string* bounds = element.find("velumark:bounds")) checkBounds(element, *bounds);
  }

  static bool isFlat(const XmlElement& element) {
    return numberOf(element.get("width")) <= 0 || numberOf(element.get("height")) <= 0;
  }

  void checkRoot(const XmlElement& element) {
    if (isFlat(element)) tell(element, rule("page-size"));
  }

  void checkFar(const XmlElement& element, const Numbers& numbers) {
    if (std::any_of(numbers.begin(), numbers.end(),
                    [](double number) { return number > 8388608 || number < -8388608; }))
      tell(element, rule("far"));
  }

  void checkText(const XmlElement& element) {
    const std::string x = element.get("x");
    const Numbers positions = numbersOf(x);
    checkFar(element, positions);
    if (x.find('-', 1) != std::string::npos) tell(element, rule("negative-x"));
    if (element.find("class") == nullptr) tell(element, rule("no-font"));
    const bool isPlaced = positions.size() > 1;
    if (isPlaced && element.text.find("\r\n") != std::string::npos)
      tell(element, rule("crlf-in-run"));
    else if (element.text.find_first_of("\r\n") != std::string::npos)
      tell(element, rule("line-break"));
    // Four bytes of UTF-8 are a pair of UTF-16.
    const auto pair = std::find_if(element.text.begin(), element.text.end(),
                                   [](char c) { return (c & 0xF8) == 0xF0; });
    if (isPlaced && element.text.end() - pair > 4) tell(element, rule("surrogate-in-run"));
  }

  void checkStyle(const XmlElement& element) {
    static const std::regex kRule(R"(\.QZ_fnt\d+\{font:(?:bold )?(?:italic )?(-?\d+)px )");
    const std::string& text = element.text;
    for (std::sregex_iterator match(text.begin(), text.end(), kRule), none; match != none;
         ++match) {
      const auto start = static_cast<std::size_t>(match->position() + match->length());
      const std::size_t next = std::min(text.find(";}.QZ_fnt", start), text.rfind(";}"));
      const std::string family = text.substr(start, next - start);
      if (numberOf((*match)[1]) <= 0)
        tell(element, rule("font-size"), "a font size of " + (*match)[1].str());
      const std::string fault = fontFamilyFault(family);
      if (!fault.empty()) tell(element, rule("font-family"), "no CSS font family, " + fault);
    }
  }

  void checkPath(const XmlElement& element, bool isOutline) {
    const std::string d = element.get("d");
    if (d.find_first_of("lchv") == std::string::npos) return tell(element, rule("path-empty"));
    if (!d.starts_with('M')) tell(element, rule("path-start"));
    if (d.find(" 0 0 1 ") != std::string::npos && d.find("a0 0 0 0 1 0 0") == std::string::npos)
      tell(element, rule("rounded-corners"));
    const std::size_t h = d.find('h');
    if (h != std::string::npos && numberOf(d.substr(h + 1)) > 2147483647)
      tell(element, rule("reversed-rectangle"));
    else
      checkFar(element, numbersOf(d));
    for (std::size_t c = d.find('c'); c != std::string::npos; c = d.find('c', c + 1)) {
      const std::string run = d.substr(c + 1, d.find_first_of("lmch", c + 1) - c - 1);
      if (numbersOf(run).size() % 6 == 0) continue;
      tell(element, rule("path-curves"));
      break;
    }
    const XmlElement* parent = parentOf(element);
    const bool isDrawn =
        !isOutline && parent != nullptr && parent->tag != "clipPath" && parent->tag != "mask";
    if (isDrawn && !fills(element) && !strokes(element)) tell(element, rule("invisible-shape"));
  }

  void checkPoints(const XmlElement& element, bool isOutline) {
    if (isOutline) return tell(element, rule("block-outline"));
    Numbers numbers = numbersOf(element.get("points"));
    if (element.tag == "line")
      for (const char* name : {"x1", "y1", "x2", "y2"})
        numbers.push_back(numberOf(element.get(name)));
    checkFar(element, numbers);
    if (numbers.size() < 4) return tell(element, rule("few-points"));
    bool isLevel = true, isUpright = true;
    for (std::size_t i = 2; i + 1 < numbers.size(); i += 2) {
      isUpright = isUpright && numbers[i] == numbers[0];
      isLevel = isLevel && numbers[i + 1] == numbers[1];
    }
    const bool isLine = element.tag == "line" || isLevel || isUpright;
    if (!strokes(element) && (isLine || !fills(element)))
      tell(element, isLine ? rule("line-without-stroke") : rule("invisible-shape"));
    const bool isClosed = numbers[0] == numbers[numbers.size() - 2] && numbers[1] == numbers.back();
    if (element.tag == "polyline" && !isLine && numbers.size() > 4 && fills(element) && !isClosed)
      tell(element, rule("filled-line"));
    if (element.tag == "line" && isInverted(element) && (isLevel || isUpright))
      tell(element, rule("invert-flat-line"));
  }

  void checkUse(const XmlElement& element) {
    const std::string target = element.get("xlink:href");
    if (element.get("href") == "#content" && !ids_.contains("content"))
      tell(element, rule("invert-path"));
    if (!target.starts_with("#QZ_I")) return;
    if (!ids_.contains(target.substr(1))) return tell(element, rule("picture-format"));
    if (isFlat(element)) return tell(element, rule("picture-bounds"));
  }

  void checkImage(const XmlElement& element) {
    const std::string uri = element.get("xlink:href");
    const bool isPng = uri.starts_with("data:image/png;base64,");
    if (!isPng && !uri.starts_with("data:image/jpeg;base64,")) return;
    checkRaster(
        decodeBase64(std::string_view(uri).substr(uri.find(',') + 1)), isPng,
        static_cast<int64_t>(numberOf(element.get("width"))),
        static_cast<int64_t>(numberOf(element.get("height"))),
        [&](const Rule& which, std::string cause) { tell(element, which, std::move(cause)); });
  }

  void checkLink(const XmlElement& element) {
    const std::string* purpose = element.find("velumark:purpose");
    if (purpose == nullptr) return;
    const std::string type = element.get("velumark:linkType");
    if (!element.hasChildren) tell(element, rule("link-empty"));
    if (type.empty()) tell(element, rule("link-type"));
    if (element.get("velumark:targetName").empty()) tell(element, rule("link-no-target"));
    if (type == "FT_EXTERNALLINK" && isScriptAddress(element.get("xlink:href")))
      tell(element, rule("link-script"));
  }

  void checkBounds(const XmlElement& element, const std::string& text) {
    const Numbers bounds = numbersOf(text);
    const XmlElement& root = xml_.elements.front();
    if (bounds.size() == 4 && bounds[2] > bounds[0] && bounds[3] > bounds[1] && bounds[2] >= 0 &&
        bounds[3] >= 0 && bounds[0] <= numberOf(root.get("width")) &&
        bounds[1] <= numberOf(root.get("height")))
      return;
    tell(element, rule("field-bounds"));
  }

  const DecodedDocument& document_;
  Findings& findings_;
  Xml xml_;
  std::set<std::string> ids_, targets_;
};

// Appends a code point, or what stands in for it and the reason.
void append(DecodedDocument& document, char32_t codePoint) {
  const bool isSurrogate = codePoint >> 11 == 0x1B;
  if (isSurrogate || !isXmlCharacter(codePoint)) {
    document.replaced.push_back({document.text.size(),
                                 isSurrogate ? &rule("lone-surrogate") : &rule("xml-character"),
                                 codePointName(codePoint)});
    codePoint = isSurrogate ? 0xFFFD : codePoint < 0x80 ? ' ' : 0xFFFD;
  }
  utf8::append(codePoint, std::back_inserter(document.text));
}

void decodeUtf16(const std::string& bytes, bool isBigEndian, DecodedDocument& document) {
  document.isUtf16 = true;
  const auto unitAt = [&](std::size_t i) {
    const auto first = static_cast<uint8_t>(bytes[i]), second = static_cast<uint8_t>(bytes[i + 1]);
    return static_cast<char16_t>(isBigEndian ? first << 8 | second : second << 8 | first);
  };
  for (std::size_t i = document.skipped; i + 1 < bytes.size(); i += 2) {
    char32_t codePoint = unitAt(i);
    if ((codePoint & 0xFC00) == 0xD800 && i + 3 < bytes.size() &&
        (unitAt(i + 2) & 0xFC00) == 0xDC00) {
      codePoint = 0x10000 + ((codePoint & 0x3FF) << 10) + (unitAt(i + 2) & 0x3FFu);
      i += 2;
    }
    append(document, codePoint);
  }
}

// What is no UTF-8 is left for the parser to refuse.
void decodeUtf8(const std::string& bytes, DecodedDocument& document) {
  for (std::size_t i = document.skipped; i < bytes.size();) {
    const auto first = static_cast<uint8_t>(bytes[i]);
    const bool isPlain = first >= 0x20 && first < 0x80;
    if (isPlain || bytes.compare(i, 2, "\xEF\xBF") != 0) {
      if (first < 0x20)
        append(document, first);
      else
        document.text += bytes[i];
      ++i;
      continue;
    }
    auto at = bytes.begin() + static_cast<std::ptrdiff_t>(i);
    append(document, i + 2 < bytes.size() ? utf8::unchecked::next(at) : 0xFFFD);
    i += 3;
  }
}

}  // namespace

std::size_t DecodedDocument::fileOffset(std::size_t offset) const {
  if (!isUtf16) return skipped + offset;
  std::size_t units = 0;
  for (std::size_t i = 0; i < std::min(offset, text.size()); ++i) {
    if ((text[i] & 0xC0) != 0x80) ++units;
    if ((text[i] & 0xF8) == 0xF0) ++units;
  }
  return skipped + 2 * units;
}

DecodedDocument decodeDocument(const std::string& bytes) {
  DecodedDocument document;
  const bool isLittle = bytes.starts_with("\xFF\xFE"), isBig = bytes.starts_with("\xFE\xFF");
  if (isLittle || isBig || bytes.starts_with(std::string_view("<\0", 2)) ||
      bytes.starts_with(std::string_view("\0<", 2))) {
    document.skipped = isLittle || isBig ? 2 : 0;
    decodeUtf16(bytes, isBig || bytes.starts_with('\0'), document);
  } else {
    document.skipped = bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0;
    decodeUtf8(bytes, document);
  }
  return document;
}

void lintDocument(const std::string& bytes, Findings& findings) {
  const DecodedDocument document = decodeDocument(bytes);
  DocumentLint(document, findings).run();
}

}  // namespace qz::tools
