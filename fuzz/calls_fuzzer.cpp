// Sequences of calls within the contract, on two generators in turn.
//
// Bytes become recordings, so that the arguments live on the heap in their exact size, and that a
// sequence that fails can be printed for qzsvggen-replay: run the fuzzer with --print and the file.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "document_check.h"
#include "recording.h"

namespace {

using qz::test::Document;

bool printing = false;

[[noreturn]] void fail(const std::string& what) {
  std::fprintf(stderr, "does not hold: %s\n", what.c_str());
  std::abort();
}
void require(bool holds, const char* rule) {
  if (!holds) fail(rule);
}

// The arguments of each function, one letter each; see Writer::argument.
struct Function {
  const char* name;
  const char* arguments;
};
constexpr Function kFunctions[] = {
    {"SVG_GetVersion", ""},
    {"SVG_SetFill", "bbbb"},
    {"SVG_SetStroke", "bbbbu"},
    {"SVG_ClearStroke", ""},
    {"SVG_BeginInvertPainting", ""},
    {"SVG_EndInvertPainting", ""},
    {"SVG_InvertPath", "LY"},
    {"SVG_InvertRectangle", "R"},
    {"SVG_DrawLine", "PP"},
    {"SVG_DrawRectangle", "R"},
    {"SVG_DrawRoundedRectangle", "Ruub"},
    {"SVG_DrawPolyline", "L"},
    {"SVG_DrawPolygon", "L"},
    {"SVG_DrawPath", "LY"},
    {"SVG_SetFont", "Tibb"},
    {"SVG_ClearFont", ""},
    {"SVG_DrawText", "TPAu"},
    {"SVG_BeginCharacterBlock", ""},
    {"SVG_EndCharacterBlock", ""},
    {"SVG_BeginCharacter", "P"},
    {"SVG_EndCharacter", ""},
    {"SVG_SetCharacterReference", "uP"},
    {"SVG_DrawImage", "FRDb"},
    {"SVG_BeginClippingRegion", "R"},
    {"SVG_AddClippingRegion", "R"},
    {"SVG_ExcludeClippingRegion", "R"},
    {"SVG_EndClippingRegion", ""},
    {"SVG_GetCurrentClippingRegion", ""},
    {"SVG_SetCurrentClippingRegion", "u"},
    {"SVG_BeginFormField", "KbbRTO"},
    {"SVG_EndFormField", ""},
    {"SVG_BeginLink", "kT"},
    {"SVG_EndLink", ""},
    {"SVG_SetDocumentTarget", "PT"},
    {"SVG_BeginSignatureField", "RTO"},
    {"SVG_EndSignatureField", ""},
};

using Units = std::u16string;

const Units kWellFormedTexts[] = {{u'\0'},
                                  u"a",
                                  u"bc ",
                                  u"\t",
                                  u"\"",
                                  u"&",
                                  u"'",
                                  u"<",
                                  u"]]>",
                                  u"\u00e9",
                                  u"\u4e2d",
                                  u"\U0001f3f6",
                                  Units(500, u'x'),
                                  Units(1023, u'\u00ff') + u"\u0100"};

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

std::string_view bytesOf(const Units& units) {
  return {reinterpret_cast<const char*>(units.data()), 2 * units.size()};
}

// Writes the lines of recordings.
class Writer {
 public:
  Writer(FuzzedDataProvider& input, bool wellFormed) : input_(input), wellFormed_(wellFormed) {}

  // Repeats are frequent, since the library knows again what it has seen; closes are rare, since
  // whatever follows them is not drawn.
  std::string line(const std::vector<std::string>& before) {
    const auto choice = input_.ConsumeIntegral<uint8_t>();
    if (choice == 255) return "[\"SVG_Close\"]";
    if (choice >= 6 * std::size(kFunctions) && before.size() > 1)
      return before[input_.ConsumeIntegralInRange<size_t>(1, before.size() - 1)];
    const Function& function = kFunctions[choice % std::size(kFunctions)];
    std::string line = std::string("[\"") + function.name + '"';
    for (const char* kind = function.arguments; *kind != 0; ++kind) line += "," + argument(*kind);
    return line + "]";
  }

  // Placements of such pictures refer to nothing.
  bool usedUnknownFormat() const { return usedUnknownFormat_; }

