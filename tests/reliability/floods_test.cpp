// Pages far beyond what is drawn: each is drawn and closed in a process of its own, which tells the
// peak of its memory.
#include <qzsvggen/qzsvggen.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

namespace {

// What a test is given, and may hold in memory at the same time: arguments and the document.
struct Flood {
  const char* name;
  void (*draw)(SvgGenerator*);
};

constexpr int kMillion = 1000 * 1000;

void drawElements(SvgGenerator* generator) {
  for (int i = 0; i < kMillion; ++i) {
    const POINT from = {i, -i}, to = {i + 1000, 2 * i};
    SVG_SetFill(generator, 255, static_cast<uint8_t>(i), 0, 0);
    SVG_DrawLine(generator, &from, &to);
  }
}

void drawUnderRegions(SvgGenerator* generator) {
  for (int i = 0; i < 100 * 1000; ++i) {
    const RECT whole = {i, 0, i + 100, 100}, added = {i + 200, 0, i + 300, 100},
               cut = {i + 20, 20, i + 40, 40};
    SVG_BeginClippingRegion(generator, &whole);
    SVG_AddClippingRegion(generator, &added);
    SVG_ExcludeClippingRegion(generator, &cut);
    SVG_DrawRectangle(generator, &whole);
  }
}

// One region of very many rectangles, each call of which makes a new one.
void drawUnderLargeRegion(SvgGenerator* generator) {
  const RECT page = {0, 0, 10, 10};
  SVG_BeginClippingRegion(generator, &page);
  for (int i = 0; i < 200 * 1000; ++i) {
    const RECT added = {20 * i, 0, 20 * i + 10, 10};
    SVG_AddClippingRegion(generator, &added);
  }
  SVG_DrawRectangle(generator, &page);
}

void drawImage(SvgGenerator* generator, uint16_t format, std::string bytes) {
  const RECT bounds = {0, 0, 100, 100};
  SVG_DrawImage(generator, format, &bounds, reinterpret_cast<const uint8_t*>(bytes.data()),
                static_cast<int32_t>(bytes.size()), 100);
}

constexpr size_t kImageSize = 64 << 20;

void drawLargeJpeg(SvgGenerator* generator) {
  drawImage(generator, SVG_IMAGE_JPEG, std::string(kImageSize, 'j'));
}

void drawLargeSvg(SvgGenerator* generator) {
  drawImage(generator, SVG_IMAGE_SVG,
            "<svg width='1'>" + std::string(kImageSize, ' ') + "\xC3\xA9</svg>");
}

void drawLongRun(SvgGenerator* generator) {
  const std::u16string text(10 * kMillion, u'x');
  const std::vector<int32_t> advances(text.size(), 7);
  const POINT origin = {0, 0};
  SVG_DrawText(generator, text.data(), static_cast<int32_t>(text.size()), &origin, advances.data(),
               100);
}

// The other generators of a million come and go while this one is open.
void createAndDelete(SvgGenerator* generator) {
  const RECT page = {0, 0, 10, 10};
  for (int i = 1; i < kMillion; ++i) {
    SvgGenerator* const other = SVG_Create(&page);
    SVG_DrawRectangle(other, &page);
    if (i % 2 == 0) SVG_Close(other, nullptr, 0);
    SVG_Delete(other);
  }
  SVG_DrawRectangle(generator, &page);
}

constexpr Flood kFloods[] = {
    {"a million lines", drawElements},
    {"100,000 clip regions", drawUnderRegions},
    {"a clip region of 200,000 rectangles", drawUnderLargeRegion},
    {"a JPEG picture of 64 MiB", drawLargeJpeg},
    {"an SVG picture of 64 MiB", drawLargeSvg},
    {"a text run of 10 million characters", drawLongRun},
    {"a million generators", createAndDelete},
};

// In the child: the exit status tells whether there was a document, the pipe its size.
[[noreturn]] void drawAndClose(const Flood& flood, int pipe) {
  const RECT page = {0, 0, 10000, 10000};
  SvgGenerator* const generator = SVG_Create(&page);
  flood.draw(generator);
  const int32_t size = SVG_Close(generator, nullptr, 0);
  std::vector<SVG_Char> document(static_cast<size_t>(size));
  SVG_Close(generator, document.data(), size);
  SVG_Delete(generator);
  const bool whole = size > 7 && document[document.size() - 2] == u'>';
  _exit(whole && write(pipe, &size, sizeof size) == sizeof size ? 0 : 1);
}

bool run(const Flood& flood) {
  using Clock = std::chrono::steady_clock;
  int pipes[2];
  if (pipe(pipes) != 0) return false;
  const auto start = Clock::now();
  const pid_t child = fork();
  if (child == 0) drawAndClose(flood, pipes[1]);
  int status = 1;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  const std::chrono::duration<double> seconds = Clock::now() - start;
  int32_t size = 0;
  const bool drawn = status == 0 && read(pipes[0], &size, sizeof size) == sizeof size;
  // Three bytes a unit are the document, recorded and handed over; the rest is for the arguments.
  const double mebibytes = static_cast<double>(usage.ru_maxrss) / 1024,
               units = static_cast<double>(size) / kMillion;
  // No flood takes a second, unless a cost grows as the square.
  const bool bounded = mebibytes < 16 + 4 * units && seconds.count() < 5;
  std::printf("%-40s %6.2f s %8.1f million units %8.1f MiB%s\n", flood.name, seconds.count(), units,
              mebibytes,
              !drawn    ? "  no document"
              : bounded ? ""
                        : "  too much");
  return drawn && bounded;
}

}  // namespace

int main() {
  bool passed = true;
  for (const Flood& flood : kFloods) passed &= run(flood);
  return passed ? 0 : 1;
}
