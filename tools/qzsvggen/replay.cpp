// qzsvggen replay: draws a recording and writes its document.
#include <algorithm>
#include <iostream>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "document_hash.h"

namespace qz::tools {
namespace {

Document drawTimed(const Recording& recording, int until) {
  Replay replay(recording);
  const auto started = Clock::now();
  const std::size_t calls = replay.draw(until);
  const auto drawn = Clock::now();
  Document document = replay.close();
  const std::chrono::duration<double> drawing = drawn - started, closing = Clock::now() - drawn;
  std::fprintf(stderr, "%zu calls: drawing %.6f s, closing %.6f s, %.0f calls per second\n", calls,
               drawing.count(), closing.count(),
               static_cast<double>(calls) / std::max((drawing + closing).count(), 1e-9));
  return document;
}

void write(const ReplayCommand& given, const Document& document) {
  int replaced = 0;
  writeOutput(given.utf16 ? encodeUtf16(document) : encodeUtf8(document, replaced), given.output,
              {given.file});
  if (replaced > 0)
    std::cerr << given.file.string() << ": warning: " << replaced
              << " lone surrogates became U+FFFD; --utf16 keeps them\n";
}

nlohmann::json documentNote(const Document& document) {
  char hash[17];
  std::snprintf(hash, sizeof hash, "%016llx",
                static_cast<unsigned long long>(documentHash(document.data(), document.size())));
  return {{"size", document.size() + 1}, {"hash", hash}};
}

int verifyDocument(const fs::path& file, const Recording& recording, const Document& document) {
  for (const std::string& text : recording.notes()) {
    const nlohmann::json note = nlohmann::json::parse(text);
    if (!note.contains("document")) continue;
    const bool same = note["document"] == documentNote(document);
    std::cerr << file.string()
              << (same ? ": the document is the one that was traced\n"
                       : ": the document differs from the one that was traced\n");
    return same ? 0 : 1;
  }
  throw Failure(file.string() + ": has no note of a document to compare with");
}

}  // namespace

int ReplayCommand::run() const {
  const Recording recording = readRecording(file);
  const Document document =
      time ? drawTimed(recording, until) : drawDocument(file, recording, until);
  if (!verify || output) write(*this, document);
  return verify ? verifyDocument(file, recording, document) : 0;
}

}  // namespace qz::tools
