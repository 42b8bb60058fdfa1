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

class Engine {
 public:
  // Opens a file. Throws EngineError when it is no PDF, or cannot be opened without a password, or
  // with that password.
  Engine(const std::filesystem::path& file, const std::optional<std::string>& password);
  ~Engine();

  int pageCount() const;
  bool wasRepaired() const;

  // Reads a page, counted from 0. What only the engine can draw becomes bitmaps of so many pixels
  // per inch. Throws EngineError.
  Scene read(int page, int resolution);

  // All outlines that the texts of the page read last refer to.
  const std::vector<Outline>& outlines() const;
  // All shapes that these outlines refer to.
  const std::vector<Shape>& shapes() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace qz::pdf
