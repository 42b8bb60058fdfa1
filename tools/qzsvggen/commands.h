// The subcommands: what each may be given, and what it does with it. run() returns the program's
// exit status, or throws Failure. How the command line says it stands in main.cpp alone, since
// CLI11 takes long to compile.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "files.h"

namespace qz::tools {

struct EmitCommand {
  fs::path file;
  std::optional<fs::path> output;

  int run() const;
};

struct LintCommand {
  std::vector<fs::path> files;
  std::vector<std::string> disabled;
  std::optional<fs::path> of;
  bool all = false, json = false, pages = false, rules = false;

  int run() const;
};

struct ListCommand {
  fs::path file;
  bool statistics = false, map = false;

  int run() const;
};

struct ReduceCommand {
  fs::path file, output;
  std::vector<std::string> command;

  int run() const;
};

struct ReplayCommand {
  fs::path file;
  std::optional<fs::path> output;
  bool utf16 = false, verify = false, time = false;
  int until = 0;

  int run() const;
};

struct TraceCommand {
  fs::path folder = ".", library, tracer;
  std::vector<std::string> command;

  int run() const;
};

}  // namespace qz::tools
