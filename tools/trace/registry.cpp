#include "registry.h"

#include <cstdlib>
#include <filesystem>

#include "document_hash.h"

#if defined(_WIN32)
#include <process.h>
#else
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace qz::tools {
namespace {

struct Registry {
  std::mutex mutex;
  std::unordered_map<SvgGenerator*, std::unique_ptr<TracedPage>> pages;
  std::atomic<bool> isRecording = true;
};

// Never destroyed: the host may draw while it exits.
Registry& registry() {
  static Registry& all = *new Registry;
  return all;
}

// Pages that are not deleted when the program ends.
void finish() {
  Registry& all = registry();
  if (!all.isRecording.exchange(false)) return;
  const std::unique_lock lock(all.mutex, std::try_to_lock);
  if (!lock.owns_lock()) return;
  for (const auto& [generator, page] : all.pages) {
    const std::unique_lock pageLock(page->mutex, std::try_to_lock);
    if (pageLock.owns_lock() && page->isLive()) page->end("the generator was never deleted");
  }
}

struct AtExit {
  AtExit() {
    registry();
#if !defined(_WIN32)
    pthread_atfork(nullptr, nullptr, [] { registry().isRecording = false; });
#endif
  }
  ~AtExit() { finish(); }
};

std::string programName() {
#if defined(_WIN32)
  char path[4096];
  const DWORD length = GetModuleFileNameA(nullptr, path, sizeof path);
  std::string name = std::filesystem::path(std::string(path, length)).stem().string();
#else
  std::string name = program_invocation_short_name;
#endif
  for (char& c : name)
    if (static_cast<unsigned char>(c) <= ' ' || std::string_view("/\\:\"{}").find(c) < 6) c = '_';
  return name;
}

int processId() {
#if defined(_WIN32)
  return _getpid();
#else
  return getpid();
#endif
}

// The page that this thread looked up last.
thread_local SvgGenerator* latestGenerator = nullptr;
thread_local TracedPage* latestPage = nullptr;

TracedPage* find(SvgGenerator* generator) {
  // A record outlives its generator, so what was found once is found for ever.
  if (generator == latestGenerator) return latestPage;
  Registry& all = registry();
  const std::lock_guard lock(all.mutex);
  const auto found = all.pages.find(generator);
  if (found == all.pages.end()) return nullptr;
  latestGenerator = generator;
  return latestPage = found->second.get();
}

}  // namespace

void TracedPage::begin(std::unique_ptr<TraceFile> file) {
  file_ = std::move(file);
  isLive_ = true;
  closeIsPending_ = false;
  promised_ = 1;
  document_.clear();
  problems_.clear();
}

TraceFile* TracedPage::beginLine() {
  if (!file_ || !file_->isOpen()) return nullptr;
  file_->beginLine();
  if (closeIsPending_) {
    file_->begin("SVG_Close");
    file_->end();
    file_->beginLine();
    closeIsPending_ = false;
  }
  return file_.get();
}

void TracedPage::noteClose(int32_t promised) {
  if (closeIsPending_) beginLine();
  closeIsPending_ = true;
  promised_ = promised;
  document_.clear();
}

void TracedPage::noteHandOver(const SVG_Char* buffer, int32_t size) {
  if (size != promised_)
    return noteProblem("SVG_Close with a size of " + std::to_string(size) + " instead of " +
                       std::to_string(promised_) + ": nothing was copied");
  if (closeIsPending_) {
    char text[64];
    std::snprintf(
        text, sizeof text, "{\"size\":%d,\"hash\":\"%016llx\"}", static_cast<int>(size),
        static_cast<unsigned long long>(documentHash(buffer, static_cast<std::size_t>(size) - 1)));
    document_ = text;
  }
  promised_ = 1;
}

void TracedPage::end(const char* problem) {
  isLive_ = false;
  if (!file_) return;
  if (problem != nullptr) noteProblem(problem);
  if (!closeIsPending_) noteProblem("SVG_Close was not called behind the last call");
  closeIsPending_ = false;
  if (TraceFile* out = beginLine()) {
    out->raw("{");
    if (!document_.empty()) out->raw("\"document\":" + document_ + ",");
    out->raw("\"problems\":[");
    const char* separator = "";
    for (const auto& [text, count] : problems_) {
      out->raw(separator);
      out->quoted(count > 1 ? text + " (" + std::to_string(count) + " times)" : text);
      separator = ",";
    }
    out->raw("]}\n");
  }
  path_ = file_->path();
  file_.reset();
}

void TracedPage::appendProblem(const std::string& problem) {
  if (++problems_[problem] > 1) return;
  sayOfTrace(problem);
  if (std::FILE* file = std::fopen(path_.c_str(), "ab")) {
    std::fprintf(file, "{\"problems\":[\"%s\"]}\n", problem.c_str());
    std::fclose(file);
  }
}

HeldPage::HeldPage(SvgGenerator* generator, std::string_view function) {
  if (generator == nullptr || !registry().isRecording.load(std::memory_order_relaxed)) return;
  TracedPage* page = find(generator);
  if (page == nullptr) {
    static std::atomic<bool> said = false;
    if (!said.exchange(true))
      sayOfTrace(std::string(function) + " got a handle that no SVG_Create has returned");
    return;
  }
  const bool isAlone = page->mutex.try_lock();
  if (!isAlone) page->mutex.lock();
  if (!page->isLive()) {
    page->appendProblem(std::string(function) + " got a deleted handle");
    page->mutex.unlock();
    return;
  }
  if (!isAlone) page->noteProblem("two threads at once on this generator");
  page_ = page;
}

HeldPage HeldPage::ofThread() {
  HeldPage held;
  if (latestPage == nullptr || !registry().isRecording) return held;
  latestPage->mutex.lock();
  if (latestPage->isLive())
    held.page_ = latestPage;
  else
    latestPage->mutex.unlock();
  return held;
}

std::unique_ptr<TraceFile> openTrace() {
  static const AtExit atExit;
  if (!registry().isRecording) return nullptr;
  static const std::string folder = [] {
    const char* given = std::getenv("QZSVGGEN_TRACE_FOLDER");
    return std::string(given != nullptr && *given != '\0' ? given : ".");
  }();
  static const std::string prefix = programName() + "-" + std::to_string(processId());
  return std::make_unique<TraceFile>(folder, prefix);
}

void registerPage(SvgGenerator* generator, std::unique_ptr<TraceFile> file) {
  Registry& all = registry();
  TracedPage* page = nullptr;
  {
    const std::lock_guard lock(all.mutex);
    std::unique_ptr<TracedPage>& entry = all.pages[generator];
    if (!entry) entry = std::make_unique<TracedPage>();
    page = entry.get();
  }
  latestGenerator = generator;
  latestPage = page;
  const std::lock_guard lock(page->mutex);
  page->begin(std::move(file));
}

}  // namespace qz::tools
