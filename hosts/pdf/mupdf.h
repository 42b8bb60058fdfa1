// MuPDF, which promises no stable interface: this is the one file that includes it, and only the
// engine's sources include this one.
//
// MuPDF reports errors by a jump that skips destructors. So
//   - what stands between fz_try and a call that can fail owns no memory,
//   - everything that MuPDF calls back is noexcept towards it (see SceneBuilder::keep).
#pragma once

#include <mupdf/fitz.h>
#include <mupdf/pdf.h>

#include <cstdio>

#include "engine.h"

namespace qz::pdf {

// Runs calls that can fail. Throws EngineError with MuPDF's message.
template <class Body>
void attempt(fz_context* context, const Body& body) {
  char message[256];
  bool failed = false;
  fz_var(failed);
  fz_try(context) body();
  fz_catch(context) {
    failed = true;
    std::snprintf(message, sizeof message, "%s", fz_caught_message(context));
  }
  if (failed) throw EngineError(message);
}

// Frees what MuPDF handed over.
template <class Item, void (*drop)(fz_context*, Item*)>
class Owned {
 public:
  Owned(fz_context* context, Item* item = nullptr) : context_(context), item_(item) {}
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  ~Owned() { drop(context_, item_); }

  void reset(Item* item) {
    drop(context_, item_);
    item_ = item;
  }
  Item* get() const { return item_; }

 private:
  fz_context* context_;
  Item* item_;
};

inline fz_matrix linearPart(fz_matrix m) { return {m.a, m.b, m.c, m.d, 0, 0}; }

inline Matrix toMatrix(fz_matrix m) { return {m.a, m.b, m.c, m.d, m.e, m.f}; }

inline uint8_t toByte(float value) {
  return static_cast<uint8_t>(std::lround(std::clamp(value, 0.0f, 1.0f) * 255));
}

inline Box toBox(fz_rect r) { return {r.x0, r.y0, r.x1, r.y1}; }

}  // namespace qz::pdf
