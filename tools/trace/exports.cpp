// The tracing library: the functions of the real one, each of which writes its call before the real
// library gets it.
#include <utility>

#include "call.h"
#include "real_library.h"
#include "registry.h"

using namespace qz::tools;

namespace {

template <auto function, class... P>
int32_t trace(SvgGenerator* generator, P... parameters) {
  RealLibrary::get();
  const HeldPage page(generator, functionName<function>);
  if (page)
    if (TraceFile* out = page->beginLine()) WriteJson{*out}(Function<function>(), parameters...);
  return RealLibrary::of<function>(generator, parameters...);
}

}  // namespace

SvgGenerator* QZSVGGEN_CALL SVG_Create(const RECT* page) noexcept {
  const RealLibrary& real = RealLibrary::get();
  std::unique_ptr<TraceFile> file = openTrace();
  if (!file) return real.create(page);
  if (file->isOpen()) {
    file->begin("SVG_Create");
    file->rectangle(*page);
    file->end();
  }
  SvgGenerator* generator = real.create(page);
  if (generator != nullptr) registerPage(generator, std::move(file));
  return generator;
}

int32_t QZSVGGEN_CALL SVG_Delete(SvgGenerator* generator) noexcept {
  const RealLibrary& real = RealLibrary::get();
  // Before the real one: afterwards another thread may get the handle anew.
  if (const HeldPage page(generator, "SVG_Delete"); page) page->end();
  return real.destroy(generator);
}

int32_t QZSVGGEN_CALL SVG_GetVersion() noexcept {
  const RealLibrary& real = RealLibrary::get();
  if (const HeldPage page = HeldPage::ofThread(); page)
    if (TraceFile* out = page->beginLine()) WriteJson{*out}(Function<SVG_GetVersion>());
  return real.getVersion();
}

int32_t QZSVGGEN_CALL SVG_Close(SvgGenerator* generator, SVG_Char* buffer, int32_t size) noexcept {
  const RealLibrary& real = RealLibrary::get();
  const HeldPage page(generator, "SVG_Close");
  const int32_t result = real.close(generator, buffer, size);
  if (page && buffer == nullptr)
    page->noteClose(result);
  else if (page)
    page->noteHandOver(buffer, size);
  return result;
}

// NOLINTBEGIN(bugprone-macro-parentheses): types and names
// One definition for each function, with the parameters of the header.
#define P(name, i) Parameter<name, i> p##i
#define EXPORT(name, parameters, ...)                                               \
  int32_t QZSVGGEN_CALL name(SvgGenerator* g QZSVGGEN_UNPACK parameters) noexcept { \
    return trace<name>(g __VA_OPT__(, ) __VA_ARGS__);                               \
  }
#define QZSVGGEN_UNPACK(...) __VA_OPT__(, ) __VA_ARGS__
#define EXPORT_0(n) EXPORT(n, ())
#define EXPORT_1(n) EXPORT(n, (P(n, 0)), p0)
#define EXPORT_2(n) EXPORT(n, (P(n, 0), P(n, 1)), p0, p1)
#define EXPORT_3(n) EXPORT(n, (P(n, 0), P(n, 1), P(n, 2)), p0, p1, p2)
#define EXPORT_4(n) EXPORT(n, (P(n, 0), P(n, 1), P(n, 2), P(n, 3)), p0, p1, p2, p3)
#define EXPORT_5(n) EXPORT(n, (P(n, 0), P(n, 1), P(n, 2), P(n, 3), P(n, 4)), p0, p1, p2, p3, p4)
#define EXPORT_8(n)                                                                               \
  EXPORT(n, (P(n, 0), P(n, 1), P(n, 2), P(n, 3), P(n, 4), P(n, 5), P(n, 6), P(n, 7)), p0, p1, p2, \
         p3, p4, p5, p6, p7)
#define EXPORT_BY_ARITY(name, arity) EXPORT_##arity(name)
QZSVGGEN_FUNCTIONS(EXPORT_BY_ARITY)
// NOLINTEND(bugprone-macro-parentheses)
