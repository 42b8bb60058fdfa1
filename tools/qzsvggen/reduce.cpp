// qzsvggen reduce: finds the smallest recording for which a command still fails.
#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <sstream>

#include "commands.h"

#if !defined(_WIN32)
#include <sys/wait.h>

#include <csignal>
#endif

namespace qz::tools {
namespace {

using Lines = std::vector<std::string>;

// An argument as a shell takes it.
std::string shellWord(const std::string& argument) {
#if defined(_WIN32)
  return "\"" + argument + "\"";
#else
  std::string text = "'";
  for (const char c : argument) text += c == '\'' ? "'\\''" : std::string(1, c);
  return text + "'";
#endif
}

class Reduction {
 public:
  explicit Reduction(const ReduceCommand& given) : given_(given) {}

  int run() {
    // Beside the recording, where its pictures are found.
    const std::string name =
        ".qzsvggen-reduce-" + std::to_string(Clock::now().time_since_epoch().count()) + ".jsonl";
    trial_ = given_.file.parent_path() / name;
    const struct Remove {
      const fs::path& file;
      ~Remove() {
        std::error_code ignored;
        fs::remove(file, ignored);
      }
    } remove{trial_};

    readLines();
    if (!fails(lines_))
      throw Failure(given_.file.string() + ": the command does not fail for the whole recording");
    const std::size_t before = lines_.size();
    reduce();
    writeOutput(text(lines_), given_.output, {given_.file});
    std::cerr << given_.output.string() << ": " << lines_.size() << " of " << before
              << " calls, in " << runs_ << " runs\n";
    return 0;
  }

 private:
  // The first call is kept apart: it creates the page. Notes are left out, and a call that was cut
  // off.
  void readLines() {
    const Recording recording = readRecording(given_.file);  // says what is wrong with it
    auto call = recording.calls().begin();
    std::istringstream in(readFile(given_.file));
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
      if (number == recording.pageLine()) {
        create_ = line;
      } else if (call != recording.calls().end() && call->line == number) {
        lines_.push_back(line);
        ++call;
      }
    }
  }

  std::string text(const Lines& lines) const {
    std::string all = create_ + "\n";
    for (const std::string& line : lines) all += line + "\n";
    return all;
  }

  bool fails(const Lines& lines) {
    ++runs_;
    if (progress_.isDue())
      progress_.show(std::to_string(lines_.size()) + " calls left, run " + std::to_string(runs_));
    writeOutput(text(lines), trial_);
    std::string command;
    for (std::string argument : given_.command) {
      for (std::size_t at = 0; (at = argument.find("{}", at)) != std::string::npos;) {
        argument.replace(at, 2, trial_.string());
        at += trial_.string().size();
      }
      command += (command.empty() ? "" : " ") + shellWord(argument);
    }
#if defined(_WIN32)
    const int status = std::system(("\"" + command + " >NUL 2>&1\"").c_str());
#else
    const int status = std::system((command + " >/dev/null 2>&1").c_str());
    if (WIFEXITED(status) && WEXITSTATUS(status) == 127)
      throw Failure(given_.command.front() + ": cannot be run");
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) throw Failure("interrupted");
#endif
    return status != 0;
  }

  // Delta debugging: without a part first, of ever more and smaller parts, until no single line can
  // be left out.
  void reduce() {
    for (std::size_t parts = 2; !lines_.empty();) {
      parts = std::min(parts, lines_.size());
      const std::size_t size = (lines_.size() + parts - 1) / parts;
      const std::size_t before = lines_.size();
      for (std::size_t start = 0; start < lines_.size();) {
        Lines rest(lines_.begin(), lines_.begin() + static_cast<std::ptrdiff_t>(start));
        const std::size_t end = std::min(start + size, lines_.size());
        rest.insert(rest.end(), lines_.begin() + static_cast<std::ptrdiff_t>(end), lines_.end());
        if (fails(rest))
          lines_ = std::move(rest);
        else
          start = end;
      }
      if (lines_.size() == before && size == 1) break;
      parts = lines_.size() < before ? std::max<std::size_t>(2, parts / 2) : parts * 2;
    }
  }

  const ReduceCommand& given_;
  fs::path trial_;
  std::string create_;
  Lines lines_;
  int runs_ = 0;
  Progress progress_;
};

}  // namespace

int ReduceCommand::run() const { return Reduction(*this).run(); }

}  // namespace qz::tools
