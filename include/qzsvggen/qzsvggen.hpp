// qzsvggen for C++17: a page that frees itself, standard strings and containers, and scopes.
//
// Header-only, on top of the C interface alone; qzsvggen.h says what each call does to the document
// and which conventions hold. Here it says only what is different.
//
// A complete page:
//
//     qzsvggen::Page page({0, 0, 2100, 2970});
//     page.setFill(255, 255, 200, 0);
//     {
//       auto link = page.link(qzsvggen::LinkType::kExternal, u"https://example.org/");
//       page.drawRectangle({100, 100, 600, 300});
//     }
//     qzsvggen::writeFile("page.svg", page.close());
//
// Conventions:
//
//   Arguments    Text, points, advances and bytes are views, made implicitly from whatever lies in
//                one piece of memory: string literals, strings, string views, vectors, arrays.
//                They are only read, and only during the call. On Windows text may also be wide.
//   Errors       What the C interface leaves undefined and a view can tell (types that do not match
//                their points, a count beyond 32 bits) throws std::invalid_argument before anything
//                is recorded. Drawing calls report nothing else, exactly as in C.
//   Scopes       link(), formField(), signatureField(), clip(), characterBlock() and
//                invertPainting() return a Scope, whose end is the End call. A scope may not
//                outlive its page; moving the page is fine.
//   Windows      To make points and rectangles, include windows.h, before or after this header.
#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>

#include "qzsvggen.h"

namespace qzsvggen {

// The document could not be written or handed over.
class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

enum class ImageFormat : uint16_t {
  kPng = SVG_IMAGE_PNG,
  kJpeg = SVG_IMAGE_JPEG,
  kSvg = SVG_IMAGE_SVG
};

enum class FieldType : uint16_t {
  kCheckBox = SVG_FIELD_CHECKBOX,
  kComboBox = SVG_FIELD_COMBOBOX,
  kText = SVG_FIELD_TEXT,
  kDate = SVG_FIELD_DATE
};

enum class LinkType : uint16_t { kExternal = SVG_LINK_EXTERNAL, kInternal = SVG_LINK_INTERNAL };

// ---- Views of a host's memory -------------------------------------------------------------------

namespace detail {

template <class Count>
Count count(std::size_t size) {
  if (size > INT32_MAX) throw std::invalid_argument("qzsvggen: more than 2147483647 items");
  return static_cast<Count>(size);
}

}  // namespace detail

// Items that lie one behind the other.
template <class Item>
class Span {
 public:
  constexpr Span() = default;
  constexpr Span(const Item* data, std::size_t size) : data_(data), size_(size) {}
  constexpr Span(std::initializer_list<Item> items) : Span(items.begin(), items.size()) {}
  template <class Container,
            class = std::enable_if_t<std::is_convertible_v<
                decltype(std::data(std::declval<const Container&>())), const Item*>>>
  constexpr Span(const Container& items) : Span(std::data(items), std::size(items)) {}

  constexpr const Item* data() const { return data_; }
  constexpr std::size_t size() const { return size_; }
  template <class Count>
  Count count() const {
    return detail::count<Count>(size_);
  }

 private:
  const Item* data_ = nullptr;
  std::size_t size_ = 0;
};

using Points = Span<POINT>;
using PointTypes = Span<uint8_t>;

// UTF-16 text: anything that a std::u16string_view is made of, on Windows also wide text.
class Text {
 public:
  template <class String,
            class = std::enable_if_t<std::is_convertible_v<const String&, std::u16string_view>>>
  Text(const String& text) : Text(std::u16string_view(text), 0) {}
#if defined(_WIN32)
  template <class String,
            std::enable_if_t<std::is_convertible_v<const String&, std::wstring_view>, int> = 0>
  Text(const String& text) : Text(std::wstring_view(text), 0) {}
#endif

  const SVG_Char* data() const { return data_; }
  std::size_t size() const { return size_; }
  template <class Count>
  Count count() const {
    return detail::count<Count>(size_);
  }

 private:
  template <class View>
  Text(View view, int)
      : data_(reinterpret_cast<const SVG_Char*>(view.data())), size_(view.size()) {}

