#include <algorithm>

#include "recording_lint.h"
#include "text_checks.h"

namespace qz::tools {
namespace {

constexpr int kManyRegions = 5;  // the first, and four that repeat it
constexpr int kManyOutlines = 4;

bool overlap(const RECT& a, const RECT& b) {
  return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

RECT intersection(const RECT& a, const RECT& b) {
  return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
          std::min(a.bottom, b.bottom)};
}

std::string text(const std::vector<RECT>& rectangles) {
  std::string result;
  for (const RECT& each : rectangles)
    result += std::to_string(each.left) + ' ' + std::to_string(each.top) + ' ' +
              std::to_string(each.right) + ' ' + std::to_string(each.bottom) + ';';
  return result;
}

bool isEmpty(const RECT& value) { return value.left == value.right || value.top == value.bottom; }

}  // namespace

// ---- Regions ------------------------------------------------------------------------------------

void RecordingLint::check(Function<SVG_BeginClippingRegion>, const RECT* rectangle) {
  checkBlockState();
  if (isEmpty(*rectangle)) report(rule("clip-empty"));
}

void RecordingLint::check(Function<SVG_AddClippingRegion>, const RECT* rectangle) {
  checkBlockState();
  if (state_.region() == kNone) return report(rule("clip-missing"));
  const auto& kept = state_.regions()[static_cast<std::size_t>(state_.region())].kept;
  if (std::any_of(kept.begin(), kept.end(), [&](const RECT& k) { return overlap(k, *rectangle); }))
    report(rule("clip-overlap"));
}

void RecordingLint::check(Function<SVG_ExcludeClippingRegion>, const RECT* rectangle) {
  checkBlockState();
  if (state_.region() == kNone) return;
  const Region& region = state_.regions()[static_cast<std::size_t>(state_.region())];
  const std::optional<Region> after = cutOut(region, *rectangle);
  if (!after) return report(rule("clip-lost"));
  // The new cut against the others, itself left out once.
  bool isItself = true;
  for (const RECT& cut : after->cut) {
    if (isItself && text({cut}) == text({*rectangle})) {
      isItself = false;
      continue;
    }
    if (!overlap(cut, *rectangle)) continue;
    const RECT both = intersection(cut, *rectangle);
    if (std::any_of(region.kept.begin(), region.kept.end(),
                    [&](const RECT& kept) { return overlap(kept, both); }))
      return report(rule("clip-cut-overlap"));
  }
}

void RecordingLint::check(Function<SVG_SetCurrentClippingRegion>, uint32_t region) {
  checkBlockState();
  if (region >= state_.regions().size())
    report(rule("clip-unknown"), "region " + std::to_string(region) + " of " +
                                     std::to_string(state_.regions().size()) + " is selected");
}

void RecordingLint::finishRegions() {
  std::map<std::string, std::pair<int, int>> counts;  // how often, and where the second is
  for (const Region& region : state_.regions()) {
    if (!region.used) continue;
    auto& [count, line] = counts[text(region.kept) + "-" + text(region.cut)];
    if (++count == 2) line = region.line;
  }
  for (const auto& [content, entry] : counts)
    if (entry.first >= kManyRegions)
      reportAt(entry.second, rule("clip-repeated"),
               "the same region made " + std::to_string(entry.first) + " times");
}

// ---- Groups -------------------------------------------------------------------------------------

void RecordingLint::beginGroup() {
  if (state_.group() == nullptr) return;
  report(rule("group-nested"),
         "it begins inside the group of line " + std::to_string(state_.group()->line));
  leaveGroup();
}

void RecordingLint::leaveGroup() {
  const Group& group = *state_.group();
  if (group.begin == "SVG_BeginLink" && state_.groupSize() == 0)
    reportAt(group.line, rule("link-empty"));
}

void RecordingLint::endGroup(std::string_view begin) {
  const Group* group = state_.group();
  if (group == nullptr) return report(rule("group-not-open"));
  if (group->begin != begin)
    report(rule("group-other-end"), "it ends the group of " + std::string(group->begin) +
                                        " in line " + std::to_string(group->line));
  leaveGroup();
}

void RecordingLint::checkBounds(const RECT& bounds) {
  const int64_t width = int64_t{state_.page().right} - state_.page().left;
  const int64_t height = int64_t{state_.page().bottom} - state_.page().top;
  if (bounds.right <= bounds.left || bounds.bottom <= bounds.top || bounds.right < 0 ||
      bounds.bottom < 0 || bounds.left > width || bounds.top > height)
    report(rule("field-bounds"));
}

void RecordingLint::check(Function<SVG_BeginFormField>, uint16_t type, uint8_t, uint8_t,
                          const RECT* bounds, const SVG_Char* name, int32_t nameLength,
                          const void* data, int32_t size) {
  beginGroup();
  checkBounds(*bounds);
  checkCharacters(toUnits(name, nameLength));
  const bool isDate = type == SVG_FIELD_DATE;
  if (size % 2 != 0 || (isDate && size < 8))
    report(rule("field-data"), "field data of " + std::to_string(size) + " bytes");
  const int32_t skipped = isDate ? 8 : 0;
  std::u16string units(static_cast<std::size_t>(std::max(size - skipped, 0)) / 2, 0);
  if (!units.empty())
    std::memcpy(units.data(), static_cast<const uint8_t*>(data) + skipped, 2 * units.size());
  checkCharacters(units);
  if (type < SVG_FIELD_CHECKBOX || type > SVG_FIELD_DATE) report(rule("field-type"));
}

void RecordingLint::check(Function<SVG_BeginLink>, uint16_t type, const SVG_Char* target,
                          int32_t length) {
  beginGroup();
  const std::u16string units = toUnits(target, length);
  checkCharacters(units);
  const std::string address = toUtf8(units);
  if (type != SVG_LINK_EXTERNAL && type != SVG_LINK_INTERNAL) report(rule("link-type"));
  if (address.empty()) report(rule("link-no-target"));
  if (type == SVG_LINK_EXTERNAL && isScriptAddress(address)) report(rule("link-script"));
  if (links_ != nullptr && type == SVG_LINK_INTERNAL && !address.empty())
    links_->uses.push_back({pageNumber_, state_.line(), address});
}

void RecordingLint::check(Function<SVG_BeginSignatureField>, const RECT* bounds,
                          const SVG_Char* name, int32_t nameLength, const SVG_Char* info,
                          int32_t infoSize) {
  beginGroup();
  checkBounds(*bounds);
  checkCharacters(toUnits(name, nameLength));
  checkCharacters(toUnits(info, infoSize / 2));
  if (infoSize % 2 != 0)
    report(rule("field-data"), "info data of " + std::to_string(infoSize) + " bytes");
}

void RecordingLint::check(Function<SVG_SetDocumentTarget>, const POINT*, const SVG_Char* name,
                          int32_t length) {
  const std::u16string units = toUnits(name, length);
  checkCharacters(units);
  const std::string target = toUtf8(units);
  if (!targets_.insert(target).second) report(rule("target-repeated"));
  if (links_ != nullptr) links_->targets.insert(target);
}

// ---- Blocks -------------------------------------------------------------------------------------

void RecordingLint::checkBlockState() {
  if (state_.block() != nullptr) report(rule("block-state"));
}

// Most outlines of the block lie near (0, 0), and their characters do not.
void RecordingLint::leaveBlock() {
  if (outlines_.relative > outlines_.inPlace)
    reportAt(outlines_.firstRelative, rule("block-relative"));
  outlines_ = {};
}

void RecordingLint::check(Function<SVG_BeginCharacterBlock>) {
  if (state_.block() == nullptr) return;
  report(rule("block-nested"));
  leaveBlock();
}

void RecordingLint::check(Function<SVG_EndCharacterBlock>) {
  if (state_.block() == nullptr) return report(rule("block-missing"), "the end of no block");
  leaveBlock();
}

void RecordingLint::check(Function<SVG_BeginCharacter>, const POINT*) {
  if (state_.block() == nullptr) report(rule("block-missing"));
}

void RecordingLint::check(Function<SVG_SetCharacterReference>, uint32_t reference,
                          const POINT* position) {
  if (state_.block() == nullptr) return report(rule("block-missing"));
  const auto& characters = state_.block()->characters;
  if (reference >= characters.size() || characters[reference].shapes == 0)
    return report(rule("block-reference"),
                  "character " + std::to_string(reference) + " has no outline of its own");
  const PageState::Character& character = characters[reference];
  if (character.shapes > 1) report(rule("block-parts"));
  const bool isMoved = character.position.x != 0 || character.position.y != 0;
  if (position->x == 0 && position->y == 0 && isMoved) report(rule("block-origin"));
}

// ---- The page -----------------------------------------------------------------------------------

RecordingLint::RecordingLint(const Recording& recording, Findings& findings)
    : recording_(recording), findings_(findings), state_(*recording.page(), recording.pageLine()) {}

void RecordingLint::run(Links* links, std::size_t page) {
  links_ = links;
  pageNumber_ = page;
  const RECT& rectangle = *recording_.page();
  const int line = recording_.pageLine();
  if (rectangle.right <= rectangle.left || rectangle.bottom <= rectangle.top)
    reportAt(line, rule("page-size"));
  if (rectangle.left != 0 || rectangle.top != 0) reportAt(line, rule("page-origin"));
  for (const Call& call : recording_.calls()) {
    state_.setLine(call.line);
    call.to(*this);
  }
  if (!state_.isClosed()) finish();
}

void RecordingLint::finish() {
  if (const Group* group = state_.group()) {
    reportAt(group->line, rule("group-unclosed"));
    leaveGroup();
  }
  if (const PageState::Block* block = state_.block()) {
    reportAt(block->line, rule("block-unclosed"));
    leaveBlock();
  }
  if (state_.inverting()) report(rule("invert-open"));
  finishRegions();
  if (repeatedOutlines_ >= kManyOutlines)
    reportAt(firstRepeatedOutline_, rule("block-not-shared"),
             std::to_string(repeatedOutlines_) + " outlines are equal to one elsewhere");
}

}  // namespace qz::tools
