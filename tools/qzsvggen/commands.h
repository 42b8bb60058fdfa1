// The subcommands. Each adds itself with its options to the program; what it does is its callback,
// whose result is the program's exit status.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>

namespace qz::tools {

struct Program {
  CLI::App& app;
  std::function<int()> run;  // of the subcommand that was given

  // Adds a subcommand, whose options go into an object that lives as long as the program.
  template <class Command>
  void add(const char* name, const char* description) {
    auto command = std::make_shared<Command>();
    CLI::App* subcommand = app.add_subcommand(name, description);
    command->declare(*subcommand);
    subcommand->callback([this, command] { run = [command] { return command->run(); }; });
  }
};

void addEmit(Program& program);
void addLint(Program& program);
void addList(Program& program);
void addReduce(Program& program);
void addReplay(Program& program);

void addTrace(Program& program);

}  // namespace qz::tools
