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

// All recordings in these directories; says which directories do not exist.
inline std::vector<RecordedPage> readPages(char** begin, char** end) {
  std::vector<RecordedPage> pages;
  for (; begin != end; ++begin) {
    if (!std::filesystem::is_directory(*begin)) {
      std::cout << *begin << " does not exist: its pages are left out\n";
      continue;
    }
    for (const auto& file : std::filesystem::directory_iterator(*begin)) {
      if (file.path().extension() != ".jsonl") continue;
      RecordedPage& page =
          pages.emplace_back(file.path().stem().string(), tools::Recording(*begin));
      std::ifstream lines(file.path());
      for (std::string line; std::getline(lines, line); page.recording.append(line))
        if (page.recording.page() != nullptr)
          page.functions.push_back(line.substr(2, line.find('"', 2) - 2));
    }
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
