// A host for the tests of the tracing library: draws as it is told, and misbehaves.
//
//     trace_host page|abort|count|fork|threads|race|misuse|many|speed
#include <qzsvggen/qzsvggen.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>
#include <thread>
#include <vector>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

constexpr RECT kPage = {0, 0, 1000, 1000};
constexpr RECT kBox = {10, 10, 90, 90};

std::vector<SVG_Char> close(SvgGenerator* page) {
  std::vector<SVG_Char> document(static_cast<std::size_t>(SVG_Close(page, nullptr, 0)));
  SVG_Close(page, document.data(), static_cast<int32_t>(document.size()));
  return document;
}

void drawPage(int boxes) {
  SvgGenerator* page = SVG_Create(&kPage);
  for (int i = 0; i < boxes; ++i) SVG_DrawRectangle(page, &kBox);
  close(page);
  SVG_Delete(page);
}

// Text whose count goes beyond readable memory.
void drawWithBadCount() {
#if !defined(_WIN32)
  const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  char* const memory = static_cast<char*>(
      mmap(nullptr, 2 * size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  mprotect(memory + size, size, PROT_NONE);
  const SVG_Char text[] = {'r', 'e', 'a', 'd'};
  std::memcpy(memory + size - sizeof text, text, sizeof text);
  SvgGenerator* page = SVG_Create(&kPage);
  SVG_DrawRectangle(page, &kBox);
  const POINT origin = {9, 9};
  SVG_DrawText(page, reinterpret_cast<const SVG_Char*>(memory + size - sizeof text), 500, &origin,
               nullptr, 100);
#endif
}

void drawInChild() {
#if !defined(_WIN32)
  SvgGenerator* page = SVG_Create(&kPage);
  if (fork() == 0) {
    SVG_DrawRectangle(page, &kBox);
    drawPage(3);
    _exit(0);
  }
  int status = 0;
  wait(&status);
  close(page);
  SVG_Delete(page);
#endif
}

void drawOnThreads() {
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i)
    threads.emplace_back([] {
      for (int k = 0; k < 50; ++k) drawPage(20);
    });
  for (std::thread& thread : threads) thread.join();
}

// Against the contract; a trace makes the calls one after another.
void drawOnOnePage() {
  SvgGenerator* page = SVG_Create(&kPage);
  const auto draw = [page] {
    for (int i = 0; i < 100000; ++i) SVG_DrawRectangle(page, &kBox);
  };
  std::thread other(draw);
  draw();
  other.join();
  close(page);
  SVG_Delete(page);
}

// What goes beyond the contract and brings nothing down.
void misuse() {
  SvgGenerator* page = SVG_Create(&kPage);
  std::vector<SVG_Char> document(static_cast<std::size_t>(SVG_Close(page, nullptr, 0)));
  SVG_Close(page, document.data(), static_cast<int32_t>(document.size()) - 1);
  SVG_DrawRectangle(page, &kBox);
  close(page);
  SVG_Create(&kPage);  // and never deletes it
  SVG_Delete(page);
}

// Nanoseconds of processor time a call of `draw`, of pages of 5000 calls with all around them.
template <class Draw>
double measure(Draw draw) {
  constexpr int kPages = 20, kCalls = 5000;
  double best = 1e9;
  for (int run = 0; run < 5; ++run) {
    const std::clock_t start = std::clock();
    for (int i = 0; i < kPages; ++i) {
      SvgGenerator* page = SVG_Create(&kPage);
      for (int k = 0; k < kCalls; ++k) draw(page);
      close(page);
      SVG_Delete(page);
    }
    const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    best = std::min(best, seconds * 1e9 / kPages / kCalls);
  }
  return best;
}

// What a trace costs: to be run with and without one.
void tellSpeed() {
  std::vector<POINT> points(1000);
  for (std::size_t i = 0; i < points.size(); ++i)
    points[i] = {static_cast<int32_t>(i * 7919 % 1000), static_cast<int32_t>(i * 104729 % 1000)};
  const double lines = measure([](SvgGenerator* page) { SVG_DrawRectangle(page, &kBox); });
  const double many = measure([&, i = 0](SvgGenerator* page) mutable {
    if (i++ % 50 == 0) SVG_DrawPolyline(page, points.data(), 1000);
  });
  std::printf("%.1f ns a line, %.1f ns a point\n", lines, many * 50 / 1000);
}

}  // namespace

int main(int count, char** arguments) {
  const std::string_view what = count > 1 ? arguments[1] : "";
  if (what == "page") drawPage(1);
  if (what == "many") drawPage(300000);
  if (what == "abort") {
    SvgGenerator* page = SVG_Create(&kPage);
    SVG_DrawRectangle(page, &kBox);
    std::abort();
  }
  if (what == "count") drawWithBadCount();
  if (what == "fork") drawInChild();
  if (what == "threads") drawOnThreads();
  if (what == "race") drawOnOnePage();
  if (what == "misuse") misuse();
  if (what == "speed") tellSpeed();
  std::puts("the host has come to its end");
  return 0;
}
