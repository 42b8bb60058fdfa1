// Sequences of calls within the contract, on two generators in turn.
//
// Bytes become recordings, so that the arguments live on the heap in their exact size, and that a
// sequence that fails can be printed for `qzsvggen replay`: run the fuzzer with --print and the
// file.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <sstream>

#include "document_check.h"
#include "recording.h"

namespace {

using qz::test::Document;
using Units = std::u16string;

bool printing = false;

void require(bool holds, const std::string& rule) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", rule.c_str());
  std::abort();
}

// The functions and their arguments, one letter each; see Writer::argument.
const std::vector<std::string> kFunctions = [] {
  std::istringstream words(
      "SetFill:bbbb SetStroke:bbbbu ClearStroke: BeginInvertPainting: "
      "EndInvertPainting: InvertPath:LY InvertRectangle:R DrawLine:PP DrawRectangle:R "
      "DrawRoundedRectangle:Ruub DrawPolyline:L DrawPolygon:L DrawPath:LY SetFont:Tibb ClearFont: "
      "DrawText:TPAu BeginCharacterBlock: EndCharacterBlock: BeginCharacter:P EndCharacter: "
      "SetCharacterReference:uP DrawImage:FRDb BeginClippingRegion:R AddClippingRegion:R "
      "ExcludeClippingRegion:R EndClippingRegion: GetCurrentClippingRegion: "
      "SetCurrentClippingRegion:u BeginFormField:KbbRTO EndFormField: BeginLink:kT EndLink: "
      "SetDocumentTarget:PT BeginSignatureField:RTO EndSignatureField: GetVersion:");
  return std::vector<std::string>(std::istream_iterator<std::string>(words), {});
}();

std::string base64(std::string_view bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (size_t i = 0; i < bytes.size(); i += 3) {
    uint32_t bits = 0;
    for (size_t k = i; k < i + 3; ++k)
      bits = bits << 8 | (k < bytes.size() ? static_cast<uint8_t>(bytes[k]) : 0u);
    for (size_t k = 0; k < 4; ++k)
      text += k > bytes.size() - i ? '=' : kDigits[bits >> (18 - 6 * k) & 63];
  }
  return text;
}

// Writes the lines of recordings.
class Writer {
 public:
  Writer(FuzzedDataProvider& input, bool wellFormed) : input_(input), wellFormed_(wellFormed) {}

  // Repeats are frequent, since the library knows again what it has seen; closes are rare, since
  // what follows them is not drawn.
  std::string line(const std::vector<std::string>& before) {
    const auto choice = input_.ConsumeIntegral<uint8_t>();
    if (choice == 255 && below(16) == 1) return "[\"SVG_Close\"]";
    if (choice >= 6 * kFunctions.size() && before.size() > 1)
      return before[1 + below(before.size() - 1)];
    const std::string& function = kFunctions[choice % kFunctions.size()];
    const size_t colon = function.find(':');
    std::string line = "[\"SVG_" + function.substr(0, colon) + '"';
    for (const char kind : function.substr(colon + 1)) line += "," + argument(kind);
    return line + "]";
  }

  // Placements of such pictures refer to nothing.
  bool usedUnknownFormat() const { return usedUnknownFormat_; }

 private:
  size_t below(size_t limit) { return input_.ConsumeIntegralInRange<size_t>(0, limit - 1); }

  std::string argument(char kind) {
    switch (kind) {
      case 'b':
        return std::to_string(input_.ConsumeIntegral<uint8_t>());
      case 'i':
        return std::to_string(coordinate());
      case 'u':
        return std::to_string(static_cast<uint32_t>(coordinate()));
      case 'k':
        return std::to_string(input_.PickValueInArray({0, 1, 2, 3, 257, 258}));
      case 'K':  // field types, and one on each side
        return std::to_string(13 + below(6));
      case 'P':
        return list(2, 'i');
      case 'R':
        return list(4, 'i');
      case 'L':
        return list(count_ = length(), 'P');
      case 'Y':
        return list(count_, 'y');
      case 'y':  // mostly types that have a meaning
        return std::to_string("\6\2\3\4\4\4\5\1\0\7\177"[below(11)]);
      case 'A':
        return input_.ConsumeBool() ? "null" : list(count_, 'i');
      case 'T':
        return data(text(), 2);
      case 'O':  // a date's number, then text
        return data(u"1234" + text(), 1);
      case 'F':
        format_ = input_.PickValueInArray({4, 5, 8, 8, 0});
        usedUnknownFormat_ |= format_ == 0;
        return std::to_string(format_);
      case 'D':
        return data(picture(), 1);
    }
    std::abort();
  }

  int32_t coordinate() {
    const auto small = input_.ConsumeIntegral<int8_t>();
    if (small < 110) return small;
    if (small < 120) return input_.ConsumeIntegral<int32_t>();
    return input_.PickValueInArray({INT32_MIN, INT32_MIN + 1, INT32_MAX - 1, INT32_MAX});
  }

  // Lists and texts are short, or long enough to be written in several steps.
  size_t length() {
    const size_t length = below(256);
    return length < 250 ? length % 10 : 60 + 2 * (length - 250);
  }

