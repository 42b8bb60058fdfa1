// Arguments are read during the call alone, and only as far as their counts say: each ends where an
// unreadable page begins, and is gone when the call has returned.
#include <qzsvggen/qzsvggen.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

// A copy that ends at an unreadable page.
template <class Value>
class Guarded {
 public:
  Guarded(const Value* values, size_t count) : used_(count * sizeof(Value)) {
    readable_ = (used_ / kPage + 1) * kPage;
    place_ = static_cast<char*>(mmap(nullptr, readable_ + kPage, PROT_READ | PROT_WRITE,
                                     MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    mprotect(place_ + readable_, kPage, PROT_NONE);
    if (used_ > 0) std::memcpy(place_ + readable_ - used_, values, used_);
  }
  ~Guarded() { munmap(place_, readable_ + kPage); }
  Guarded(const Guarded&) = delete;
  Guarded& operator=(const Guarded&) = delete;
  operator const Value*() const {
    return reinterpret_cast<const Value*>(place_ + readable_ - used_);
  }

 private:
  const size_t kPage = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  size_t used_, readable_;
  char* place_;
};

// A copy in ordinary memory.
template <class Value>
class Plain {
 public:
  Plain(const Value* values, size_t count) : values_(values, values + count) {}
  operator const Value*() const { return values_.data(); }

 private:
  std::vector<Value> values_;
};

// Draws a page with every function that is given pointers, with copies of that kind.
template <template <class> class Copy>
std::u16string draw() {
  const auto rect = [](int32_t left, int32_t top, int32_t right, int32_t bottom) {
    const RECT value = {left, top, right, bottom};
    return Copy<RECT>(&value, 1);
  };
  const auto point = [](int32_t x, int32_t y) {
    const POINT value = {x, y};
    return Copy<POINT>(&value, 1);
  };
  const auto text = [](const std::u16string& value) {
    return Copy<SVG_Char>(value.data(), value.size());
  };
  const auto bytes = [](const std::string& value) {
    return Copy<uint8_t>(reinterpret_cast<const uint8_t*>(value.data()), value.size());
  };
  constexpr uint32_t kCount = 100;  // more than one step of the writers
  const std::vector<POINT> zigzag(kCount, POINT{3, -4});
  const std::vector<int32_t> widths(kCount, 7);
  const std::string types = "\6" + std::string(kCount - 2, '\4') + "\3";
  const std::u16string plain(kCount, u'a'),
      marked = u"\"<" + std::u16string(kCount - 3, u'b') + u'\0';
  const auto points = [&] { return Copy<POINT>(zigzag.data(), kCount); };
  const auto advances = [&] { return Copy<int32_t>(widths.data(), kCount); };

  SvgGenerator* const page = SVG_Create(rect(0, 0, 100, 100));
  SVG_ExcludeClippingRegion(page, rect(0, 0, 10, 10));
  SVG_BeginClippingRegion(page, rect(0, 0, 50, 50));
  SVG_AddClippingRegion(page, rect(40, 40, 60, 60));
  SVG_InvertPath(page, points(), bytes(types), kCount);
  SVG_InvertRectangle(page, rect(1, 2, 3, 4));
  for (const bool inBlock : {false, true}) {
    if (inBlock) SVG_BeginCharacterBlock(page);
    SVG_BeginCharacter(page, point(5, 6));
    SVG_DrawLine(page, point(1, 2), point(3, 4));
    SVG_DrawRectangle(page, rect(1, 2, 3, 4));
    SVG_DrawRoundedRectangle(page, rect(1, 2, 30, 40), 5, 6, 1);
    SVG_DrawPolyline(page, points(), kCount);
    SVG_DrawPolygon(page, points(), kCount);
    SVG_SetCharacterReference(page, 0, point(7, 8));
    for (int times = 0; times < 2; ++times) SVG_DrawPath(page, points(), bytes(types), kCount);
  }
  for (const std::u16string& each : {plain, marked}) {
    SVG_SetFont(page, text(each), kCount, 12, 0, 0);
    SVG_DrawText(page, text(each), kCount, point(1, 2), advances(), 98);
    SVG_DrawText(page, text(each), kCount, point(1, 2), nullptr, 100);
    SVG_SetDocumentTarget(page, point(1, 2), text(each), kCount);
    SVG_BeginLink(page, SVG_LINK_INTERNAL, text(each), kCount);
    SVG_BeginSignatureField(page, rect(1, 2, 3, 4), text(each), kCount, text(each), 2 * kCount);
    // An odd size, which leaves the data at an odd address.
    SVG_BeginFormField(page, SVG_FIELD_TEXT, 1, 2, rect(1, 2, 3, 4), text(each), kCount,
                       bytes("value"), 5);
  }
  // The number of a date is read whatever the size says.
  SVG_BeginFormField(page, SVG_FIELD_DATE, 0, 0, rect(1, 2, 3, 4), text(u""), 0, bytes("12345678"),
                     0);
  for (int times = 0; times < 3; ++times) {
    for (const char* jpeg : {"j", "jp", "jpg", "jpeg"})
      SVG_DrawImage(page, SVG_IMAGE_JPEG, rect(1, 2, 3, 4), bytes(jpeg),
                    static_cast<int32_t>(std::strlen(jpeg)), 100);
    const std::string svg = "<svg width='1'>\xC3\xA9</svg>", cut = svg + "\xC3";
    for (const std::string& each : {svg, cut})
      SVG_DrawImage(page, SVG_IMAGE_SVG, rect(1, 2, 3, 4), bytes(each),
                    static_cast<int32_t>(each.size()), 100);
  }
  const int32_t size = SVG_Close(page, nullptr, 0);
  std::u16string document(static_cast<size_t>(size), u'\0');
  SVG_Close(page, document.data(), size);
  SVG_Delete(page);
  return document;
}

}  // namespace

int main() {
  const bool same = draw<Guarded>() == draw<Plain>();
  if (!same) std::fputs("arguments are used after the call\n", stderr);
  return same ? 0 : 1;
}
