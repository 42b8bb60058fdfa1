// Memory ends, or the document grows too long: nothing crashes or leaks, and what is drawn and
// closed afterwards is a document. Built with the library's sources, each of whose steps allocates.
//
//     exhaustion_test FAILURES DIRECTORY...
//
// FAILURES is the number of allocations that fail in turn, for each recording in the directories,
// evenly spread; "all" lets each of them fail.
#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>
#include <optional>
#include <set>

#include "api/svg_generator.h"
#include "pages.h"

namespace {

using namespace qz::test;

// ---- Memory that ends ---------------------------------------------------------------------------

// While the library is called, its allocations are counted, and those of some numbers fail.
struct Memory {
  bool counting = false;
  int64_t held = 0;  // allocations that were not freed yet
  uint64_t count = 0;
  uint64_t firstFailing = 0;  // 0 for none
  uint64_t lastFailing = 0;
  bool failed() const { return firstFailing != 0 && count >= firstFailing; }
  void recover() { firstFailing = lastFailing = 0; }
} memory;

void* allocate(size_t size, size_t alignment) {
  if (memory.counting && ++memory.count >= memory.firstFailing &&
      memory.count <= memory.lastFailing)
    return nullptr;
  void* place = nullptr;
  if (posix_memalign(&place, alignment, size) != 0) return nullptr;
  memory.held += memory.counting;
  return place;
}

void release(void* place) {
  memory.held -= memory.counting && place != nullptr;
  std::free(place);
}

void* allocateOrThrow(size_t size, size_t alignment) {
  if (void* const place = allocate(size, alignment)) return place;
  throw std::bad_alloc();
}

constexpr size_t kAlignment = __STDCPP_DEFAULT_NEW_ALIGNMENT__;

}  // namespace

void* operator new(size_t size) { return allocateOrThrow(size, kAlignment); }
void* operator new(size_t size, std::align_val_t alignment) {
  return allocateOrThrow(size, std::max(kAlignment, static_cast<size_t>(alignment)));
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return allocate(size, kAlignment);
}
void operator delete(void* place) noexcept { release(place); }
void operator delete(void* place, size_t) noexcept { release(place); }
void operator delete(void* place, std::align_val_t) noexcept { release(place); }
void operator delete(void* place, size_t, std::align_val_t) noexcept { release(place); }

namespace {

template <class Call>
auto counted(Call call) {
  memory.counting = true;
  const auto result = call();
  memory.counting = false;
  return result;
}

// ---- Pages that are drawn meanwhile -------------------------------------------------------------

void require(bool holds, const std::string& rule) {
  if (holds) return;
  std::cerr << "does not hold: " << rule << '\n';
  std::exit(1);
}

constexpr size_t kNoCall = std::numeric_limits<size_t>::max();

struct Outcome {
  std::optional<Document> document;  // none when SVG_Create failed
  size_t failedCall = kNoCall;       // the drawing call in which memory ended first
};

// Draws a page, but for one call, while the allocations of these numbers fail. A close that fails
// is repeated, with memory.
Outcome draw(const RecordedPage& page, uint64_t firstFailing, uint64_t lastFailing,
             size_t omittedCall = kNoCall) {
  memory = {.firstFailing = firstFailing, .lastFailing = lastFailing};
  Outcome outcome;
  SvgGenerator* const generator = counted([&] { return SVG_Create(page.recording.page()); });
  require((generator == nullptr) == memory.failed(), "only without memory there is no generator");
  if (generator == nullptr) return outcome;
  const auto& calls = page.recording.calls();
  for (size_t i = 0; i < calls.size(); ++i) {
    if (i == omittedCall) continue;
    counted([&] { return calls[i](generator), 0; });
    if (memory.failed() && outcome.failedCall == kNoCall) outcome.failedCall = i;
  }
  if (outcome.failedCall != kNoCall) memory.recover();  // the close may not fail, too
  int32_t size = counted([&] { return SVG_Close(generator, nullptr, 0); });
  require((size == 0) == memory.failed(), "only without memory a close returns 0");
  memory.recover();
  if (size == 0) size = counted([&] { return SVG_Close(generator, nullptr, 0); });
  outcome.document = Document(static_cast<size_t>(size), u'~');
  counted([&] { return SVG_Close(generator, outcome.document->data(), size); });
  require(outcome.document->back() == 0, "a document ends with a zero");
  outcome.document->pop_back();
  counted([&] { return SVG_Delete(generator); });
  require(memory.held == 0, "all memory is freed");
  return outcome;
}

bool isInBlock(const RecordedPage& page, size_t call) {
  while (call > 0) {
    const std::string& function = page.functions[--call];
    if (function == "SVG_BeginCharacterBlock") return true;
    if (function == "SVG_EndCharacterBlock") return false;
  }
  return false;
}

// A call that failed left nothing behind, but for what character blocks have begun and the stored
// content of a picture that is not placed.
bool leavesNothing(const RecordedPage& page, size_t call) {
  return page.functions[call] != "SVG_DrawImage" && !isInBlock(page, call);
}

void checkFailure(const RecordedPage& page, const Document& whole, uint64_t failing) {
  const std::string which = page.name + ", allocation " + std::to_string(failing);
  const Outcome once = draw(page, failing, failing);
  if (!once.document) return;
  const std::string fault = documentFault(*once.document);
  require(fault.empty(), which + ": " + fault);
  if (once.failedCall == kNoCall)
    require(*once.document == whole, which + ": a failed close leaves no trace");
  else if (leavesNothing(page, once.failedCall))
    require(*once.document == *draw(page, 0, 0, once.failedCall).document,
            which + ": a failed " + page.functions[once.failedCall] + " leaves no trace");

  const Outcome fromThenOn = draw(page, failing, std::numeric_limits<uint64_t>::max());
  const std::string laterFault = documentFault(*fromThenOn.document);
  require(laterFault.empty(), which + " and all after it: " + laterFault);
}

// ---- A document that is too long ----------------------------------------------------------------

// The page, if it were so much longer, has just the largest size, and with one unit more none.
void checkLimit(const RecordedPage& page, const Document& whole) {
  constexpr int32_t kLargest = std::numeric_limits<int32_t>::max();
  SvgGenerator* const generator = SVG_Create(page.recording.page());
  for (const auto& call : page.recording.calls()) call(generator);
  generator->extraLength = kLargest - static_cast<int32_t>(whole.size());
  require(SVG_Close(generator, nullptr, 0) == 0, "a document that is too long is not written");
  --generator->extraLength;
  require(SVG_Close(generator, nullptr, 0) == kLargest, "the longest one is, from the same page");
  generator->extraLength = 0;
  require(takeDocument(generator, static_cast<int32_t>(whole.size()) + 1) == whole,
          "and it is the whole document");
  SVG_Delete(generator);
}

// ---- A page -------------------------------------------------------------------------------------

void checkPage(const RecordedPage& page, uint64_t failures) {
  const Document whole = *draw(page, 0, 0).document;
  checkLimit(page, whole);
  const uint64_t allocations = memory.count;
  const uint64_t count = std::min(failures, allocations);
  for (uint64_t i = 0; i < count; ++i) checkFailure(page, whole, 1 + i * allocations / count);
  std::cout << page.name << ": " << count << " of " << allocations << " allocations failed\n";
}

}  // namespace

int main(int, char** arguments) {
  const std::string failures = arguments[1];
  for (const RecordedPage& page : readPages(arguments + 2))
    checkPage(page,
              failures == "all" ? std::numeric_limits<uint64_t>::max() : std::stoull(failures));
}
