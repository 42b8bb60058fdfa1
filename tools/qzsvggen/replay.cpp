// qzsvggen replay: draws a recording and writes its document.
#include <algorithm>
#include <iostream>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "document_hash.h"
#include "files.h"

namespace qz::tools {
namespace {

class ReplayCommand {
 public:
  void declare(CLI::App& app) {
    app.add_option("RECORDING", recording_)->required();
    app.add_option("-o,--output", output_, "Write to FILE instead of standard output")
        ->type_name("FILE");
    app.add_flag("--utf16", utf16_, "Write UTF-16 with a byte-order mark instead of UTF-8");
    app.add_option("--until", until_, "Draw up to this line of the recording")
        ->type_name("LINE")
        ->check(CLI::PositiveNumber);
    app.add_flag("--verify", verify_,
                 "Compare the document with the one that was traced; write it only with -o");
    app.add_flag("--time", time_, "Tell on standard error how long drawing and closing took");
  }

  int run() {
    const Recording recording = readRecording(recording_);
    const Document document =
        time_ ? drawTimed(recording) : drawDocument(recording_, recording, until_);
    if (!verify_ || output_) write(document);
    return verify_ ? verify(recording, document) : 0;
  }

 private:
  Document drawTimed(const Recording& recording) const {
    Replay replay(recording);
    const auto started = Clock::now();
    const std::size_t calls = replay.draw(until_);
    const auto drawn = Clock::now();
    Document document = replay.close();
    const std::chrono::duration<double> drawing = drawn - started, closing = Clock::now() - drawn;
    std::fprintf(stderr, "%zu calls: drawing %.6f s, closing %.6f s, %.0f calls per second\n",
                 calls, drawing.count(), closing.count(),
                 static_cast<double>(calls) / std::max((drawing + closing).count(), 1e-9));
    return document;
  }

  void write(const Document& document) const {
    int replaced = 0;
    writeOutput(utf16_ ? encodeUtf16(document) : encodeUtf8(document, replaced), output_,
                {recording_});
    if (replaced > 0)
      std::cerr << recording_.string() << ": warning: " << replaced
                << " lone surrogates became U+FFFD; --utf16 keeps them\n";
  }

  int verify(const Recording& recording, const Document& document) const {
    for (const std::string& text : recording.notes()) {
      const nlohmann::json note = nlohmann::json::parse(text);
      if (!note.contains("document")) continue;
      const bool same = note["document"] == documentNote(document);
      std::cerr << recording_.string()
                << (same ? ": the document is the one that was traced\n"
                         : ": the document differs from the one that was traced\n");
      return same ? 0 : 1;
    }
    throw Failure(recording_.string() + ": has no note of a document to compare with");
  }

  static nlohmann::json documentNote(const Document& document) {
    char hash[17];
    std::snprintf(hash, sizeof hash, "%016llx",
                  static_cast<unsigned long long>(documentHash(document.data(), document.size())));
    return {{"size", document.size() + 1}, {"hash", hash}};
  }

  fs::path recording_;
  std::optional<fs::path> output_;
  bool utf16_ = false, verify_ = false, time_ = false;
  int until_ = 0;
};

}  // namespace

void addReplay(Program& program) {
  program.add<ReplayCommand>("replay", "Draw a recording and write its document");
}

}  // namespace qz::tools
