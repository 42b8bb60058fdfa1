// What lint found, and how it is told.
#pragma once

#include <cstddef>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <set>
#include <string>
#include <vector>

#include "rules.h"

namespace qz::tools {

struct Finding {
  const Rule* rule;
  std::string file;
  std::size_t place = 0;  // the line of a recording, the offset in bytes of a document
  std::string element;    // of a document, its path
  std::string call;       // that made the element, as FILE:LINE
  std::string cause;      // the rule's, or one with numbers
};

struct Telling {
  bool all = false;                // each finding, and remarks
  std::set<std::string> disabled;  // ids
};

class Findings {
 public:
  explicit Findings(std::string file) : file_(std::move(file)) {}

  void add(const Rule& rule, std::size_t place, std::string cause = {}, std::string element = {});
  // Names the calls that made the elements, by the elements' paths; one inside a picture is made by
  // the call of the picture.
  void nameCalls(const std::string& recording, const std::map<std::string, int>& lines);
  const std::vector<Finding>& all() const { return all_; }

  // Removes what is not to be told, and puts the rest in the order of places.
  void prepare(const Telling& telling);
  bool hasErrors() const;

  std::string text(const Telling& telling) const;
  nlohmann::json json() const;

 private:
  std::string file_;
  std::vector<Finding> all_;
};

// The table of rules in Markdown, as the guide has it.
std::string rulesTable();

}  // namespace qz::tools
