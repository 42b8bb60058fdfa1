// The text being built.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>
#include <utility>

#include "markup/decimal.h"
#include "markup/portability.h"

namespace qz {

// How the pieces of an append are written. room() is an upper bound of a piece's length, put()
// writes it and returns its end; it may touch up to MarkupText::kOverrun characters behind that.
template <size_t size>
constexpr size_t room(const char (&)[size]) {
  return size - 1;
}
template <size_t size>
char* put(char* out, const char (&literal)[size]) {
  std::memcpy(out, literal, size - 1);
  return out + size - 1;
}

inline size_t room(std::string_view text) { return text.size(); }
inline char* put(char* out, std::string_view text) {
  return out + text.copy(out, text.size());  // not memcpy: empty text may have no place
}

template <std::integral Integer>
constexpr size_t room(Integer) {
  return kDecimalRoom<Integer>;
}
template <std::integral Integer>
char* put(char* out, Integer value) {
  return writeDecimal(out, value);
}

// Further kinds of pieces have room() and put() as members.
template <class Piece>
requires requires(const Piece& piece) { piece.room(); }
size_t room(const Piece& piece) { return piece.room(); }
template <class Piece>
requires requires(const Piece& piece) { piece.room(); }
char* put(char* out, const Piece& piece) { return piece.put(out); }

// Text that only grows at its end, in chunks that never move.
//
// Memory touched for the first time costs more than formatting, so markup is kept in 8 bits a
// character and widened once, into the host's buffer. A chunk holds runs of characters below 256,
// one byte each, and runs of 16-bit units for host text that needs them; each run starts with a
// four-byte header. Chunks stay below the size from which allocators map fresh memory each time.
//
// Only growing can fail, with std::bad_alloc, and then nothing was appended.
class MarkupText {
  struct Chunk;

 public:
  static constexpr size_t kOverrun = 64;

  MarkupText() = default;
  MarkupText(MarkupText&& other) noexcept { swap(other); }
  MarkupText& operator=(MarkupText&& other) noexcept {
    MarkupText(std::move(other)).swap(*this);
    return *this;
  }
  ~MarkupText() { clear(); }

  // Appends literals, short ASCII text, numbers and other pieces, in one step. (Not a `char`, which
  // would be taken for a number.)
  template <class... Pieces>
  void append(const Pieces&... pieces) {
    char* out = reserve((room(pieces) + ...));
    ((out = put(out, pieces)), ...);
    commit(out);
  }

  // Appends text of any length: characters below 256, UTF-16 code units, another text.
  void appendText(std::string_view characters);
  void appendText(UnitView units);
  void appendText(const MarkupText& other);

  // For pieces written in a loop: `length` characters may be written from the returned place on,
  // and kOverrun behind them touched; commit() takes their end.
  char* reserve(size_t length) {
    if (static_cast<size_t>(limit_ - cursor_) < length) [[unlikely]]
      grow(length);
    return cursor_;
  }
  void commit(char* end) { cursor_ = end; }

  // The number of UTF-16 code units.
  size_t size() const { return run_ == nullptr ? 0 : closedUnits_ + (cursor_ - run_ - kHeader); }
  bool empty() const { return size() == 0; }

  // Writes all units to `out`, which has room for size() of them.
  void copyTo(Unit* out) const;

  // Calls narrow(std::string_view) or wide(UnitView) for each run, in order.
  template <class Narrow, class Wide>
  void forEachRun(Narrow narrow, Wide wide) const;

  // Moves the other text to this one's end; the other is empty then. Never fails.
  void splice(MarkupText&& other) noexcept;

  // A place to return to, as long as nothing was spliced since.
  struct Mark {
    Chunk* chunk;
    char* run;
    char* cursor;
    size_t closedUnits;
  };
  Mark mark() const { return {last_, run_, cursor_, closedUnits_}; }
  void rewind(const Mark& mark) noexcept;

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

  void swap(MarkupText& other) noexcept;
  QZ_NOINLINE void grow(size_t length);
  void openRun();
  void closeRun();
  void appendWide(UnitView units);
  static char* aligned(char* place) {
    return place + (-reinterpret_cast<uintptr_t>(place) & (kHeader - 1));
  }

  Chunk* first_ = nullptr;
  Chunk* last_ = nullptr;
  char* run_ = nullptr;  // header of the run that is being written, always one of bytes
  char* cursor_ = nullptr;
  char* limit_ = nullptr;
  size_t closedUnits_ = 0;
};

// Runs something that appends; if it fails, the text is as it was before.
template <class Writer>
void appendWhole(MarkupText& out, Writer write) {
  const MarkupText::Mark before = out.mark();
  try {
    write();
  } catch (...) {
    out.rewind(before);
    throw;
  }
}

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
      if (isWide)
        wide(UnitView(reinterpret_cast<const Unit*>(text), units));
      else
        narrow(std::string_view(text, units));
      run = aligned(text + (isWide ? 2 * units : units));
    }
  }
}

}  // namespace qz
