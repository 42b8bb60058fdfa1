#include "markup/markup_text.h"

#include <algorithm>
#include <new>

namespace qz {
namespace {

// Chunks grow with the text, since allocators keep freed memory for the next page only in part.
// glibc gives the heap's end back when it is twice as large as the largest block that it has seen
// freed, be that at most 32 MiB; jemalloc gives blocks of 8 MiB and more back at once. So a page's
// last chunk is most of it, and of the large ones only very large pages have some.
constexpr size_t kFirstChunk = 4096;
constexpr size_t kLargeChunk = (size_t{7} << 20) - 65536;
constexpr size_t kLargestChunk = (size_t{32} << 20) - 65536;

// Long text is taken in steps of this size, each all bytes or all 16-bit units.
constexpr size_t kStep = 1024;

bool fitsBytes(Utf16View units) {
  unsigned bits = 0;
  for (const CodeUnit unit : units) bits |= unit;
  return bits < 256;
}

CodeUnit* widen(std::string_view characters, CodeUnit* out) {
  for (const char character : characters) *out++ = static_cast<unsigned char>(character);
  return out;
}

}  // namespace

void MarkupText::swap(MarkupText& other) noexcept {
  std::swap(first_, other.first_);
  std::swap(last_, other.last_);
  std::swap(run_, other.run_);
  std::swap(cursor_, other.cursor_);
  std::swap(limit_, other.limit_);
  std::swap(closedUnits_, other.closedUnits_);
}

void MarkupText::grow(size_t length) {
#if defined(QZSVGGEN_TIGHT_CHUNKS)
  const size_t capacity = kHeader + length;
#else
  const size_t largest = size() < kLargeChunk ? kLargeChunk : kLargestChunk;
  const size_t wanted = std::clamp(7 * size(), kFirstChunk, largest) - sizeof(Chunk) - kOverrun;
  const size_t capacity = std::max(wanted, kHeader + length);
#endif
  auto* chunk = static_cast<Chunk*>(::operator new(sizeof(Chunk) + capacity + kOverrun));
  chunk->next = nullptr;
  chunk->limit = chunk->data() + capacity;
  if (last_ == nullptr) {
    first_ = chunk;
  } else {
    closeRun();
    last_->end = cursor_;
    last_->next = chunk;
  }
  last_ = chunk;
  limit_ = chunk->limit;
  cursor_ = chunk->data();
  openRun();
}

void MarkupText::openRun() {
  run_ = aligned(cursor_);
  cursor_ = run_ + kHeader;
}

void MarkupText::closeRun() {
  const auto units = static_cast<uint32_t>(cursor_ - run_) - static_cast<uint32_t>(kHeader);
  const uint32_t header = units << 1;
  std::memcpy(run_, &header, kHeader);
  closedUnits_ += units;
}

void MarkupText::appendText(std::string_view characters) {
  while (!characters.empty()) {
    const size_t length = std::min(characters.size(), kStep);
    append(characters.substr(0, length));
    characters.remove_prefix(length);
  }
}

void MarkupText::appendText(Utf16View units) {
  while (!units.empty()) {
    const Utf16View step = units.substr(0, kStep);
    if (fitsBytes(step)) {
      char* const out = reserve(step.size());
      for (size_t i = 0; i < step.size(); ++i) out[i] = static_cast<char>(step[i]);
      commit(out + step.size());
    } else {
      appendWide(step);
    }
    units.remove_prefix(step.size());
  }
}

void MarkupText::appendText(const MarkupText& other) {
  other.forEachRun([this](std::string_view run) { appendText(run); },
                   [this](Utf16View run) { appendText(run); });
}

// A run of its own, between two runs of bytes.
void MarkupText::appendWide(Utf16View units) {
  reserve(2 * units.size() + 4 * kHeader);
  if (cursor_ != run_ + kHeader) {
    closeRun();
    openRun();
  }
  const uint32_t header = static_cast<uint32_t>(units.size()) << 1 | 1;
  std::memcpy(run_, &header, kHeader);
  std::memcpy(cursor_, units.data(), 2 * units.size());
  cursor_ += 2 * units.size();
  closedUnits_ += units.size();
  openRun();
  commit(cursor_);
}

void MarkupText::copyTo(CodeUnit* out) const {
  forEachRun([&out](std::string_view run) { out = widen(run, out); },
             [&out](Utf16View run) {
               std::memcpy(out, run.data(), 2 * run.size());
               out += run.size();
             });
}

void MarkupText::join(MarkupText& other) noexcept {
  if (other.empty()) return;
  if (first_ == nullptr) {
    swap(other);
    return;
  }
  closeRun();
  if (copyShort(other)) {
    other.restart();
    return;
  }
  last_->end = cursor_;
  last_->next = other.first_;
  last_ = other.last_;
  run_ = other.run_;
  cursor_ = other.cursor_;
  limit_ = other.limit_;
  closedUnits_ += other.closedUnits_;
  other.first_ = nullptr;
  other.clear();
}

// Copies a text that is a single small chunk, with its runs as they are, behind the run that was
// closed. Linked instead, each small text would leave most of a chunk unused.
bool MarkupText::copyShort(const MarkupText& other) noexcept {
  char* const place = aligned(cursor_);
  char* const source = other.first_->data();
  const auto length = static_cast<size_t>(other.cursor_ - source);
  if (other.first_ != other.last_ || length > kFirstChunk) return false;
  if (place > limit_ || static_cast<size_t>(limit_ - place) < length) return false;
  std::memcpy(place, source, length);
  run_ = place + (other.run_ - source);
  cursor_ = place + length;
  closedUnits_ += other.closedUnits_;
  return true;
}

void MarkupText::rewind(const Mark& mark) noexcept {
  if (mark.chunk == nullptr) {
    clear();
    return;
  }
  Chunk* chunk = mark.chunk == last_ ? nullptr : mark.chunk->next;
  while (chunk != nullptr) ::operator delete(std::exchange(chunk, chunk->next));
  mark.chunk->next = nullptr;
  last_ = mark.chunk;
  run_ = mark.run;
  cursor_ = mark.cursor;
  limit_ = mark.chunk->limit;
  closedUnits_ = mark.closedUnits;
}

void MarkupText::restart() noexcept {
#if defined(QZSVGGEN_TIGHT_CHUNKS)
  clear();
#else
  if (first_ != nullptr) rewind({first_, first_->data(), first_->data() + kHeader, 0});
#endif
}

void MarkupText::clear() noexcept {
  while (first_ != nullptr) ::operator delete(std::exchange(first_, first_->next));
  last_ = nullptr;
  run_ = cursor_ = limit_ = nullptr;
  closedUnits_ = 0;
}

}  // namespace qz