 private:
  std::string argument(char kind) {
    switch (kind) {
      case 'b':
        return std::to_string(input_.ConsumeIntegral<uint8_t>());
      case 'i':
        return coordinates(1);
      case 'u':
        return std::to_string(static_cast<uint32_t>(coordinate()));
      case 'P':
        return "[" + coordinates(2) + "]";
      case 'R':
        return "[" + coordinates(4) + "]";
      case 'L':
        count_ = length();
        return list([this] { return argument('P'); });
      case 'Y':  // mostly the types that have a meaning
        return list([this] {
          return std::to_string("\6\2\3\4\4\4\5\1\0\7\177"[input_.ConsumeIntegralInRange(0, 10)]);
        });
      case 'A':
        return input_.ConsumeBool() ? "null" : list([this] { return coordinates(1); });
      case 'T':
        return data(bytesOf(text()), 2);
      case 'O': {  // a date's number, then text
        const Units units = u"1234" + text();
        return data(bytesOf(units), 1);
      }
      case 'K':
        return std::to_string(input_.ConsumeIntegralInRange(13, 18));
      case 'k':
        return std::to_string(input_.ConsumeIntegralInRange(0, 3));
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
    constexpr int32_t kSmallest = INT32_MIN, kLargest = INT32_MAX;
    const auto small = input_.ConsumeIntegral<int8_t>();
    if (small < 110) return small;
    return small < 120
               ? input_.ConsumeIntegral<int32_t>()
               : input_.PickValueInArray({kSmallest, kSmallest + 1, kLargest - 1, kLargest});
  }

  std::string coordinates(int count) {
    std::string text = std::to_string(coordinate());
    while (--count > 0) text += "," + std::to_string(coordinate());
    return text;
  }

  // Lists and texts are short, or long enough to be written in several steps.
  size_t length() {
    const auto length = input_.ConsumeIntegral<uint8_t>();
    return length < 250 ? length % 10 : 60u + 2 * (length - 250);
  }

  template <class Item>
  std::string list(Item item) {
    std::string text = "[";
    for (size_t i = 0; i < count_; ++i) text += (i == 0 ? "" : ",") + item();
    return text + "]";
  }

  Units text() {
    Units units;
    for (size_t i = length(); i > 0; --i) {
      if (wellFormed_)
        units += kWellFormedTexts[input_.ConsumeIntegralInRange<size_t>(
            0, std::size(kWellFormedTexts) - 1)];
      else
        units += static_cast<char16_t>(input_.ConsumeIntegral<uint16_t>());
    }
    count_ = units.size();
    return units;
  }

  std::string picture() {
    if (!wellFormed_ || format_ != 8) return input_.ConsumeRandomLengthString(300);
    const std::string number = std::to_string(input_.ConsumeIntegralInRange(0, 9));
    return input_.PickValueInArray({"<svg  width='10%' height=\"2in\" fill='red'><g>",
                                    "\xEF\xBB\xBF<svg viewBox='0 0 1 1'><g>\xC3\xA9"}) +
           number + "</g></svg>";
  }

  // At times with a count of its own, which is lower than the data's.
  std::string data(std::string_view bytes, size_t unit) {
    std::string result = "{\"base64\":\"" + base64(bytes) + "\"";
    if (!wellFormed_ && input_.ConsumeIntegralInRange(0, 15) == 15)
      result += ",\"count\":" + std::to_string(input_.ConsumeIntegralInRange<int64_t>(
                                    0, static_cast<int64_t>(bytes.size() / unit)));
    return result + "}";
  }

  FuzzedDataProvider& input_;
  const bool wellFormed_;
  size_t count_ = 0;  // of the last points or text
  int format_ = 0;
  bool usedUnknownFormat_ = false;
};

struct Sequence {
  qz::Recording recording{"no directory"};
  std::vector<std::string> lines;

  void append(const std::string& line) {
    lines.push_back(line);
    recording.append(line);
  }
};

using Generator = std::unique_ptr<SvgGenerator, decltype(&SVG_Delete)>;
Generator create(const Sequence& sequence) {
  return {SVG_Create(sequence.recording.page()), SVG_Delete};
}

// A close with a buffer that is not the right one: nothing is written.
void closeWrongly(SvgGenerator* generator, int32_t size) {
  std::vector<SVG_Char> buffer(static_cast<size_t>(size), u'~');
  require(SVG_Close(generator, buffer.data(), size) == 0, "a close with a buffer returns 0");
  require(buffer == std::vector<SVG_Char>(static_cast<size_t>(size), u'~'),
          "a wrong size writes nothing");
}

void closeEmpty(SvgGenerator* generator) {
  SVG_Char unit = u'~';
  SVG_Close(generator, &unit, 1);
  require(unit == 0, "an empty document is a zero");
}

// The whole close protocol.
Document close(const Generator& generator, bool isClosed) {
  if (!isClosed) closeEmpty(generator.get());
  const int32_t size = SVG_Close(generator.get(), nullptr, 0);
  require(size > 1, "there is a document");
  closeWrongly(generator.get(), size - 1);
  closeWrongly(generator.get(), size + 1);
  Document document(static_cast<size_t>(size), u'~');
  require(SVG_Close(generator.get(), document.data(), size) == 0, "a close returns 0");
  require(document.find(u'\0') == document.size() - 1, "the only zero is the last unit");
  document.pop_back();
  closeEmpty(generator.get());
  require(SVG_GetCurrentClippingRegion(generator.get()) == -1, "a closed page has no region");
  require(SVG_SetCurrentClippingRegion(generator.get(), 0) == 1, "a closed page has no region 0");
  return document;
}

bool hasClose(const Sequence& sequence) {
  for (const std::string& line : sequence.lines)
    if (line == "[\"SVG_Close\"]") return true;
  return false;
}

Document playAlone(const Sequence& sequence) {
  const Generator generator = create(sequence);
  for (const auto& call : sequence.recording.calls()) call(generator.get());
  return close(generator, hasClose(sequence));
}

void print(const Sequence& sequence) {
  for (const std::string& line : sequence.lines) std::puts(line.c_str());
  std::puts("");
  std::fflush(stdout);
}

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
  std::vector<int> turns;
  for (Sequence& sequence : sequences) sequence.append("[\"SVG_Create\",[0,0,210,297]]");
  while (input.remaining_bytes() > 0) {
    turns.push_back(input.ConsumeIntegralInRange(0, 3) == 3);
    Sequence& sequence = sequences[turns.back()];
    sequence.append(writer.line(sequence.lines));
  }
  if (printing)
    for (const Sequence& sequence : sequences) print(sequence);

  const Generator inTurn[] = {create(sequences[0]), create(sequences[1])};
  size_t done[] = {0, 0};
  for (const int turn : turns) sequences[turn].recording.calls()[done[turn]++](inTurn[turn].get());
  for (int i = 0; i < 2; ++i) {
    const Document document = close(inTurn[i], hasClose(sequences[i]));
    require(document == playAlone(sequences[i]), "the same calls give the same document");
    if (!wellFormed) continue;
    const std::string fault = qz::test::documentFault(document, writer.usedUnknownFormat());
    if (!fault.empty()) fail(fault + "\n" + qz::test::readable(document));
  }
  return 0;
}
