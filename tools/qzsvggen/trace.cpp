// qzsvggen trace: runs a host with the tracing library before the real one.
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <set>

#include "commands.h"

#if !defined(_WIN32)
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace qz::tools {
namespace {

constexpr const char* kOtherWays =
    "  - A host that loads the library by its path is not reached this way: give it the path of\n"
    "    the tracing library instead, or put that into the place of the file, with the real one\n"
    "    beside it as libqzsvggen-real.so.1 (on Windows qzsvggen-real.dll).\n"
    "  - A host that is linked statically, or has more rights than you, is not reached either.\n";

#if !defined(_WIN32)

std::set<fs::path> recordingsIn(const fs::path& folder) {
  std::set<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder))
    if (entry.path().extension() == ".jsonl") files.insert(entry.path());
  return files;
}

// Beside the program, as packages and the build put it.
fs::path findTracingLibrary() {
  const fs::path program = fs::read_symlink("/proc/self/exe").parent_path();
  for (const char* folder :
       {".", "../lib", "../lib/qzsvggen", "../trace", QZSVGGEN_LIBRARY_FOLDER}) {
    const fs::path candidate = program / folder / "libqzsvggen-trace.so";
    if (fs::exists(candidate)) return fs::canonical(candidate);
  }
  throw Failure("libqzsvggen-trace.so is not found beside the program; give it with --tracer");
}

// Returns the exit status, as a shell tells it.
int runHost(std::vector<std::string> command) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (std::string& each : command) arguments.push_back(each.data());
  arguments.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    execvp(arguments[0], arguments.data());
    std::cerr << command[0] << ": cannot be run: " << std::strerror(errno) << '\n';
    _exit(127);
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

#endif

}  // namespace

int TraceCommand::run() const {
#if defined(_WIN32)
  throw Failure(std::string("On Windows put the tracing qzsvggen.dll in place of the real one:\n") +
                kOtherWays);
#else
  fs::create_directories(folder);
  const std::set<fs::path> before = recordingsIn(folder);
  const std::string tracingLibrary =
      (tracer.empty() ? findTracingLibrary() : fs::absolute(tracer)).string();
  const char* preloaded = std::getenv("LD_PRELOAD");
  setenv("LD_PRELOAD", (preloaded ? tracingLibrary + ":" + preloaded : tracingLibrary).c_str(), 1);
  setenv("QZSVGGEN_TRACE_FOLDER", fs::absolute(folder).c_str(), 1);
  if (!library.empty()) setenv("QZSVGGEN_TRACE_LIBRARY", fs::absolute(library).c_str(), 1);
  const int status = runHost(command);
  const std::size_t count = recordingsIn(folder).size() - before.size();
  if (count > 0) {
    std::cerr << count << (count == 1 ? " page" : " pages") << " recorded in " << folder.string()
              << '\n';
    return status;
  }
  std::cerr << "Nothing was recorded: " << command[0] << " called no SVG_Create that was seen.\n"
            << kOtherWays;
  return status != 0 ? status : 1;
#endif
}

}  // namespace qz::tools
