// qzsvggen-replay: draws a recording and writes its document.
#include <utf8.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

#include "recording.h"
#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

constexpr const char* usage =
    "usage: qzsvggen-replay RECORDING [-o FILE] [--utf16] [--time]\n"
    "\n"
    "Draws a recording of calls (JSON Lines) and writes the page's SVG document.\n"
    "\n"
    "  -o FILE   write to FILE instead of standard output\n"
    "  --utf16   write UTF-16 with a byte-order mark instead of UTF-8\n"
    "  --time    tell on standard error how long drawing and closing took\n";

struct Options {
  fs::path recording;
  std::optional<fs::path> output;
  bool utf16 = false;
  bool time = false;
};

// A message that is complete as it is.
struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

std::optional<Options> parseOptions(int count, char** arguments) {
  Options options;
  for (int i = 1; i < count; ++i) {
    const std::string_view argument = arguments[i];
    if (argument == "--utf16") {
      options.utf16 = true;
    } else if (argument == "--time") {
      options.time = true;
    } else if (argument == "-o" && i + 1 < count && !options.output) {
      options.output = arguments[++i];
    } else if (!argument.starts_with("-") && options.recording.empty()) {
      options.recording = argument;
    } else {
      return std::nullopt;
    }
  }
  return options.recording.empty() ? std::nullopt : std::optional(options);
}

bool standardErrorIsTerminal() {
#if defined(_WIN32)
  return _isatty(2) != 0;
#else
  return isatty(2) != 0;
#endif
}

// How far reading has come, shown on a terminal once it has taken a second.
class Progress {
 public:
  // `total` bytes; 0 when that is not known.
  explicit Progress(uintmax_t total) : total_(total) {}
  ~Progress() {
    if (shown_) std::fputs("\r                  \r", stderr);
  }

  void show(uintmax_t done) {
    if (!terminal_ || Clock::now() < next_) return;
    next_ = Clock::now() + std::chrono::milliseconds(100);
    shown_ = true;
    if (total_ > 0)
      std::fprintf(stderr, "\rReading %3d %%", static_cast<int>(100 * done / total_));
    else
      std::fprintf(stderr, "\rReading %7d kB", static_cast<int>(done / 1000));
  }

 private:
  uintmax_t total_;
  bool terminal_ = standardErrorIsTerminal();
  bool shown_ = false;
  Clock::time_point next_ = Clock::now() + std::chrono::seconds(1);
};

qz::Recording readRecording(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw Failure(path.string() + ": cannot be read");
  qz::Recording recording(path.parent_path());
  std::error_code pipe;
  const uintmax_t size = fs::file_size(path, pipe);
  Progress progress(pipe ? 0 : size);
  uintmax_t done = 0;
  int lineNumber = 0;
  std::string line;
  while (std::getline(in, line)) {
    ++lineNumber;
    done += line.size() + 1;
    try {
      recording.append(line);
    } catch (const qz::RecordingError& wrong) {
      throw Failure(path.string() + ":" + std::to_string(lineNumber) + ": " + wrong.what());
    }
    progress.show(done);
  }
  if (in.bad()) throw Failure(path.string() + ": cannot be read");
  if (!recording.page()) throw Failure(path.string() + ":1: no SVG_Create, the file is empty");
  return recording;
}

using Document = std::basic_string<SVG_Char>;

Document draw(const qz::Recording& recording, bool tellTime) {
  qz::Replay replay(recording);
  const auto started = Clock::now();
  replay.draw();
  const auto drawn = Clock::now();
  Document document = replay.close();
  const std::chrono::duration<double> drawing = drawn - started, closing = Clock::now() - drawn;
  if (tellTime)
    std::fprintf(stderr, "%zu calls: drawing %.6f s, closing %.6f s, %.0f calls per second\n",
                 recording.calls().size(), drawing.count(), closing.count(),
                 static_cast<double>(recording.calls().size()) /
                     std::max((drawing + closing).count(), 1e-9));
  return document;
}

std::string encodeUtf16(const Document& document) {
  std::string bytes = "\xFF\xFE";
  bytes.reserve(2 + 2 * document.size());
  for (const SVG_Char unit : document) {
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>(unit >> 8));
  }
  return bytes;
}

// `replaced` counts the lone surrogates, which UTF-8 cannot express.
std::string encodeUtf8(const Document& document, int& replaced) {
  const auto isSurrogate = [&](std::size_t i, unsigned kind) {
    return i < document.size() && (document[i] & 0xFC00u) == kind;
  };
  std::string bytes;
  bytes.reserve(document.size());
  for (std::size_t i = 0; i < document.size(); ++i) {
    char32_t codePoint = document[i];
    if (isSurrogate(i, 0xD800) && isSurrogate(i + 1, 0xDC00)) {
      codePoint = 0x10000 + ((codePoint & 0x3FF) << 10) + (document[++i] & 0x3FFu);
    } else if (isSurrogate(i, 0xD800) || isSurrogate(i, 0xDC00)) {
      codePoint = 0xFFFD;
      ++replaced;
    }
    utf8::append(codePoint, bytes);
  }
  return bytes;
}

void write(const std::string& bytes, const std::optional<fs::path>& path) {
  if (!path) {
#if defined(_WIN32)
    _setmode(1, _O_BINARY);
#endif
    if (!(std::cout << bytes << std::flush)) throw Failure("standard output: cannot be written");
    return;
  }
  std::ofstream out(*path, std::ios::binary);
  const bool opened = out.is_open();
  out << bytes;
  out.close();
  if (out) return;
  std::error_code ignored;
  if (opened && fs::is_regular_file(*path, ignored)) fs::remove(*path, ignored);
  throw Failure(path->string() + ": cannot be written");
}

void replay(const Options& options) {
  const std::string name = options.recording.string();
  Document document;
  try {
    document = draw(readRecording(options.recording), options.time);
  } catch (const qz::RecordingError& wrong) {
    throw Failure(name + ": " + wrong.what());
  } catch (const std::bad_alloc&) {
    throw Failure(name + ": memory is exhausted");
  }
  int replaced = 0;
  const std::string bytes = options.utf16 ? encodeUtf16(document) : encodeUtf8(document, replaced);
  write(bytes, options.output);
  if (replaced > 0)
    std::cerr << name << ": warning: " << replaced
              << " lone surrogates became U+FFFD; --utf16 keeps them\n";
}

}  // namespace

int main(int count, char** arguments) {
  const std::string_view first = count > 1 ? arguments[1] : "";
  if (first == "--help" || first == "-h") {
    std::cout << usage;
    return 0;
  }
  const std::optional<Options> options = parseOptions(count, arguments);
  if (!options) {
    std::cerr << usage;
    return 2;
  }
  try {
    replay(*options);
    return 0;
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
    return 2;
  }
}
