// qzsvggen lint: says what goes wrong with a page in readers, and which call did it.
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "document_lint.h"
#include "recording_lint.h"

namespace qz::tools {
namespace {

void lint(const fs::path& file, Findings& findings, Links& links, std::size_t page) {
  if (file.extension() == ".jsonl") {
    const Recording recording = readRecording(file);
    RecordingLint(recording, findings).run(&links, page);
  } else if (!canReadXml()) {
    throw Failure(file.string() +
                  ": this build checks recordings alone, it was made without expat");
  } else {
    lintDocument(readFile(file), findings);
  }
}

void checkLinks(const Links& links, std::vector<Findings>& found) {
  for (const Links::Use& use : links.uses)
    if (!links.targets.contains(use.target))
      found[use.page].add(rule("link-unresolved"), static_cast<std::size_t>(use.line),
                          "an internal link to \"" + use.target + "\", which no page has");
}

std::map<std::string, int> linesOfElements(const fs::path& file) {
  const Recording recording = readRecording(file);
  std::map<std::string, int> lines;
  for (const PlacedElement& each : elementsOf(recording)) lines[each.path] = each.line;
  return lines;
}

// Returns whether there are errors.
bool tell(const LintCommand& given, std::vector<Findings>& found) {
  const Telling telling{given.all, {given.disabled.begin(), given.disabled.end()}};
  nlohmann::json list = nlohmann::json::array();
  bool hasErrors = false;
  for (Findings& each : found) {
    if (given.of) each.nameCalls(given.of->string(), linesOfElements(*given.of));
    each.prepare(telling);
    hasErrors = hasErrors || each.hasErrors();
    if (given.json)
      for (auto& finding : each.json()) list.push_back(std::move(finding));
    else
      std::cout << each.text(telling);
  }
  if (given.json) std::cout << list.dump(2) << '\n';
  return hasErrors;
}

}  // namespace

int LintCommand::run() const {
  if (rules) {
    std::cout << rulesTable();
    return 0;
  }
  if (files.empty()) throw Failure("lint needs a FILE; see qzsvggen lint --help");
  std::vector<Findings> found;
  Links links;
  int status = 0;
  for (const fs::path& file : files) {
    found.emplace_back(file.string());
    try {
      lint(file, found.back(), links, found.size() - 1);
    } catch (const Failure& failure) {
      std::cerr << failure.what() << '\n';
      status = 2;
    }
  }
  if (pages) checkLinks(links, found);
  if (tell(*this, found) && status == 0) status = 1;
  return status;
}

}  // namespace qz::tools
