// What a worker does: it reads a document and draws pages of it into files.
#pragma once

#include <optional>

#include "engine.h"
#include "output.h"
#include "page_writer.h"
#include "workers.h"

namespace qz::pdf {

struct DrawOptions {
  std::filesystem::path input;
  std::optional<std::string> password;
  TextMode text = TextMode::kFonts;
  int resolution = 150;
  bool exact = false;
};

class PageJob {
 public:
  static constexpr int describeDocument = -1;

  PageJob(DrawOptions options, OutputFolder folder)
      : options_(std::move(options)), folder_(std::move(folder)) {}

  // Draws a page, counted from 0, into its file, or describes the document. The first call opens
  // it. Throws EngineError and std::runtime_error.
  Answer operator()(int page);

 private:
  Answer draw(int page);

  DrawOptions options_;
  OutputFolder folder_;
  std::shared_ptr<Engine> engine_;
};

}  // namespace qz::pdf
