#include "markup/markup_text.h"

#include <algorithm>
#include <new>

namespace qz {
namespace {

// Chunks grow to this size. Tests of exhausted memory build with chunks of one element each.
#if !defined(QZSVGGEN_CHUNK_BYTES)
#define QZSVGGEN_CHUNK_BYTES 65536
#endif
constexpr size_t kLargestChunk = QZSVGGEN_CHUNK_BYTES - 64;
constexpr size_t kFirstChunk = std::min<size_t>(4096, kLargestChunk);

// Long text is taken in steps of this size, each all bytes or all 16-bit units.
constexpr size_t kStep = 1024;

bool fitsBytes(UnitView units) {
  unsigned bits = 0;
  for (const Unit unit : units) bits |= unit;
  return bits < 256;
}

Unit* widen(std::string_view characters, Unit* out) {
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
  const size_t previous = last_ == nullptr ? 0 : static_cast<size_t>(limit_ - last_->data());
  const size_t wanted = std::clamp(2 * previous, kFirstChunk, kLargestChunk);
  const size_t capacity = std::max(wanted, kHeader + length);
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
  const auto units = static_cast<uint32_t>(cursor_ - run_ - kHeader);
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

void MarkupText::appendText(UnitView units) {
  while (!units.empty()) {
    const UnitView step = units.substr(0, kStep);
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
                   [this](UnitView run) { appendText(run); });
}

// A run of its own, between two runs of bytes.
void MarkupText::appendWide(UnitView units) {
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
}

void MarkupText::copyTo(Unit* out) const {
  forEachRun([&out](std::string_view run) { out = widen(run, out); },
             [&out](UnitView run) {
               std::memcpy(out, run.data(), 2 * run.size());
               out += run.size();
             });
}

void MarkupText::splice(MarkupText&& other) noexcept {
  if (other.first_ == nullptr) return;
  if (first_ == nullptr) {
    swap(other);
    return;
  }
  closeRun();
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
  if (first_ != nullptr) rewind({first_, first_->data(), first_->data() + kHeader, 0});
}

void MarkupText::clear() noexcept {
  while (first_ != nullptr) ::operator delete(std::exchange(first_, first_->next));
  last_ = nullptr;
  run_ = cursor_ = limit_ = nullptr;
  closedUnits_ = 0;
}

}  // namespace qz
