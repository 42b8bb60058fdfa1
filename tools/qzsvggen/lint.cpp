// qzsvggen lint: says what goes wrong with a page in readers, and which call did it.
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "document_lint.h"
#include "files.h"
#include "recording_lint.h"

namespace qz::tools {
namespace {

class LintCommand {
 public:
  void declare(CLI::App& app) {
    app.add_option("FILE", files_, "Recordings (.jsonl) and documents");
    app.add_flag("--all", telling_.all, "Show each finding, and remarks");
    app.add_flag("--json", json_, "Write the findings as a JSON list");
    app.add_option("--disable", disabled_, "Leave out a rule; may be repeated")
        ->type_name("RULE")
        ->allow_extra_args(false)
        ->check([](const std::string& id) {
          for (const Rule& each : kRules)
            if (each.id == id) return std::string();
          return "there is no rule \"" + id + "\"; see --rules";
        });
    app.add_flag("--pages", pages_,
                 "The recordings are all pages of one document: check its links");
    app.add_option("--of", of_, "Name the calls of this recording that made the document")
        ->type_name("RECORDING");
    app.add_flag("--rules", rules_, "Write the table of rules, in Markdown");
    app.footer("Exit status: 0, 1 when there are errors, 2 when a file cannot be read.");
  }

  int run() {
    if (rules_) {
      std::cout << rulesTable();
      return 0;
    }
    if (files_.empty()) throw Failure("lint needs a FILE; see qzsvggen lint --help");
    telling_.disabled.insert(disabled_.begin(), disabled_.end());
    std::vector<Findings> found;
    int status = 0;
    for (const fs::path& file : files_) {
      found.emplace_back(file.string());
      try {
        lint(file, found.back(), found.size() - 1);
      } catch (const Failure& failure) {
        std::cerr << failure.what() << '\n';
        status = 2;
      }
    }
    if (pages_) checkLinks(found);
    if (tell(found) && status == 0) status = 1;
    return status;
  }

 private:
  void lint(const fs::path& file, Findings& findings, std::size_t page) {
    if (file.extension() == ".jsonl") {
      const Recording recording = readRecording(file);
      RecordingLint(recording, findings).run(&links_, page);
    } else if (!canReadXml()) {
      throw Failure(file.string() +
                    ": this build checks recordings alone, it was made without expat");
    } else {
      lintDocument(readFile(file), findings);
    }
  }

  void checkLinks(std::vector<Findings>& found) {
    for (const Links::Use& use : links_.uses)
      if (!links_.targets.contains(use.target))
        found[use.page].add(rule("link-unresolved"), static_cast<std::size_t>(use.line),
                            "an internal link to \"" + use.target + "\", which no page has");
  }

  // Returns whether there are errors.
  bool tell(std::vector<Findings>& found) {
    nlohmann::json list = nlohmann::json::array();
    bool hasErrors = false;
    for (Findings& each : found) {
      if (of_) each.nameCalls(of_->string(), linesOfElements());
      each.prepare(telling_);
      hasErrors = hasErrors || each.hasErrors();
      if (json_)
        for (auto& finding : each.json()) list.push_back(std::move(finding));
      else
        std::cout << each.text(telling_);
    }
    if (json_) std::cout << list.dump(2) << '\n';
    return hasErrors;
  }

  std::map<std::string, int> linesOfElements() const {
    const Recording recording = readRecording(*of_);
    std::map<std::string, int> lines;
    for (const PlacedElement& each : elementsOf(recording)) lines[each.path] = each.line;
    return lines;
  }

  std::vector<fs::path> files_;
  std::vector<std::string> disabled_;
  std::optional<fs::path> of_;
  Telling telling_;
  Links links_;
  bool json_ = false, pages_ = false, rules_ = false;
};

}  // namespace

void addLint(Program& program) {
  program.add<LintCommand>("lint", "Say what goes wrong with a page, and which call did it");
}

}  // namespace qz::tools
