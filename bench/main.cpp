// Measures whole pages of one workload through the library's C interface, beside the floor (a flat
// writer of the same text) and other libraries. table.py runs it, a process for each row.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <stdexcept>

#include "peers.h"
#include "workloads.h"

namespace bench {
namespace {

const std::vector<std::pair<const char*, std::unique_ptr<Peer> (*)()>> kPeers = {
#if defined(BENCH_CAIRO)
    {"cairo", makeCairo},
#endif
#if defined(BENCH_MUPDF)
    {"mupdf", makeMuPdf},
#endif
};

// ---- One page -----------------------------------------------------------------------------------

// Each writes a page at `out`, which is large enough, and returns its size in code units.
using WritePage = size_t (*)(PageData data, int count, char16_t* out);

// Without `out` the document is only finished.
template <class Scene>
size_t drawPage(PageData data, int count, char16_t* out) {
  qzsvggen::Page page(kPage);
  Scene::draw(page, data, count);
  const int32_t size = SVG_Close(page.handle(), nullptr, 0);
  if (out != nullptr) SVG_Close(page.handle(), out, size);
  return static_cast<size_t>(size - 1);
}

// Flattened, so that what the floor knows of its page stands in registers and constants.
template <class Scene>
[[gnu::flatten]] size_t writePage(PageData data, int count, char16_t* out) {
  FlatPage page(out);
  page.put(u"<svg xmlns=\"http://www.w3.org/2000/svg\"",
           u" xmlns:xlink=\"http://www.w3.org/1999/xlink\" width=\"", kPageSize, u"\" height=\"",
           kPageSize, u"\"><defs>");
  Scene::define(page, data, count);
  page.put(u"</defs>");
  Scene::draw(page, data, count);
  page.put(u"</svg>");
  return static_cast<size_t>(page.end() - out);
}

template <class Scene>
void drawPeerPage(Peer& peer, PageData data, int count) {
  peer.beginPage();
  Scene::draw(peer, data, count);
  peer.endPage();
}

// ---- The workloads ------------------------------------------------------------------------------

struct Workload {
  std::string_view name;
  WritePage draw;
  WritePage write;
  void (*drawPeer)(Peer& peer, PageData data, int count) = nullptr;
  bool perPage = false;  // measured by the page instead of the element
  int furtherElements = 0;
};

template <class Scene>
Workload workload(std::string_view name) {
  return {name, drawPage<Scene>, writePage<Scene>};
}

template <class Scene>  // one that every library can draw
Workload scene(std::string_view name, bool perPage = false) {
  return {name, drawPage<Scene>, writePage<Scene>, drawPeerPage<Scene>, perPage};
}

const Workload kWorkloads[] = {
    scene<Lines>("a"),
    scene<Rectangles>("b"),
    scene<Paths>("c"),
    scene<Polylines>("d"),
    scene<Runs>("e"),
    {"f", drawPage<Glyphs>, writePage<Glyphs>, nullptr, false, Glyphs::kDistinct},
    workload<Jpeg>("g"),
    workload<Pngs>("h"),
    workload<Regions>("i"),
    workload<Fonts>("j"),
    workload<Exclusions<false>>("k"),
    workload<Exclusions<true>>("k2"),
    workload<SvgPicture>("l"),
    scene<Lines>("s", true),
    scene<Mix>("t", true),
};

// ---- Before anything is timed -------------------------------------------------------------------

// Units that come from the system, past the heap, and are touched already: a host's kept buffer.
char16_t* mapUnits(size_t units) {
  void* const memory = mmap(nullptr, units * sizeof(char16_t), PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
  if (memory == MAP_FAILED) throw std::bad_alloc();
  return static_cast<char16_t*>(memory);
}

// A figure is worth nothing if the two do not write the same.
void requireSameText(std::u16string_view library, std::u16string_view floor) {
  const auto place = std::ranges::mismatch(library, floor).in1 - library.begin();
  if (library == floor) return;
  const auto excerpt = [&](std::u16string_view text) {
    text = text.substr(static_cast<size_t>(std::max(place - 30, 0L)), 60);
    return std::string(text.begin(), text.end());
  };
  throw std::runtime_error("the texts differ at unit " + std::to_string(place) +
                           "\n  library: " + excerpt(library) + "\n  floor:   " + excerpt(floor));
}

// Peak resident bytes of a process that draws a page, from a fresh heap.
long residentPeak(WritePage draw, int count) {
  malloc_trim(0);
  if (fork() == 0) {
    drawPage<Mix>(PageData(0), 400, nullptr);  // code and tables are in memory in any case
    draw(PageData(0), count, nullptr);
    _exit(0);
  }
  rusage usage = {};
  wait4(-1, nullptr, 0, &usage);
  return usage.ru_maxrss * 1024;
}

// ---- The program --------------------------------------------------------------------------------

using Run = std::function<void(PageData)>;

// Registers what `start` makes for each thread of the given number.
void measure(const char* subject, int64_t elements, int threads, auto start) {
  auto* const registered = benchmark::RegisterBenchmark(subject, [=](benchmark::State& state) {
    const Run run = start(state.thread_index());
    int number = 17 * state.thread_index();  // each page differs from the one before
    for (auto _ : state) run(PageData(number++));
    state.SetItemsProcessed(state.iterations() * elements);
  });
  registered->Threads(1);
  if (threads > 1) registered->UseRealTime()->Threads(threads);
}

void run(const Workload& workload, int count, int threads) {
  const int64_t elements = workload.perPage ? 1 : count + workload.furtherElements;
  const long peak = residentPeak(workload.draw, count) - residentPeak(drawPage<Lines>, 0);
  const size_t size = workload.draw(PageData(0), count, nullptr);
  // Pages differ a little in size, and the floor may write more than it should.
  const size_t room = size + size / 16 + 65536;
  char16_t* const host = mapUnits(room * static_cast<size_t>(threads));
  char16_t* const mapped = mapUnits(room);
  workload.draw(PageData(0), count, host);
  requireSameText({host, size}, {mapped, workload.write(PageData(0), count, mapped)});
  benchmark::AddCustomContext("peak_bytes", std::to_string(peak));
  benchmark::AddCustomContext("document_bytes", std::to_string(2 * size));

  const auto writer = [=](WritePage write) {
    return [=](int thread) -> Run {
      char16_t* const out = host + room * static_cast<size_t>(thread);
      return [=](PageData data) { write(data, count, out); };
    };
  };
  measure("library", elements, threads, writer(workload.draw));
  measure("floor", elements, threads, writer(workload.write));
  if (workload.drawPeer != nullptr)
    for (const auto& [name, make] : kPeers)
      measure(name, elements, threads, [=, make = make, draw = workload.drawPeer](int) -> Run {
        const std::shared_ptr<Peer> peer = make();
        draw(*peer, PageData(0), 1);  // loads the font
        return [=](PageData data) { draw(*peer, data, count); };
      });
  benchmark::RunSpecifiedBenchmarks();
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const std::string_view name = argc > 2 ? argv[1] : "";
  for (const bench::Workload& workload : bench::kWorkloads) {
    if (workload.name != name) continue;
    try {
      bench::run(workload, std::atoi(argv[2]), argc > 3 ? std::atoi(argv[3]) : 1);
      return 0;
    } catch (const std::exception& error) {
      std::cerr << "bench " << name << ": " << error.what() << '\n';
      return 1;
    }
  }
  std::cerr << "usage: bench WORKLOAD COUNT [THREADS] [OPTION OF GOOGLE BENCHMARK...]\n";
  return 2;
}
