#include "workers.h"

#include <poll.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <system_error>
#include <type_traits>

namespace qz::pdf {
namespace {

static_assert(std::is_trivially_copyable_v<Answer>);

constexpr size_t idle = SIZE_MAX;

[[noreturn]] void throwSystemError(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

Answer failure(const std::string& message) {
  Answer answer;
  answer.failed = true;
  std::snprintf(answer.message, sizeof answer.message, "%s", message.c_str());
  return answer;
}

Answer attempt(const Workers::Job& job, int number) {
  try {
    return job(number);
  } catch (const std::bad_alloc&) {
    return failure("memory is exhausted");
  } catch (const std::exception& wrong) {
    return failure(wrong.what());
  }
}

// From now on; 0 for no limit. Time that others take from the processor does not count.
void limitTime(int seconds) {
  const itimerval timer = {{0, 0}, {seconds, 0}};
  setitimer(ITIMER_PROF, &timer, nullptr);
}

}  // namespace

SignalWatch::SignalWatch() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, signal);
  sigprocmask(SIG_BLOCK, &signals, &before_);
  descriptor_ = signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
}

SignalWatch::~SignalWatch() {
  close(descriptor_);
  release();
}

void SignalWatch::check() const {
  signalfd_siginfo signal;
  if (read(descriptor_, &signal, sizeof signal) == sizeof signal)
    throw Interruption{static_cast<int>(signal.ssi_signo)};
}

void SignalWatch::release() const { sigprocmask(SIG_SETMASK, &before_, nullptr); }

Workers::~Workers() {
  for (const Worker& worker : workers_)
    if (worker.task != idle) kill(worker.process, SIGKILL);
  while (!workers_.empty()) end(workers_.size() - 1);
}

std::vector<Answer> Workers::ask(const std::vector<int>& numbers, const Progress& progress) {
  std::vector<Answer> answers(numbers.size());
  size_t next = 0, failed = 0;
  for (size_t done = 0; done < numbers.size();) {
    handOut(numbers, next);
    for (const size_t index : waitForAnswers()) {
      Answer& answer = answers[workers_[index].task];
      answer = hear(index);
      ++done;
      failed += answer.failed ? 1 : 0;
    }
    progress(done, failed);
  }
  return answers;
}

// Each worker has one number at a time, so that a long page holds up no other.
void Workers::handOut(const std::vector<int>& numbers, size_t& next) {
  while (next < numbers.size()) {
    auto worker = std::ranges::find(workers_, idle, &Worker::task);
    if (worker == workers_.end()) {
      if (workers_.size() == static_cast<size_t>(limits_.jobs)) return;
      start();
      worker = std::prev(workers_.end());
    }
    // If this fails, its end is noticed at once.
    send(worker->socket, &numbers[next], sizeof numbers[next], MSG_NOSIGNAL);
    worker->task = next++;
  }
}

// Which workers have an answer, or have died over it; the last first. Waits for some time.
std::vector<size_t> Workers::waitForAnswers() const {
  std::vector<pollfd> sources;
  for (const Worker& worker : workers_)
    sources.push_back({worker.task == idle ? -1 : worker.socket, POLLIN, 0});
  sources.push_back({signals_.descriptor(), POLLIN, 0});
  poll(sources.data(), sources.size(), 200);
  signals_.check();
  std::vector<size_t> ready;
  for (size_t i = workers_.size(); i-- > 0;)
    if (sources[i].revents != 0) ready.push_back(i);
  return ready;
}

// After a failure a worker is not what it was when it was started: the next number goes to another.
Answer Workers::hear(size_t index) {
  Answer answer;
  const ssize_t size = recv(workers_[index].socket, &answer, sizeof answer, 0);
  workers_[index].task = idle;
  const bool died = size != sizeof answer;
  if (!died && !answer.failed) return answer;
  const int status = end(index);
  return died ? failure(causeOfDeath(status)) : answer;
}

void Workers::start() {
  int sockets[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets) != 0)
    throwSystemError("a worker cannot be started");
  const pid_t process = fork();
  close(sockets[process == 0 ? 0 : 1]);
  if (process == 0) serve(sockets[1]);
  if (process < 0) {
    close(sockets[0]);
    throwSystemError("a worker cannot be started");
  }
  workers_.push_back({process, sockets[0], idle});
}

// The life of a worker. It ends when the other side of its socket is closed, if only because the
// program is gone.
void Workers::serve(int socket) const {
  signals_.release();
  for (const Worker& other : workers_) close(other.socket);
  const rlim_t bytes = static_cast<rlim_t>(limits_.memory) << 20;
  const rlimit limit = {bytes, bytes};
  setrlimit(RLIMIT_AS, &limit);
  for (int number = 0; recv(socket, &number, sizeof number, 0) == sizeof number;) {
    limitTime(limits_.seconds);
    const Answer answer = attempt(job_, number);
    limitTime(0);
    send(socket, &answer, sizeof answer, MSG_NOSIGNAL);
  }
  _exit(0);
}

int Workers::end(size_t index) {
  const Worker worker = workers_[index];
  workers_.erase(workers_.begin() + static_cast<std::ptrdiff_t>(index));
  close(worker.socket);
  int status = 0;
  while (waitpid(worker.process, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

std::string Workers::causeOfDeath(int status) const {
  if (!WIFSIGNALED(status))
    return "the engine ended with status " + std::to_string(WEXITSTATUS(status));
  if (WTERMSIG(status) == SIGPROF)
    return "takes more than " + std::to_string(limits_.seconds) + " s";
  return std::string("the engine crashed: ") + strsignal(WTERMSIG(status));
}

}  // namespace qz::pdf
