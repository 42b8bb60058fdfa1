#include <algorithm>
#include <cstdlib>

#include "recording_lint.h"
#include "xml.h"

namespace qz::tools {
namespace {

constexpr uint32_t kReservedKey = 0xFFFFFFFF;
constexpr std::string_view kPng = "\x89PNG\r\n\x1A\n", kJpeg = "\xFF\xD8";

uint8_t byteAt(const std::string& bytes, std::size_t index) {
  return index < bytes.size() ? static_cast<uint8_t>(bytes[index]) : 0;
}

int64_t bigEndian(const std::string& bytes, std::size_t at, int count) {
  int64_t value = 0;
  for (int i = 0; i < count; ++i) value = value << 8 | byteAt(bytes, at + static_cast<size_t>(i));
  return value;
}

// Width and height, or zeros.
std::pair<int64_t, int64_t> sizeOf(const std::string& bytes, bool isPng) {
  if (isPng) return {bigEndian(bytes, 16, 4), bigEndian(bytes, 20, 4)};
  for (std::size_t at = 2; at + 9 < bytes.size() && byteAt(bytes, at) == 0xFF;) {
    const uint8_t marker = byteAt(bytes, at + 1);
    const bool isFrame =
        marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
    if (isFrame) return {bigEndian(bytes, at + 7, 2), bigEndian(bytes, at + 5, 2)};
    at += 2 + static_cast<std::size_t>(bigEndian(bytes, at + 2, 2));
  }
  return {0, 0};
}

// What sizes a picture by other means than a viewBox and pixels.
std::string sizeFault(const XmlElement& root) {
  if (root.find("viewBox") != nullptr) return {};
  for (const char* name : {"width", "height"}) {
    const std::string value = root.get(name);
    if (value.empty()) return std::string("no viewBox and no ") + name;
    for (const char* unit : {"pt", "pc", "em", "ex", "%"})
      if (value.ends_with(unit)) return std::string("no viewBox and a ") + name + " of " + value;
  }
  return {};
}

// An attribute of the picture's root that its copy in the document has not, or has otherwise.
std::string lostAttribute(const XmlElement& root, const XmlElement& copy) {
  for (const auto& [name, value] : root.attributes) {
    const bool isTaken = name == "id" || name == "viewBox" || name == "width" || name == "height";
    if (!isTaken && copy.get(name) != value) return name;
  }
  return {};
}

}  // namespace

void checkRaster(const std::string& bytes, bool isPng, int64_t width, int64_t height,
                 const std::function<void(const Rule&, std::string)>& tell) {
  if (!bytes.starts_with(isPng ? kPng : kJpeg)) return tell(rule("picture-mismatch"), {});
  if (isPng ? bytes.find("IEND") == std::string::npos
            : bytes.rfind("\xFF\xD9") == std::string::npos ||
                  bytes.rfind("\xFF\xD9") + 64 < bytes.size())
    tell(rule("picture-truncated"), {});
  const auto [own, ownHeight] = sizeOf(bytes, isPng);
  if (own <= 0 || ownHeight <= 0 || width <= 0 || height <= 0) return;
  // Less than 2 % of a side stays empty when it is fitted in.
  const double ratio = static_cast<double>(width) * static_cast<double>(ownHeight) /
                       (static_cast<double>(height) * static_cast<double>(own));
  if (std::min(ratio, 1 / ratio) < 0.98)
    tell(rule("picture-proportions"), "bounds of " + std::to_string(width) + " by " +
                                          std::to_string(height) + " for a picture of " +
                                          std::to_string(own) + " by " + std::to_string(ownHeight));
}

const Rule* pictureElementRule(const std::string& tag,
                               const std::vector<std::pair<std::string, std::string>>& attributes) {
  if (tag == "style") return &rule("svg-style");
  if (tag == "script" || tag == "foreignObject") return &rule("svg-script");
  for (const auto& [name, value] : attributes) {
    if (name.starts_with("on")) return &rule("svg-script");
    if (name != "href" && name != "xlink:href") continue;
    if (value.starts_with("javascript:")) return &rule("svg-script");
    if (!value.starts_with("#") && !value.starts_with("data:")) return &rule("svg-external");
  }
  return nullptr;
}

void RecordingLint::check(Function<SVG_DrawImage>, uint16_t format, const RECT* bounds,
                          const uint8_t* data, int32_t length, uint16_t) {
  if (state_.block() != nullptr) report(rule("block-other"), "a picture inside a block");
  if (length < 1) return;
  const int64_t width = int64_t{bounds->right} - bounds->left;
  const int64_t height = int64_t{bounds->bottom} - bounds->top;
  if (width <= 0 || height <= 0)
    report(rule("picture-bounds"));
  else
    checkPlace({bounds->left, bounds->top, bounds->right, bounds->bottom});
  if (format == SVG_IMAGE_SVG) return checkSvgPicture(*bounds, data, length);

  const std::string bytes(data, data + length);
  if (format != SVG_IMAGE_PNG && format != SVG_IMAGE_JPEG)
    report(rule("picture-format"), "a picture of format " + std::to_string(format));
  else
    checkRaster(bytes, format == SVG_IMAGE_PNG, width, height,
                [this](const Rule& which, std::string cause) { report(which, std::move(cause)); });
  const uint32_t key = rasterKey(data, length);
  const auto [known, isNew] = rasterPictures_.emplace(key, std::pair(state_.line(), bytes));
  if (key == kReservedKey)
    report(rule("picture-collision"), "a picture whose 32-bit key is the one that draws nothing");
  else if (known->second.second != bytes)
    report(rule("picture-collision"),
           "a picture with the 32-bit key of that of line " + std::to_string(known->second.first));
}

void RecordingLint::checkSvgPicture(const RECT& bounds, const uint8_t* data, int32_t length) {
  const SvgPicture& picture = state_.svgPicture(bounds, data, length);
  if (!picture.isDrawn) return report(rule("svg-not-found"));
  // What is wrong with a picture is told where it is drawn first.
  if (!isFirst("SVG " + toUtf8(picture.content)) || !canReadXml()) return;
  checkCharacters(picture.content);
  const Xml original = readXml(std::string(data, data + length));
  if (original.fault.empty() && !original.elements.empty()) {
    const std::string fault = sizeFault(original.elements.front());
    if (!fault.empty()) report(rule("svg-size"), fault);
  }
  const std::string content = toUtf8(picture.content);
  const Xml copy =
      readXml("<svg xmlns:xlink=\"http://www.w3.org/1999/xlink\">" + content + "</svg>");
  if (!copy.fault.empty()) {
    const bool wasWhole = original.fault.empty();
    return report(rule("svg-broken"),
                  wasWhole ? "an SVG picture whose root tag gets spoilt (" + copy.fault + ")"
                           : "an SVG picture that is not well-formed (" + copy.fault + ")");
  }
  if (original.fault.empty() && !original.elements.empty() && copy.elements.size() > 1) {
    const std::string lost = lostAttribute(original.elements.front(), copy.elements[1]);
    if (!lost.empty())
      report(rule("svg-root-scan"), "an SVG picture whose root loses \"" + lost + "\"");
  }
  std::set<const Rule*> found;
  for (const XmlElement& element : copy.elements) {
    const Rule* which = pictureElementRule(element.tag, element.attributes);
    if (which != nullptr && found.insert(which).second) report(*which);
    const std::string id = element.get("id");
    if (id.empty()) continue;
    const auto [owner, isNew] = svgIds_.try_emplace(id, &picture);
    const bool clashes = id.starts_with("QZ_") || owner->second != &picture;
    if (clashes && found.insert(&rule("svg-ids")).second)
      report(rule("svg-ids"), "the id \"" + id + "\" is that of another picture, too");
  }
}

}  // namespace qz::tools
