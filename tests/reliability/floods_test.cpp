// Pages far beyond what is drawn: time and memory grow with what is drawn, not with its square.
// Each is drawn and closed at one size and at twice that size, in a process of its own.
#include <malloc.h>
#include <qzsvggen/qzsvggen.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

namespace {

constexpr RECT kBox = {0, 0, 100, 100};
constexpr POINT kOrigin = {0, 0};

// ---- Much of everything -------------------------------------------------------------------------

void drawLines(SvgGenerator* page, int count) {
  for (int i = 0; i < count; ++i) {
    const POINT from = {i, -i}, to = {i + 1000, 2 * i};
    SVG_SetFill(page, 255, static_cast<uint8_t>(i), 0, 0);
    SVG_DrawLine(page, &from, &to);
  }
}

void drawUnderRegions(SvgGenerator* page, int count) {
  for (int i = 0; i < count; ++i) {
    const RECT whole = {i, 0, i + 100, 100}, added = {i + 200, 0, i + 300, 100},
               cut = {i + 20, 20, i + 40, 40};
    SVG_BeginClippingRegion(page, &whole);
    SVG_AddClippingRegion(page, &added);
    SVG_ExcludeClippingRegion(page, &cut);
    SVG_DrawRectangle(page, &whole);
  }
}

// Each rectangle makes a new region of all before it.
void drawUnderLargeRegion(SvgGenerator* page, int count) {
  SVG_BeginClippingRegion(page, &kBox);
  for (int i = 1; i < count; ++i) {
    const RECT added = {20 * i, 0, 20 * i + 10, 10};
    SVG_AddClippingRegion(page, &added);
  }
  SVG_DrawRectangle(page, &kBox);
}

void drawText(SvgGenerator* page, const std::u16string& text, const int32_t* advances = nullptr) {
  SVG_DrawText(page, text.data(), static_cast<int32_t>(text.size()), &kOrigin, advances, 100);
}

void drawLongRun(SvgGenerator* page, int count) {
  const std::u16string text(static_cast<size_t>(count), u'x');
  drawText(page, text, std::vector<int32_t>(text.size(), 7).data());
}

void drawBehindBlocks(SvgGenerator* page, int count) {
  for (int i = 0; i < count; ++i) {
    SVG_BeginCharacterBlock(page);
    drawText(page, u"x");
    SVG_EndCharacterBlock(page);
  }
}

void drawImage(SvgGenerator* page, uint16_t format, const std::string& bytes) {
  SVG_DrawImage(page, format, &kBox, reinterpret_cast<const uint8_t*>(bytes.data()),
                static_cast<int32_t>(bytes.size()), 100);
}

void drawJpeg(SvgGenerator* page, int size) {
  drawImage(page, SVG_IMAGE_JPEG, std::string(static_cast<size_t>(size), 'j'));
}

void drawSvg(SvgGenerator* page, int size) {
  drawImage(page, SVG_IMAGE_SVG,
            "<svg width='1'>" + std::string(static_cast<size_t>(size), ' ') + "\xC3\xA9</svg>");
}

// A name whose value is looked for everywhere: in vain, before and behind an open quote, and empty.
void drawRootsOfNames(SvgGenerator* page, int count) {
  std::string names;
  for (int i = 0; i < count; ++i) names += "id";
  for (const std::string& root : {names, names + "'", "'" + names, names + "''"})
    drawImage(page, SVG_IMAGE_SVG, "<svg " + root + ">x</svg>");
}

void createAndDelete(SvgGenerator* page, int count) {
  for (int i = 0; i < count; ++i) {
    SvgGenerator* const other = SVG_Create(&kBox);
    SVG_DrawRectangle(other, &kBox);
    if (i % 2 == 0) SVG_Close(other, nullptr, 0);
    SVG_Delete(other);
  }
  SVG_DrawRectangle(page, &kBox);
}

// ---- Keys that a stranger has chosen ------------------------------------------------------------

// Tells whether the search for a key would start within one sixteenth of a table, did it start
// where the key says, or where it says without a secret.
bool startsInCrowd(uint64_t key) {
  __extension__ using Product = unsigned __int128;
  const Product product = static_cast<Product>(key) * 0x9e3779b97f4a7c15;
  const auto folded = static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
  return (key & 0x3FFF) < 0x400 && (folded & 0x3FFF) < 0x400;
}

uint64_t contentHash(const std::string& text) {
  uint64_t hash = 0xcbf29ce484222325;
  for (const char character : text)
    for (const unsigned byte : {static_cast<unsigned>(character), 0u})
      hash = (hash ^ byte) * 0x100000001b3;
  return hash;
}

uint64_t pictureKey(uint32_t number) { return number; }
uint64_t svgKey(uint32_t number) {
  return static_cast<uint32_t>(contentHash("<g  >" + std::to_string(number) + "</g>"));
}
uint64_t fontKey(uint32_t number) {
  return contentHash("font:1px " + std::to_string(number) + ";");
}

std::vector<uint32_t> crowd;  // numbers of such keys

// Seven digits of base 31 are the number as the picture's hash.
void drawCrowdedPictures(SvgGenerator* page, int count) {
  for (int i = 0; i < count; ++i) {
    uint32_t number = crowd[static_cast<size_t>(i)];
    std::string bytes(7, '\0');
    for (size_t digit = 7; digit-- > 0; number /= 31) bytes[digit] = static_cast<char>(number % 31);
    drawImage(page, SVG_IMAGE_PNG, bytes);
  }
}

void drawCrowdedSvgPictures(SvgGenerator* page, int count) {
  for (int i = 0; i < count; ++i)
    drawImage(page, SVG_IMAGE_SVG,
              "<svg viewBox='0'>" + std::to_string(crowd[static_cast<size_t>(i)]) + "</svg>");
}

void drawCrowdedFonts(SvgGenerator* page, int count) {
  for (int i = 0; i < count; ++i) {
    const std::string digits = std::to_string(crowd[static_cast<size_t>(i)]);
    const std::u16string family(digits.begin(), digits.end());
    SVG_SetFont(page, family.data(), static_cast<uint32_t>(family.size()), 1, 0, 0);
    drawText(page, u"x");
  }
}

// Zeros where words are multiplied: without a secret all of these have one hash. The third time
// each is found by its points.
void drawCrowdedOutlines(SvgGenerator* page, int count) {
  const uint8_t types[8] = {PT_MOVETO, 2, 2, 2, 2, 2, 2, 2};
  SVG_BeginCharacterBlock(page);
  for (int i = 0; i < 3 * count; ++i) {
    const int32_t x = i % count;
    const POINT points[8] = {{x, 1}, {0, 0}, {x, 2}, {0, 0}, {3, x}, {0, 0}, {4, x}, {0, 0}};
    SVG_BeginCharacter(page, &kOrigin);
    SVG_DrawPath(page, points, types, 8);
  }
}

// ---- Measuring ----------------------------------------------------------------------------------

struct Flood {
  const char* name;
  void (*draw)(SvgGenerator*, int count);
  int count;  // the smaller size
  int tags;   // for each
  int parts;  // on the page, if these are not `count`
  uint64_t (*keyOf)(uint32_t) = nullptr;
};
constexpr Flood kFloods[] = {
    {"lines", drawLines, 100'000, 1, 0},
    {"clip regions", drawUnderRegions, 20'000, 6, 0},
    {"rectangles of a clip region", drawUnderLargeRegion, 50'000, 6, 1},
    {"characters of a text run", drawLongRun, 500'000, 2, 1},
    {"character blocks with text behind", drawBehindBlocks, 50'000, 4, 0},
    {"bytes of a JPEG picture", drawJpeg, 6'000'000, 4, 1},
    {"bytes of an SVG picture", drawSvg, 6'000'000, 8, 1},
    {"names in root tags", drawRootsOfNames, 10'000, 32, 1},
    {"generators", createAndDelete, 30'000, 1, 1},
    {"pictures of chosen keys", drawCrowdedPictures, 4'000, 4, 0, pictureKey},
    {"SVG pictures of chosen keys", drawCrowdedSvgPictures, 4'000, 8, 0, svgKey},
    {"fonts of chosen keys", drawCrowdedFonts, 4'000, 2, 0, fontKey},
    {"outlines of chosen points", drawCrowdedOutlines, 4'000, 3, 0},
};

double processorTime() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double peakOfMemory() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return 1024 * static_cast<double>(usage.ru_maxrss);
}

// All its tags are there, but for a few of contents that share a hash, and no unit is missing.
bool isWhole(const Flood& flood, int count, const std::vector<SVG_Char>& document) {
  const auto tags = std::count(document.begin(), document.end(), u'<');
  const auto expected = 4 + static_cast<ptrdiff_t>(flood.tags) * (flood.parts != 0 ? 1 : count);
  return std::abs(tags - expected) <= expected / 100 && document.back() == 0 &&
         std::count(document.begin(), document.end(), u'\0') == 1;
}

struct Drawn {
  double seconds;  // of the processor
  double units;    // 0 when something is missing
};

Drawn draw(const Flood& flood, int count) {
  const double start = processorTime();
  SvgGenerator* const page = SVG_Create(&kBox);
  flood.draw(page, count);
  std::vector<SVG_Char> document(static_cast<size_t>(SVG_Close(page, nullptr, 0)));
  SVG_Close(page, document.data(), static_cast<int32_t>(document.size()));
  SVG_Delete(page);
  return {processorTime() - start,
          isWhole(flood, count, document) ? static_cast<double>(document.size()) : 0};
}

// Three bytes a unit are the document, recorded and handed over; the rest is for arguments. A cost
// that grows as the square is four times as high at twice the size. Other programs may disturb a
// measurement: of each size the fastest counts, over more rounds as long as the ratio is in doubt.
bool holds(const Flood& flood) {
  const auto keys = static_cast<size_t>(flood.keyOf == nullptr ? 0 : 2 * flood.count);
  for (uint32_t number = 0; crowd.size() < keys; ++number)
    if (startsInCrowd(flood.keyOf(number))) crowd.push_back(number);

  const double units = draw(flood, 2 * flood.count).units, bytes = peakOfMemory();
  mallopt(M_MMAP_MAX, 0);  // memory touched for the first time is not measured again
  mallopt(M_TRIM_THRESHOLD, INT_MAX);
  double once = HUGE_VAL, twice = HUGE_VAL, spent = 0;
  for (int round = 0; round < 3 || spent < 0.03 || (spent < 3 && twice > 2.5 * once); ++round) {
    const double seconds[] = {draw(flood, flood.count).seconds,
                              draw(flood, 2 * flood.count).seconds};
    once = std::min(once, seconds[0]);
    twice = std::min(twice, seconds[1]);
    spent += seconds[0] + seconds[1];
  }
  std::printf("%8d %-36s %7.4f s, doubled: %4.1f times the time, %6.1f million units, %6.1f MiB\n",
              flood.count, flood.name, once, twice / once, units / 1e6, bytes / (1 << 20));
  return units > 0 && bytes < (16 << 20) + 4 * units && twice < 3 * once;
}

}  // namespace

int main() {
  std::setvbuf(stdout, nullptr, _IONBF, 0);  // so that no process writes for another
  int failed = 0;
  for (const Flood& flood : kFloods) {  // each in a process of its own, since memory is its peak
    if (fork() == 0) _exit(holds(flood) ? 0 : 1);
    int status = 0;
    wait(&status);
    if (status != 0) std::printf("fails: %s\n", flood.name), ++failed;
  }
  std::printf("%d floods failed\n", failed);
  return failed > 0 ? 1 : 0;
}
