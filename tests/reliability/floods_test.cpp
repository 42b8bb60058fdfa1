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

constexpr int kMillion = 1000 * 1000;
constexpr RECT kBox = {0, 0, 100, 100};

void drawLines(SvgGenerator* page) {
  for (int i = 0; i < kMillion; ++i) {
    const POINT from = {i, -i}, to = {i + 1000, 2 * i};
    SVG_SetFill(page, 255, static_cast<uint8_t>(i), 0, 0);
    SVG_DrawLine(page, &from, &to);
  }
}

void drawUnderRegions(SvgGenerator* page) {
  for (int i = 0; i < kMillion / 10; ++i) {
    const RECT whole = {i, 0, i + 100, 100}, added = {i + 200, 0, i + 300, 100},
               cut = {i + 20, 20, i + 40, 40};
    SVG_BeginClippingRegion(page, &whole);
    SVG_AddClippingRegion(page, &added);
    SVG_ExcludeClippingRegion(page, &cut);
    SVG_DrawRectangle(page, &whole);
  }
}

// Each rectangle makes a new region of all before it.
void drawUnderLargeRegion(SvgGenerator* page) {
  SVG_BeginClippingRegion(page, &kBox);
  for (int i = 0; i < kMillion / 5; ++i) {
    const RECT added = {20 * i, 0, 20 * i + 10, 10};
    SVG_AddClippingRegion(page, &added);
  }
  SVG_DrawRectangle(page, &kBox);
}

void drawImage(SvgGenerator* page, uint16_t format, const std::string& bytes) {
  SVG_DrawImage(page, format, &kBox, reinterpret_cast<const uint8_t*>(bytes.data()),
                static_cast<int32_t>(bytes.size()), 100);
}

void drawJpeg(SvgGenerator* page) { drawImage(page, SVG_IMAGE_JPEG, std::string(64 << 20, 'j')); }

void drawSvg(SvgGenerator* page) {
  drawImage(page, SVG_IMAGE_SVG, "<svg width='1'>" + std::string(64 << 20, ' ') + "\xC3\xA9</svg>");
}

void drawLongRun(SvgGenerator* page) {
  const std::u16string text(10 * kMillion, u'x');
  const std::vector<int32_t> advances(text.size(), 7);
  const POINT origin = {0, 0};
  SVG_DrawText(page, text.data(), static_cast<int32_t>(text.size()), &origin, advances.data(), 100);
}

// A million come and go while the page is open.
void createAndDelete(SvgGenerator* page) {
  for (int i = 0; i < kMillion; ++i) {
    SvgGenerator* const other = SVG_Create(&kBox);
    SVG_DrawRectangle(other, &kBox);
    if (i % 2 == 0) SVG_Close(other, nullptr, 0);
    SVG_Delete(other);
  }
  SVG_DrawRectangle(page, &kBox);
}

struct Flood {
  const char* name;
  void (*draw)(SvgGenerator*);
};
constexpr Flood kFloods[] = {
    {"a million lines", drawLines},
    {"100,000 clip regions", drawUnderRegions},
    {"a clip region of 200,000 rectangles", drawUnderLargeRegion},
    {"a JPEG picture of 64 MiB", drawJpeg},
    {"an SVG picture of 64 MiB", drawSvg},
    {"a text run of 10 million characters", drawLongRun},
    {"a million generators", createAndDelete},
};

bool run(const Flood& flood) {
  const auto start = std::chrono::steady_clock::now();
  SvgGenerator* const page = SVG_Create(&kBox);
  flood.draw(page);
  const int32_t size = SVG_Close(page, nullptr, 0);
  std::vector<SVG_Char> document(static_cast<size_t>(size));
  SVG_Close(page, document.data(), size);
  SVG_Delete(page);

  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const double mebibytes = static_cast<double>(usage.ru_maxrss) / 1024;
  const double units = static_cast<double>(size) / kMillion;
  std::printf("%-40s %6.2f s %8.1f million units %8.1f MiB\n", flood.name, time.count(), units,
              mebibytes);
  std::fflush(stdout);
  // Three bytes a unit are the document, recorded and handed over; the rest is for arguments. No
  // flood takes a second, unless a cost grows as the square.
  return size > 0 && document[document.size() - 2] == u'>' && mebibytes < 16 + 4 * units &&
         time.count() < 5;
}

}  // namespace

int main() {
  int failed = 0;
  for (const Flood& flood : kFloods) {
    const pid_t child = fork();
    if (child == 0) _exit(run(flood) ? 0 : 1);
    int status = 1;
    waitpid(child, &status, 0);
    failed += status != 0;
  }
  std::printf("%d floods failed\n", failed);
  return failed > 0 ? 1 : 0;
}