  std::string list(size_t count, char kind) {
    std::string text = "[";
    for (size_t i = 0; i < count; ++i) text += (i == 0 ? "" : ",") + argument(kind);
    return text + "]";
  }

  // What XML allows once it is escaped, at times very much of it.
  Units wellFormedPiece() {
    constexpr char16_t kUnits[] = u"\0\tab \"&'<]>#=\u00e9\u00ff\u4e2d\u4f2d";
    const size_t choice = below(std::size(kUnits));
    if (choice == std::size(kUnits) - 1) return u"\U0001f3f6";
    return Units(below(20) == 19 ? 1023 : 1, kUnits[choice]);
  }

  Units text() {
    Units units;
    for (size_t i = length(); i > 0; --i)
      units += wellFormed_ ? wellFormedPiece() : Units(1, input_.ConsumeIntegral<uint16_t>());
    count_ = units.size();
    return units;
  }

  std::string picture() {
    if (!wellFormed_ || format_ != 8) return input_.ConsumeRandomLengthString(300);
    return input_.PickValueInArray({"<svg  width='10%' height=\"2in\" fill='red'><g>",
                                    "\xEF\xBB\xBF<svg viewBox='0 0 1 1'><g>\xC3\xA9"}) +
           std::to_string(below(9)) + "</g></svg>";
  }

  // At times with a count of its own, which is lower than the data's.
  std::string data(std::string_view bytes, size_t unit) {
    std::string result = "{\"base64\":\"" + base64(bytes) + "\"";
    if (!wellFormed_ && below(16) == 15)
      result += ",\"count\":" + std::to_string(below(bytes.size() / unit + 1));
    return result + "}";
  }
  std::string data(const Units& units, size_t unit) {
    return data({reinterpret_cast<const char*>(units.data()), 2 * units.size()}, unit);
  }

  FuzzedDataProvider& input_;
  const bool wellFormed_;
  size_t count_ = 0;  // of the last points or text
  int format_ = 0;
  bool usedUnknownFormat_ = false;
};

class Sequence {
 public:
  void append(const std::string& line) {
    isClosed_ |= line == "[\"SVG_Close\"]";
    lines.push_back(line);
    recording_.append(line);
  }

  struct Playing {
    std::unique_ptr<SvgGenerator, decltype(&SVG_Delete)> generator;
    size_t done = 0;
  };
  Playing begin() const { return {{SVG_Create(recording_.page()), SVG_Delete}}; }
  void step(Playing& playing) const { recording_.calls()[playing.done++](playing.generator.get()); }

  Document playAlone() const {
    Playing playing = begin();
    while (playing.done < recording_.calls().size()) step(playing);
    return close(playing);
  }

  // The whole close protocol.
  Document close(const Playing& playing) const {
    SvgGenerator* const generator = playing.generator.get();
    if (!isClosed_) require(takes(generator, 1), "before the first close, a document is empty");
    const int32_t size = SVG_Close(generator, nullptr, 0);
    require(size > 1, "there is a document");
    require(!takes(generator, size - 1) && !takes(generator, size + 1), "a wrong size is refused");
    Document document(static_cast<size_t>(size), u'~');
    require(SVG_Close(generator, document.data(), size) == 0, "a close returns 0");
    require(document.find(u'\0') == document.size() - 1, "the only zero is the last unit");
    document.pop_back();
    require(takes(generator, 1), "a document that was handed over is empty");
    require(SVG_GetCurrentClippingRegion(generator) == -1, "a closed page has no region");
    require(SVG_SetCurrentClippingRegion(generator, 0) == 1, "a closed page has no region 0");
    return document;
  }

  std::vector<std::string> lines;

 private:
  static bool takes(SvgGenerator* generator, int32_t size) {
    Document buffer(static_cast<size_t>(size), u'~');
    SVG_Close(generator, buffer.data(), size);
    return buffer != Document(buffer.size(), u'~');
  }

  qz::tools::Recording recording_{"no directory"};
  bool isClosed_ = false;
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments) {
  for (int i = 1; i < *count; ++i) printing |= std::strcmp((*arguments)[i], "--print") == 0;
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  FuzzedDataProvider input(bytes, size);
  const bool wellFormed = input.ConsumeBool();
  Writer writer(input, wellFormed);
  Sequence sequences[2];
  std::vector<bool> turns;
  for (Sequence& sequence : sequences) sequence.append("[\"SVG_Create\",[0,0,210,297]]");
  while (input.remaining_bytes() > 0) {
    turns.push_back(input.ConsumeIntegralInRange(0, 3) == 3);
    sequences[turns.back()].append(writer.line(sequences[turns.back()].lines));
  }
  for (const Sequence& sequence : sequences)
    for (const std::string& line : sequence.lines)
      if (printing) std::puts(line.c_str());

  Sequence::Playing playing[] = {sequences[0].begin(), sequences[1].begin()};
  for (const bool turn : turns) sequences[turn].step(playing[turn]);
  for (int i = 0; i < 2; ++i) {
    const Document document = sequences[i].close(playing[i]);
    require(document == sequences[i].playAlone(), "the same calls give the same document");
    if (!wellFormed) continue;
    const std::string fault = qz::test::documentFault(document, writer.usedUnknownFormat());
    require(fault.empty(), fault);
  }
  return 0;
}
