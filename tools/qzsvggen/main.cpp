// qzsvggen: what went wrong with a page, and which call did it. Its command line; what the
// subcommands do has a file each.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <iostream>

#include "commands.h"
#include "rules.h"

namespace qz::tools {
namespace {

constexpr const char* kOutput = "Write to FILE instead of standard output";

void declare(CLI::App& app, EmitCommand& emit) {
  app.add_option("RECORDING", emit.file)->required();
  app.add_option("-o,--output", emit.output, kOutput)->type_name("FILE");
  app.footer("The program takes the name of the file for its document, UTF-16 with its mark.");
}

std::string findRule(const std::string& id) {
  const bool known = std::any_of(std::begin(kRules), std::end(kRules),
                                 [&](const Rule& each) { return each.id == id; });
  return known ? std::string() : "there is no rule \"" + id + "\"; see --rules";
}

void declare(CLI::App& app, LintCommand& lint) {
  app.add_option("FILE", lint.files, "Recordings (.jsonl) and documents");
  app.add_flag("--all", lint.all, "Show each finding, and remarks");
  app.add_flag("--json", lint.json, "Write the findings as a JSON list");
  app.add_option("--disable", lint.disabled, "Leave out a rule; may be repeated")
      ->type_name("RULE")
      ->allow_extra_args(false)
      ->check(findRule);
  app.add_flag("--pages", lint.pages,
               "The recordings are all pages of one document: check its links");
  app.add_option("--of", lint.of, "Name the calls of this recording that made the document")
      ->type_name("RECORDING");
  app.add_flag("--rules", lint.rules, "Write the table of rules, in Markdown");
  app.footer("Exit status: 0, 1 when there are errors, 2 when a file cannot be read.");
}

void declare(CLI::App& app, ListCommand& list) {
  app.add_option("FILE", list.file, "A recording (.jsonl) or a document")->required();
  app.add_flag("--statistics", list.statistics,
               "Count elements, bytes by part, and what is shared, of the document");
  app.add_flag("--map", list.map, "Write the elements of each line of a recording as JSON");
  app.footer(
      "Of a recording: the line, the call, the element that it made (or -) and the state in force "
      "behind it, parted by tabs. Of a document: an element's path, and the element.");
}

void declare(CLI::App& app, ReduceCommand& reduce) {
  app.add_option("RECORDING", reduce.file)->required();
  app.add_option("-o,--output", reduce.output, "Where the smaller recording goes")
      ->type_name("FILE")
      ->required();
  app.add_option("COMMAND", reduce.command,
                 "After --: the command and its arguments; {} is the recording")
      ->required();
  app.footer(
      "COMMAND fails when its exit status is not 0. It is run many times. A recording that cannot "
      "be read is refused before. To look for what works, let a script turn the status around.");
}

void declare(CLI::App& app, ReplayCommand& replay) {
  app.add_option("RECORDING", replay.file)->required();
  app.add_option("-o,--output", replay.output, kOutput)->type_name("FILE");
  app.add_flag("--utf16", replay.utf16, "Write UTF-16 with a byte-order mark instead of UTF-8");
  app.add_option("--until", replay.until, "Draw up to this line of the recording")
      ->type_name("LINE")
      ->check(CLI::PositiveNumber);
  app.add_flag("--verify", replay.verify,
               "Compare the document with the one that was traced; write it only with -o");
  app.add_flag("--time", replay.time, "Tell on standard error how long drawing and closing took");
}

void declare(CLI::App& app, TraceCommand& trace) {
  app.add_option("-o,--output", trace.folder, "Where the recordings go; here, unless given")
      ->type_name("FOLDER");
  app.add_option("--library", trace.library, "The real library, where the host does not find it")
      ->type_name("FILE");
  app.add_option("--tracer", trace.tracer, "The tracing library")->type_name("FILE");
  app.add_option("HOST", trace.command, "After --: the program and its arguments")->required();
  app.footer(
      "Each page becomes PROGRAM-PID-NNNN.jsonl, its larger pictures files beside it. The exit "
      "status is the host's, or 1 when nothing was recorded.");
}

struct Program {
  CLI::App& app;
  std::function<int()> run;  // of the subcommand that was given

  // Adds a subcommand, whose options go into an object that lives as long as the program.
  template <class Command>
  void add(const char* name, const char* description) {
    auto command = std::make_shared<Command>();
    CLI::App* subcommand = app.add_subcommand(name, description);
    declare(*subcommand, *command);
    subcommand->callback([this, command] { run = [command] { return command->run(); }; });
  }
};

}  // namespace
}  // namespace qz::tools

// Only what sets the program up is outside of its try; if memory ends there, so does the program.
int main(int count, char** arguments) {  // NOLINT(bugprone-exception-escape)
  using namespace qz::tools;
  CLI::App app(
      "Looks into pages that were drawn with qzsvggen: from recordings of calls (JSON "
      "Lines) and from finished documents.",
      "qzsvggen");
  app.allow_windows_style_options(false);  // a path may begin with a slash
  app.require_subcommand(1);
  app.set_version_flag("--version", "qzsvggen " QZSVGGEN_PROGRAM_VERSION);
  Program program{app, {}};
  program.add<LintCommand>("lint", "Say what goes wrong with a page, and which call did it");
  program.add<ListCommand>("list", "List calls with their state and elements, or elements");
  program.add<ReduceCommand>("reduce", "Find the smallest recording for which a command fails");
  program.add<ReplayCommand>("replay", "Draw a recording and write its document");
  program.add<EmitCommand>("emit", "Write a C program that draws the page of a recording");
  program.add<TraceCommand>("trace", "Run a program and record the pages that it draws");
  const std::string first = count > 1 ? arguments[1] : "-";
  const auto commands = app.get_subcommands({});
  if (!first.starts_with('-') &&
      std::none_of(commands.begin(), commands.end(),
                   [&](const CLI::App* command) { return command->get_name() == first; })) {
    std::cerr << "there is no subcommand \"" << first << "\"; see --help\n";
    return 2;
  }
  try {
    app.parse(count, arguments);
    return program.run();
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : 2;
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
    return 2;
  }
}
