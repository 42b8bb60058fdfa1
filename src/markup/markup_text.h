// The text being built.
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

#include "base/utf16.h"
#include "markup/pieces.h"

namespace qz {

// Text that only grows at its end, in chunks that never move.
//
// Memory touched for the first time costs more than formatting, so markup is kept in 8 bits a
// character and widened once, into the host's buffer. A chunk holds runs of characters below 256,
// one byte each, and runs of 16-bit units for host text that needs them; each run starts with a
// four-byte header.
//
// Only growing can fail, with std::bad_alloc. append() has done nothing then; appendText() may stop
// halfway, see appendWhole().
class MarkupText {
  struct Chunk;

 public:
  MarkupText() = default;
  MarkupText(MarkupText&& other) noexcept { swap(other); }
  MarkupText& operator=(MarkupText&& other) noexcept {
    MarkupText(std::move(other)).swap(*this);
    return *this;
  }
  ~MarkupText() { clear(); }
  void swap(MarkupText& other) noexcept;

  // Appends literals, short ASCII text, numbers and other pieces, in one step.
  template <class... Pieces>
  void append(const Pieces&... pieces) {
    commit(putAll(reserve((maxSize(pieces) + ...)), pieces...));
  }

  // Appends text of any length: characters below 256, UTF-16 code units, another text.
  void appendText(std::string_view characters);
  void appendText(Utf16View units);
  void appendText(const MarkupText& other);

  // Lets `write` append to this text; if it throws, the text is as it was before.
  template <class Write>
  void appendWhole(Write write) {
    const Mark before = mark();
    try {
      write(*this);
    } catch (...) {
      rewind(before);
      throw;
    }
  }

  // For pieces written in a loop: `length` characters may be written from the returned place on,
  // and kOverrun behind them touched; commit() takes their end.
  char* reserve(size_t length) {
    if (static_cast<size_t>(limit_ - cursor_) < length) [[unlikely]]
      grow(length);
#if !defined(NDEBUG)
    reserved_ = cursor_ + length;
#endif
    return cursor_;
  }
  void commit(char* end) {
#if !defined(NDEBUG)
    assert(cursor_ <= end && end <= reserved_);
    reserved_ = end;
#endif
    cursor_ = end;
#if defined(QZSVGGEN_TIGHT_CHUNKS)
    limit_ = end;  // so that tests see every reserve() fail
#endif
  }

  // The number of UTF-16 code units.
  size_t size() const {
    return run_ == nullptr ? 0 : closedUnits_ + static_cast<size_t>(cursor_ - run_) - kHeader;
  }
  bool empty() const { return size() == 0; }

  // Writes all units to `out`, which has room for size() of them.
  void copyTo(CodeUnit* out) const;

  // Calls narrow(std::string_view) or wide(Utf16View) for each run, in order.
  template <class Narrow, class Wide>
  void forEachRun(Narrow narrow, Wide wide) const;

  // Moves the other text to this one's end; the other is empty then. Never fails: a short text is
  // copied where there is room for it, any other keeps its chunks.
  void join(MarkupText& other) noexcept;

  // Drops the text; the first chunk is kept for reuse.
  void restart() noexcept;
  void clear() noexcept;

 private:
  struct Chunk {
    Chunk* next;
    char* end;    // of the last run; valid once another chunk follows
    char* limit;  // where growth starts another chunk
    char* data() { return reinterpret_cast<char*>(this + 1); }
  };
  static constexpr size_t kHeader = 4;

  // A place to return to, as long as nothing was joined since.
  struct Mark {
    Chunk* chunk;
    char* run;
    char* cursor;
    size_t closedUnits;
  };
  Mark mark() const { return {last_, run_, cursor_, closedUnits_}; }
  void rewind(const Mark& mark) noexcept;

  QZ_NOINLINE void grow(size_t length);
  void openRun();
  void closeRun();
  void appendWide(Utf16View units);
  bool copyShort(const MarkupText& other) noexcept;
  static char* aligned(char* place) {
    return place + ((0 - reinterpret_cast<uintptr_t>(place)) & (kHeader - 1));
  }

  Chunk* first_ = nullptr;
  Chunk* last_ = nullptr;
  char* run_ = nullptr;  // header of the run that is being written, always one of bytes
  char* cursor_ = nullptr;
  char* limit_ = nullptr;
  size_t closedUnits_ = 0;
#if !defined(NDEBUG)
  char* reserved_ = nullptr;  // up to where commit() may be told to have written
#endif
};

template <class Narrow, class Wide>
void MarkupText::forEachRun(Narrow narrow, Wide wide) const {
  for (Chunk* chunk = first_; chunk != nullptr; chunk = chunk->next) {
    char* const end = chunk == last_ ? cursor_ : chunk->end;
    for (char* run = chunk->data(); run < end;) {
      uint32_t header;
      std::memcpy(&header, run, kHeader);
      char* const text = run + kHeader;
      // The open run has no length in its header yet.
      const size_t units = run == run_ ? static_cast<size_t>(end - text) : header >> 1;
      const bool isWide = run != run_ && (header & 1) != 0;
      assert(text + (isWide ? 2 * units : units) <= end);
      if (isWide)
        wide(Utf16View(reinterpret_cast<const CodeUnit*>(text), units));
      else
        narrow(std::string_view(text, units));
      run = aligned(text + (isWide ? 2 * units : units));
    }
  }
}

}  // namespace qz
