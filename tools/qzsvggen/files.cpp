#include "files.h"

#include <utf8.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <system_error>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#else
#include <unistd.h>
#endif

namespace qz::tools {
namespace {

bool isTerminal() {
#if defined(_WIN32)
  return _isatty(2) != 0;
#else
  return isatty(2) != 0;
#endif
}

[[noreturn]] void failToRead(const fs::path& path, int reason) {
  throw Failure(path.string() + ": cannot be read: " + std::generic_category().message(reason));
}

std::string readAll(const fs::path& path, Progress* progress) {
  std::error_code ignored;
  if (fs::is_directory(path, ignored)) failToRead(path, EISDIR);
  errno = 0;
  std::ifstream in(path, std::ios::binary);
  if (!in) failToRead(path, errno);
  std::string bytes;
  while (in) {
    constexpr std::size_t kStep = 1 << 20;
    const std::size_t before = bytes.size();
    bytes.resize(before + kStep);
    in.read(bytes.data() + before, kStep);
    bytes.resize(before + static_cast<std::size_t>(in.gcount()));
    if (progress && progress->isDue())
      progress->show("Reading " + std::to_string(bytes.size() / 1000) + " kB");
  }
  if (in.bad()) failToRead(path, errno);
  return bytes;
}

// The function that the beginning of a line names.
std::string nameOf(const std::string& line) {
  const std::size_t start = line.find('"');
  const std::size_t end = start == std::string::npos ? start : line.find('"', start + 1);
  return end == std::string::npos ? "a call" : line.substr(start + 1, end - start - 1);
}

}  // namespace

Progress::~Progress() {
  if (shown_ > 0) std::cerr << '\r' << std::string(shown_, ' ') << '\r';
}

bool Progress::isDue() {
  static const bool terminal = isTerminal();
  if (!terminal || Clock::now() < next_) return false;
  next_ = Clock::now() + std::chrono::milliseconds(100);
  return true;
}

void Progress::show(const std::string& text) {
  std::cerr << '\r' << text << std::string(shown_ - std::min(shown_, text.size()), ' ')
            << std::flush;
  shown_ = text.size();
}

std::string readFile(const fs::path& path) { return readAll(path, nullptr); }

Recording readRecording(const fs::path& path) {
  Progress progress;
  std::string bytes = readAll(path, &progress);
  bytes.resize(bytes.find_last_not_of('\0') + 1);  // what a trace had no time to cut off
  std::istringstream lines(bytes);
  Recording recording(path.parent_path());
  for (std::string line; std::getline(lines, line);) {
    const std::string place = path.string() + ":" + std::to_string(recording.lines() + 1) + ": ";
    try {
      recording.append(line);
    } catch (const RecordingError& wrong) {
      const bool isCutOff = lines.eof() && line.starts_with('[') && !line.ends_with(']');
      if (!isCutOff || !recording.page()) throw Failure(place + wrong.what());
      std::cerr << place << "warning: " << nameOf(line) << " was cut off; it is left out\n";
    }
    if (progress.isDue())
      progress.show("Reading " + std::to_string(100 * lines.tellg() / std::ssize(bytes)) + " %");
  }
  if (!recording.page()) throw Failure(path.string() + ":1: no SVG_Create, the file is empty");
  return recording;
}

Document drawDocument(const fs::path& path, const Recording& recording, int lastLine) {
  try {
    Replay replay(recording);
    replay.draw(lastLine);
    return replay.close();
  } catch (const RecordingError& wrong) {
    throw Failure(path.string() + ": " + wrong.what());
  } catch (const std::bad_alloc&) {
    throw Failure(path.string() + ": memory is exhausted");
  }
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

void writeOutput(const std::string& bytes, const std::optional<fs::path>& path,
                 const std::vector<fs::path>& inputs) {
  if (!path) {
#if defined(_WIN32)
    _setmode(1, _O_BINARY);
#endif
    if (!(std::cout << bytes << std::flush)) throw Failure("standard output: cannot be written");
    return;
  }
  std::error_code error;
  for (const fs::path& input : inputs)
    if (fs::equivalent(*path, input, error))
      throw Failure(path->string() + ": is the input; it is not written over");
  // What is no regular file (a pipe, /dev/null) is written as it stands.
  const bool aside = !fs::exists(*path, error) || fs::is_regular_file(*path, error);
  const fs::path target = aside ? fs::path(*path) += ".new" : *path;
  errno = 0;
  std::ofstream out(target, std::ios::binary);
  out << bytes;
  out.close();
  const int reason = errno;
  if (out && aside) fs::rename(target, *path, error);
  if (out && !(aside && error)) return;
  const std::string why = out ? error.message() : std::generic_category().message(reason);
  if (aside) fs::remove(target, error);
  throw Failure(path->string() + ": cannot be written: " + why);
}

}  // namespace qz::tools
