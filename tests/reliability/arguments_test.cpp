// Arguments are read during the call alone, and only as far as their counts say: each ends where an
// unreadable page begins, and is unreadable itself when the call has returned.
#include <qzsvggen/qzsvggen.h>
#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
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

// What is called, for the message when an argument is read too far or too late.
const char* calling = "nothing";

void tellCall(int) {
  std::string message = std::string("an argument is read where it must not, in ") + calling + "\n";
  [[maybe_unused]] const auto written = write(STDERR_FILENO, message.data(), message.size());
  _exit(1);
}

#define TEXT_OF(number) #number
#define LINE_OF(number) TEXT_OF(number)
#define CALL(function, ...) \
  (calling = #function ", line " LINE_OF(__LINE__), SVG_##function(page, __VA_ARGS__))

// A picture in UTF-16 of an odd length.
std::string oddPicture(std::string_view mark, bool bigEndian) {
  std::string bytes(mark);
  for (const char character : std::string_view("<svg width='1'>x</svg>"))
    bytes += bigEndian ? std::string{'\0', character} : std::string{character, '\0'};
  return bytes + "<";
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
  CALL(ExcludeClippingRegion, rect());
  CALL(BeginClippingRegion, rect());
  CALL(AddClippingRegion, rect());
  CALL(InvertPath, points(), types(), kCount);
  CALL(InvertRectangle, rect());
  for (const bool inBlock : {false, true}) {
    if (inBlock) SVG_BeginCharacterBlock(page);
    CALL(BeginCharacter, point(5));
    CALL(DrawLine, point(1), point(3));
    CALL(DrawRectangle, rect());
    CALL(DrawRoundedRectangle, rect(), 5, 6, 1);
    CALL(DrawPolyline, points(), kCount);
    CALL(DrawPolygon, points(), kCount);
    CALL(SetCharacterReference, 0, point(7));
    for (int times = 0; times < 3; ++times) CALL(DrawPath, points(), types(), kCount);
  }
  for (const bool marked : {false, true}) {
    const auto text = [&] {
      return copy(marked ? u"\"<" + std::u16string(kCount - 3, u'b') + u'\0'
                         : std::u16string(kCount, u'a'));
    };
    CALL(SetFont, text(), kCount, 12, 0, 0);
    CALL(DrawText, text(), kCount, point(1), advances(), 98);
    CALL(SetDocumentTarget, point(1), text(), kCount);
    CALL(BeginLink, SVG_LINK_INTERNAL, text(), kCount);
    CALL(BeginSignatureField, rect(), text(), kCount, text(), 2 * kCount);
    // The data of an odd size stands at an odd address; a date is read whatever the size says.
    CALL(BeginFormField, SVG_FIELD_TEXT, 1, 2, rect(), text(), kCount, bytes("value"), 5);
    CALL(BeginFormField, SVG_FIELD_DATE, 1, 2, rect(), text(), kCount, bytes("12345678"), 0);
  }
  for (int times = 0; times < 3; ++times)
    for (const std::string& file :
         {std::string("j"), std::string("jp"), std::string("jpg"), std::string("12345678"),
          std::string("<svg width='1'>\xC3\xA9</svg>"),
          std::string("<svg width='1'>\xC3\xA9</svg>\xC3"), oddPicture("", false),
          oddPicture("\xFF\xFE", false), oddPicture("\xFE\xFF", true)})
      for (const uint16_t format : {uint16_t{SVG_IMAGE_JPEG}, uint16_t{SVG_IMAGE_SVG}})
        CALL(DrawImage, format, rect(), bytes(file), static_cast<int32_t>(file.size()), 100);
  const int32_t size = CALL(Close, nullptr, 0);
  SVG_Delete(page);
  return size;
}

}  // namespace

// An access to an argument after its call, or behind its end, ends this process.
int main() {
  std::signal(SIGSEGV, tellCall);
  return draw() > 10000 ? 0 : 1;
}