  const SVG_Char* data_;
  std::size_t size_;
};

// Bytes: a string, vector or array of items of one byte; or text, which stands for its code units.
class Bytes {
 public:
  Bytes() = default;
  Bytes(const void* data, std::size_t size) : data_(data), size_(size) {}
  template <class Container,
            std::enable_if_t<sizeof(*std::data(std::declval<const Container&>())) == 1, int> = 0>
  Bytes(const Container& items) : Bytes(std::data(items), std::size(items)) {}
  template <class String, std::enable_if_t<std::is_constructible_v<Text, const String&>, int> = 0>
  Bytes(const String& text) : Bytes(Text(text).data(), Text(text).size() * sizeof(SVG_Char)) {}

  const void* data() const { return data_; }
  std::size_t size() const { return size_; }
  template <class Count>
  Count count() const {
    return detail::count<Count>(size_);
  }

 private:
  const void* data_ = nullptr;
  std::size_t size_ = 0;
};

// ---- Scopes -------------------------------------------------------------------------------------

// Ends what it stands for when it is destroyed, or before by end().
class [[nodiscard]] Scope {
 public:
  using End = int32_t(QZSVGGEN_CALL*)(SvgGenerator*);

  Scope(SvgGenerator* generator, End endCall) : generator_(generator), end_(endCall) {}
  // Ends by selecting a clip region.
  Scope(SvgGenerator* generator, uint32_t region) : generator_(generator), region_(region) {}
  Scope(Scope&& other) noexcept
      : generator_(std::exchange(other.generator_, nullptr)),
        end_(other.end_),
        region_(other.region_) {}
  Scope& operator=(Scope&&) = delete;
  ~Scope() { end(); }

  void end() noexcept {
    SvgGenerator* generator = std::exchange(generator_, nullptr);
    if (generator == nullptr) return;
    if (end_ != nullptr)
      end_(generator);
    else
      SVG_SetCurrentClippingRegion(generator, region_);
  }

 private:
  SvgGenerator* generator_;
  End end_ = nullptr;
  uint32_t region_ = 0;
};

// ---- The page -----------------------------------------------------------------------------------

// One page. It can be moved, not copied; of a page that was moved away nothing may be used but its
// destructor and assignment.
class Page {
 public:
  // Throws std::bad_alloc.
  explicit Page(const RECT& page) : generator_(SVG_Create(&page)) {
    if (!generator_) throw std::bad_alloc();
  }

  // For calls of the C interface.
  SvgGenerator* handle() const noexcept { return generator_.get(); }

  // The version of the interface, 100.
  static int32_t version() noexcept { return SVG_GetVersion(); }

  // Finishes the page and returns its document. Throws Error when the document cannot be written
  // (memory is exhausted, or it is too large), when the copy is refused, and when the document was
  // returned already; and std::bad_alloc when there is no memory for the string. Never returns a
  // part of a document. Unless it was returned already, another try may succeed.
  std::u16string close() {
    if (closed_) throw Error("qzsvggen: the page is closed");
    if (size_ == 0) size_ = SVG_Close(handle(), nullptr, 0);
    if (size_ <= 0) throw Error("qzsvggen: memory is exhausted, or the document is too large");
    // SVG_Close returns 0 whether it copied or refused; only a copy writes the terminating zero.
    std::u16string document(static_cast<std::size_t>(size_), u'?');
    SVG_Close(handle(), reinterpret_cast<SVG_Char*>(&document[0]), size_);
    if (document.back() != 0) throw Error("qzsvggen: the document was not handed over");
    document.pop_back();
    closed_ = true;
    return document;
  }

  // Paint

  void setFill(uint8_t alpha, uint8_t red, uint8_t green, uint8_t blue) noexcept {
    SVG_SetFill(handle(), alpha, red, green, blue);
  }
  void setStroke(uint8_t alpha, uint8_t red, uint8_t green, uint8_t blue, uint32_t width) noexcept {
    SVG_SetStroke(handle(), alpha, red, green, blue, width);
  }
  void clearStroke() noexcept { SVG_ClearStroke(handle()); }

  // Inversion

  void beginInvertPainting() noexcept { SVG_BeginInvertPainting(handle()); }
  void endInvertPainting() noexcept { SVG_EndInvertPainting(handle()); }
  // Both ends take effect with the next call that sets paint.
  Scope invertPainting() noexcept {
    beginInvertPainting();
    return Scope(handle(), SVG_EndInvertPainting);
  }
  void invertPath(Points points, PointTypes types) {
    SVG_InvertPath(handle(), points.data(), types.data(), matching(points, types));
  }
  void invertRectangle(const RECT& rectangle) noexcept {
    SVG_InvertRectangle(handle(), &rectangle);
  }

