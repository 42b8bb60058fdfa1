// Recorded pages for tests.
#pragma once

#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "document_check.h"
#include "recording.h"

namespace qz::test {

struct RecordedPage {
  std::string name;
  tools::Recording recording;
  std::vector<std::string> functions;  // the name of each of the recording's calls
};

// All recordings in the directories of a program's arguments. One that does not exist, or holds
// none, ends the program.
inline std::vector<RecordedPage> readPages(char** directories) {
  std::vector<RecordedPage> pages;
  for (; *directories != nullptr; ++directories) {
    const size_t before = pages.size();
    for (const auto& file : std::filesystem::directory_iterator(*directories)) {
      if (file.path().extension() != ".jsonl") continue;
      pages.push_back({file.path().stem().string(), tools::Recording(*directories), {}});
      RecordedPage& page = pages.back();
      std::ifstream lines(file.path());
      for (std::string line; std::getline(lines, line); page.recording.append(line))
        if (page.recording.page() != nullptr)
          page.functions.push_back(line.substr(2, line.find('"', 2) - 2));
    }
    if (pages.size() == before) throw std::runtime_error(std::string("no page in ") + *directories);
  }
  return pages;
}

// The document that the second SVG_Close hands over, without its terminating zero.
inline Document takeDocument(SvgGenerator* generator, int32_t size) {
  Document document(static_cast<size_t>(size), SVG_Char());
  SVG_Close(generator, document.data(), size);
  document.pop_back();
  return document;
}

}  // namespace qz::test
