// qzsvggen: what went wrong with a page, and which call did it. One file a subcommand.
#include <algorithm>
#include <iostream>

#include "commands.h"
#include "files.h"

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
  addLint(program);
  addList(program);
  addReduce(program);
  addReplay(program);
  addEmit(program);
  addTrace(program);
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
