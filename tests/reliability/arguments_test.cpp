// Arguments are read during the call alone, and only as far as their counts say: each ends where an
// unreadable page begins, and is unreadable itself when the call has returned.
#include <qzsvggen/qzsvggen.h>
#include <sys/mman.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

// A copy that ends at an unreadable page.
template <class Value>
class Guarded {
 public:
  Guarded(const Value* values, size_t count)
      : place_(static_cast<char*>(
            mmap(nullptr, 2 * kRoom, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))),
        values_(place_ + kRoom - count * sizeof(Value)) {
    mprotect(place_ + kRoom, kRoom, PROT_NONE);
    if (count > 0) std::memcpy(values_, values, count * sizeof(Value));
  }
  ~Guarded() { mprotect(place_, 2 * kRoom, PROT_NONE); }  // no later one may stand there
  Guarded(const Guarded&) = delete;
  Guarded& operator=(const Guarded&) = delete;
  operator const Value*() const { return reinterpret_cast<const Value*>(values_); }

 private:
  static constexpr size_t kRoom = 1 << 16;  // a multiple of any page's size
  char* const place_;
  char* const values_;
};

template <class List>
auto copy(const List& list) {
  return Guarded<typename List::value_type>(list.data(), list.size());
}

// Draws a page with every function that is given pointers. Returns the document's size.
int32_t draw() {
  const auto rect = [] { return copy(std::vector<RECT>{{1, 2, 30, 40}}); };
  const auto point = [](int32_t x) { return copy(std::vector<POINT>{{x, -5}}); };
  const auto bytes = [](const std::string& text) {
    return copy(std::vector<uint8_t>(text.begin(), text.end()));
  };
  constexpr uint32_t kCount = 100;  // more than one step of the writers
  const auto points = [] { return copy(std::vector<POINT>(kCount, {3, -4})); };
  const auto types = [&] { return bytes("\6" + std::string(kCount - 2, '\4') + "\3"); };
  const auto advances = [] { return copy(std::vector<int32_t>(kCount, 7)); };

  SvgGenerator* const page = SVG_Create(rect());
  SVG_ExcludeClippingRegion(page, rect());
  SVG_BeginClippingRegion(page, rect());
  SVG_AddClippingRegion(page, rect());
  SVG_InvertPath(page, points(), types(), kCount);
  SVG_InvertRectangle(page, rect());
  for (const bool inBlock : {false, true}) {
    if (inBlock) SVG_BeginCharacterBlock(page);
    SVG_BeginCharacter(page, point(5));
    SVG_DrawLine(page, point(1), point(3));
    SVG_DrawRectangle(page, rect());
    SVG_DrawRoundedRectangle(page, rect(), 5, 6, 1);
    SVG_DrawPolyline(page, points(), kCount);
    SVG_DrawPolygon(page, points(), kCount);
    SVG_SetCharacterReference(page, 0, point(7));
    for (int times = 0; times < 2; ++times) SVG_DrawPath(page, points(), types(), kCount);
  }
  for (const bool marked : {false, true}) {
    const auto text = [&] {
      return copy(marked ? u"\"<" + std::u16string(kCount - 3, u'b') + u'\0'
                         : std::u16string(kCount, u'a'));
    };
    SVG_SetFont(page, text(), kCount, 12, 0, 0);
    SVG_DrawText(page, text(), kCount, point(1), advances(), 98);
    SVG_SetDocumentTarget(page, point(1), text(), kCount);
    SVG_BeginLink(page, SVG_LINK_INTERNAL, text(), kCount);
    SVG_BeginSignatureField(page, rect(), text(), kCount, text(), 2 * kCount);
    // The data of an odd size stands at an odd address; a date is read whatever the size says.
    SVG_BeginFormField(page, SVG_FIELD_TEXT, 1, 2, rect(), text(), kCount, bytes("value"), 5);
    SVG_BeginFormField(page, SVG_FIELD_DATE, 1, 2, rect(), text(), kCount, bytes("12345678"), 0);
  }
  for (int times = 0; times < 3; ++times)
    for (const char* file : {"j", "jp", "jpg", "12345678", "<svg width='1'>\xC3\xA9</svg>",
                             "<svg width='1'>\xC3\xA9</svg>\xC3"})
      for (const uint16_t format : {SVG_IMAGE_JPEG, SVG_IMAGE_SVG})
        SVG_DrawImage(page, format, rect(), bytes(file), static_cast<int32_t>(std::strlen(file)),
                      100);
  const int32_t size = SVG_Close(page, nullptr, 0);
  SVG_Delete(page);
  return size;
}

}  // namespace

// An access to an argument after its call, or behind its end, ends this process.
int main() { return draw() > 10000 ? 0 : 1; }
