// The engine that reads a PDF: MuPDF. Nobody above this interface knows it.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "scene.h"

namespace qz::pdf {

// What the engine could not do, in one line.
class EngineError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A picture that the engine is to draw.
struct RenderJob {
  Box area;                  // units
  std::vector<Calls> calls;  // in order; each is a node's
  bool onPage = false;       // on all that is drawn before, and on white
};

class Engine {
 public:
  // Opens a file. Throws EngineError when it is no PDF, or cannot be opened without a password, or
  // with that password.
  Engine(const std::filesystem::path& file, const std::optional<std::string>& password);
  ~Engine();

  int pageCount() const;
  bool wasRepaired() const;

  // Reads a page, counted from 0. Throws EngineError.
  Scene read(int page);

  // Pictures of parts of the page that was read last, in pixels per inch. Their bounds in units
  // replace the areas of the jobs.
  std::vector<std::shared_ptr<const Picture>> render(std::vector<RenderJob>& jobs, int resolution);

  // All outlines that the texts of the page read last refer to.
  const std::vector<Outline>& outlines() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace qz::pdf