  // Shapes

  void drawLine(const POINT& from, const POINT& to) noexcept { SVG_DrawLine(handle(), &from, &to); }
  void drawRectangle(const RECT& rectangle) noexcept { SVG_DrawRectangle(handle(), &rectangle); }
  void drawRoundedRectangle(const RECT& rectangle, uint32_t cornerWidth, uint32_t cornerHeight,
                            uint16_t cornerMask = 15) noexcept {
    SVG_DrawRoundedRectangle(handle(), &rectangle, cornerWidth, cornerHeight, cornerMask);
  }
  void drawPolyline(Points points) {
    SVG_DrawPolyline(handle(), points.data(), points.count<uint32_t>());
  }
  void drawPolygon(Points points) {
    SVG_DrawPolygon(handle(), points.data(), points.count<uint32_t>());
  }
  // `types` are as many as the points.
  void drawPath(Points points, PointTypes types) {
    SVG_DrawPath(handle(), points.data(), types.data(), matching(points, types));
  }

  // Text

  void setFont(Text family, int32_t size, bool italic = false, bool bold = false) {
    SVG_SetFont(handle(), family.data(), family.count<uint32_t>(), size, italic, bold);
  }
  void clearFont() noexcept { SVG_ClearFont(handle()); }
  // `advances` are none, or as many as the code units.
  void drawText(Text text, const POINT& origin, Span<int32_t> advances = {},
                uint32_t characterScaling = 100) {
    if (advances.size() != 0) matching(text, advances);
    SVG_DrawText(handle(), text.data(), text.count<int32_t>(), &origin,
                 advances.size() != 0 ? advances.data() : nullptr, characterScaling);
  }

  // Text as outlines

  void beginCharacterBlock() noexcept { SVG_BeginCharacterBlock(handle()); }
  void endCharacterBlock() noexcept { SVG_EndCharacterBlock(handle()); }
  Scope characterBlock() noexcept {
    beginCharacterBlock();
    return Scope(handle(), SVG_EndCharacterBlock);
  }
  void beginCharacter(const POINT& position) noexcept { SVG_BeginCharacter(handle(), &position); }
  void endCharacter() noexcept { SVG_EndCharacter(handle()); }
  void setCharacterReference(uint32_t reference, const POINT& position) noexcept {
    SVG_SetCharacterReference(handle(), reference, &position);
  }

  // Pictures

  void drawImage(ImageFormat format, const RECT& bounds, Bytes file, uint16_t quality = 100) {
    SVG_DrawImage(handle(), static_cast<uint16_t>(format), &bounds,
                  static_cast<const uint8_t*>(file.data()), file.count<int32_t>(), quality);
  }

  // Clip regions

  void beginClippingRegion(const RECT& rectangle) noexcept {
    SVG_BeginClippingRegion(handle(), &rectangle);
  }
  void addClippingRegion(const RECT& rectangle) noexcept {
    SVG_AddClippingRegion(handle(), &rectangle);
  }
  void excludeClippingRegion(const RECT& rectangle) noexcept {
    SVG_ExcludeClippingRegion(handle(), &rectangle);
  }
  void endClippingRegion() noexcept { SVG_EndClippingRegion(handle()); }
  // Its number, or nothing when no region is current.
  std::optional<uint32_t> currentClippingRegion() const noexcept {
    const int32_t region = SVG_GetCurrentClippingRegion(handle());
    return region < 0 ? std::nullopt : std::optional(static_cast<uint32_t>(region));
  }
  // Returns whether the page has that region; if it has not, nothing changes.
  bool setCurrentClippingRegion(uint32_t region) noexcept {
    return SVG_SetCurrentClippingRegion(handle(), region) == 0;
  }
  // Begins a region; at the end the one that was current before, if any, is current again.
  Scope clip(const RECT& rectangle) noexcept {
    const std::optional<uint32_t> before = currentClippingRegion();
    beginClippingRegion(rectangle);
    return before ? Scope(handle(), *before) : Scope(handle(), SVG_EndClippingRegion);
  }

  // Document structures

