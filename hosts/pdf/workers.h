// Processes that read and draw a document, so that a crash of the engine, an endless loop or a want
// of memory costs one page.
#pragma once

#include <sys/types.h>

#include <csignal>
#include <functional>
#include <string>
#include <vector>

namespace qz::pdf {

// What a worker says of the page, or of the document, that it was asked about. It goes through a
// socket as it lies in memory.
struct Answer {
  bool failed = false;
  char message[256] = "";                                              // why
  bool damaged = false;                                                // a part may be missing
  int pageCount = 0;                                                   // of the document
  int bitmaps = 0, pictures = 0, droppedLinks = 0, untypedFields = 0;  // of a page
  size_t bytes = 0;
};

struct Limits {
  int jobs = 1;       // workers at once
  int seconds = 60;   // of the processor, for a page
  int memory = 1024;  // megabytes of a worker
};

// The user ended the program.
struct Interruption {
  int signal;
};

// While it lives, signals that end the program wait until they are looked for.
class SignalWatch {
 public:
  SignalWatch();
  SignalWatch(const SignalWatch&) = delete;
  SignalWatch& operator=(const SignalWatch&) = delete;
  ~SignalWatch();

  int descriptor() const { return descriptor_; }
  // Throws an Interruption if there is such a signal.
  void check() const;
  // Lets them through again, in a worker.
  void release() const;

 private:
  sigset_t before_;
  int descriptor_;
};

class Workers {
 public:
  // What a worker does with a number that it is given. Whatever it throws is a failure.
  using Job = std::function<Answer(int number)>;
  // Is called with each answer, and several times a second.
  using Progress = std::function<void(size_t done, size_t failed)>;

  Workers(Job job, const Limits& limits, const SignalWatch& signals)
      : job_(std::move(job)), limits_(limits), signals_(signals) {}
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;
  ~Workers();

  // The answers to all numbers, in their order, whoever gave them. A worker that dies is a failure.
  // Throws an Interruption, and std::system_error when no worker can be started.
  std::vector<Answer> ask(const std::vector<int>& numbers, const Progress& progress);

 private:
  struct Worker {
    pid_t process;
    int socket;
    size_t task;  // index of the number that it works on, or `idle`
  };

  void handOut(const std::vector<int>& numbers, size_t& next);
  std::vector<size_t> waitForAnswers() const;
  Answer hear(size_t index);

  void start();
  [[noreturn]] void serve(int socket) const;
  int end(size_t index);
  std::string causeOfDeath(int status) const;

  Job job_;
  Limits limits_;
  const SignalWatch& signals_;
  std::vector<Worker> workers_;
};

}  // namespace qz::pdf