  // `typeData` of a date is at least eight bytes, see SVG_BeginFormField.
  void beginFormField(FieldType type, const RECT& bounds, Text name, Bytes typeData = {},
                      uint8_t flags = 0, uint8_t exFlags = 0) {
    if (type == FieldType::kDate && typeData.size() < 8)
      throw std::invalid_argument("qzsvggen: a date field needs eight bytes of data");
    SVG_BeginFormField(handle(), static_cast<uint16_t>(type), flags, exFlags, &bounds, name.data(),
                       name.count<int32_t>(), typeData.data(), typeData.count<int32_t>());
  }
  void endFormField() noexcept { SVG_EndFormField(handle()); }
  Scope formField(FieldType type, const RECT& bounds, Text name, Bytes typeData = {},
                  uint8_t flags = 0, uint8_t exFlags = 0) {
    beginFormField(type, bounds, name, typeData, flags, exFlags);
    return Scope(handle(), SVG_EndFormField);
  }

  void beginLink(LinkType type, Text target) {
    SVG_BeginLink(handle(), static_cast<uint16_t>(type), target.data(), target.count<int32_t>());
  }
  void endLink() noexcept { SVG_EndLink(handle()); }
  Scope link(LinkType type, Text target) {
    beginLink(type, target);
    return Scope(handle(), SVG_EndLink);
  }

  void setDocumentTarget(const POINT& position, Text name) {
    SVG_SetDocumentTarget(handle(), &position, name.data(), name.count<int32_t>());
  }

  void beginSignatureField(const RECT& bounds, Text name, Text info = u"") {
    SVG_BeginSignatureField(handle(), &bounds, name.data(), name.count<int32_t>(), info.data(),
                            detail::count<int32_t>(info.size() * sizeof(SVG_Char)));
  }
  void endSignatureField() noexcept { SVG_EndSignatureField(handle()); }
  Scope signatureField(const RECT& bounds, Text name, Text info = u"") {
    beginSignatureField(bounds, name, info);
    return Scope(handle(), SVG_EndSignatureField);
  }

 private:
  struct Delete {
    void operator()(SvgGenerator* generator) const noexcept { SVG_Delete(generator); }
  };

  template <class First, class Second>
  static uint32_t matching(const First& first, const Second& second) {
    if (first.size() != second.size())
      throw std::invalid_argument("qzsvggen: " + std::to_string(first.size()) + " and " +
                                  std::to_string(second.size()) + " items that belong together");
    return first.template count<uint32_t>();
  }

  std::unique_ptr<SvgGenerator, Delete> generator_;
  int32_t size_ = 0;  // of the document that waits to be copied
  bool closed_ = false;
};

// ---- From the document to bytes -----------------------------------------------------------------

// The text in UTF-8, without a mark. Surrogates without their other half become U+FFFD.
inline std::string toUtf8(std::u16string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    uint32_t code = text[i];
    if (code >= 0xD800 && code < 0xE000) {
      const bool pair =
          code < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000;
      code = pair ? 0x10000 + ((code - 0xD800) << 10) + (text[++i] - 0xDC00) : 0xFFFD;
    }
    if (code < 0x80) {
      result.push_back(static_cast<char>(code));
      continue;
    }
    const int following = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    result.push_back(static_cast<char>((0xFF00 >> (following + 1) & 0xFF) | code >> 6 * following));
    for (int shift = 6 * (following - 1); shift >= 0; shift -= 6)
      result.push_back(static_cast<char>(0x80 | (code >> shift & 0x3F)));
  }
  return result;
}

// Writes the text to a file as UTF-16, low byte first, behind its mark: to a file beside it, with
// ".part" behind its name, which then takes its place. Throws std::filesystem::filesystem_error
// with the reason, and leaves what was there before, and no part of a document.
inline void writeFile(const std::filesystem::path& path, std::u16string_view text) {
  std::string bytes = "\xFF\xFE";
  bytes.reserve(bytes.size() + 2 * text.size());
  for (const char16_t unit : text) {
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>(unit >> 8));
  }
  std::filesystem::path aside = path;
  aside += ".part";
  errno = 0;
  std::ofstream file(aside, std::ios::binary);
  const bool opened = file.is_open();
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  std::error_code error(errno != 0 ? errno : EIO, std::generic_category());
  if (file) std::filesystem::rename(aside, path, error);  // which sets or clears it
  if (!error) return;
  std::error_code ignored;
  if (opened) std::filesystem::remove(aside, ignored);
  throw std::filesystem::filesystem_error("qzsvggen: cannot write", path, error);
}

}  // namespace qzsvggen
