// qzsvggen-pdf: draws the pages of a PDF as SVG documents.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <iostream>

#include "engine.h"
#include "output.h"
#include "page_writer.h"

namespace {

namespace fs = std::filesystem;
using namespace qz::pdf;
using Clock = std::chrono::steady_clock;

constexpr const char* version =
    "qzsvggen-pdf " QZSVGGEN_VERSION_STRING
    "\n"
    "The sources of qzsvggen are under the MIT licence. This program is linked with MuPDF, which "
    "is\n"
    "under the GNU Affero General Public License, version 3; so is this program as a whole.";

struct Options {
  fs::path input, output, passwordFile;
  std::string pages, text = "both";
  int resolution = 150;
  bool exact = false;
};

// A message that is complete as it is.
struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// What became of the pages.
struct Totals {
  int pages = 0, failed = 0, damaged = 0, bitmaps = 0, pictures = 0, droppedLinks = 0,
      untypedFields = 0;
  size_t bytes = 0;
};

std::optional<std::string> readPassword(const fs::path& path) {
  if (path.empty()) return std::nullopt;
  std::ifstream file(path);
  std::string password;
  std::getline(file, password);
  if (!file.is_open() || file.bad()) throw Failure(path.string() + ": cannot be read");
  if (password.ends_with('\r')) password.pop_back();
  return password;
}

// A page number, or throws. Empty text stands for `absent`.
int pageNumber(const std::string& text, int absent, int count) {
  if (text.empty()) return absent;
  const bool digits = text.find_first_not_of("0123456789") == std::string::npos;
  const int number = digits && text.size() < 9 ? std::stoi(text) : 0;
  if (!digits) throw Failure("--pages: '" + text + "' is no page number");
  if (number < 1 || number > count)
    throw Failure("--pages: there is no page " + text + ", the last is " + std::to_string(count));
  return number;
}

// The pages, counted from 0, that a list such as "1-3,7,9-" names.
std::vector<int> selectPages(const std::string& list, int count) {
  std::vector<int> pages;
  std::istringstream parts(list.empty() ? "1-" : list);
  for (std::string part; std::getline(parts, part, ',');) {
    const size_t dash = part.find('-');
    if (part.empty() || part == "-") throw Failure("--pages: '" + list + "' is no list of pages");
    const int first = pageNumber(part.substr(0, dash), 1, count);
    const int last =
        dash == std::string::npos ? first : pageNumber(part.substr(dash + 1), count, count);
    if (last < first) throw Failure("--pages: '" + part + "' runs backwards");
    for (int page = first; page <= last; ++page) pages.push_back(page - 1);
  }
  std::sort(pages.begin(), pages.end());
  pages.erase(std::unique(pages.begin(), pages.end()), pages.end());
  return pages;
}

// Pages done and how long still, on a terminal.
class Progress {
 public:
  explicit Progress(size_t total) : total_(total) {}
  ~Progress() { clear(); }

  void show(size_t done, int failed) {
    if (!terminal_ || Clock::now() < next_) return;
    next_ = Clock::now() + std::chrono::milliseconds(100);
    const std::chrono::duration<double> passed = Clock::now() - started_;
    const double left = passed.count() / static_cast<double>(std::max<size_t>(done, 1)) *
                        static_cast<double>(total_ - done);
    std::fprintf(stderr, "\r%zu of %zu pages, %d failed, %.0f s still \033[K", done, total_, failed,
                 left);
    shown_ = true;
  }
  void clear() {
    if (shown_) std::fputs("\r\033[K", stderr);
    shown_ = false;
  }

 private:
  size_t total_;
  bool terminal_ = isatty(2) != 0, shown_ = false;
  Clock::time_point started_ = Clock::now(), next_ = started_ + std::chrono::seconds(1);
};

void drawPage(Engine& engine, int number, const Options& options, OutputFolder& folder,
              Totals& totals) {
  const Scene scene = engine.read(number, options.resolution);
  const Plan plan = makePlan(scene);
  const std::u16string document =
      writePage(scene, plan, engine.outlines(),
                options.text == "both" ? TextMode::kBoth : TextMode::kOutlines);
  totals.bytes += folder.write(
      number, options.exact ? qzsvggen::toUtf8(document) : inPoints(document, scene.page));
  ++totals.pages;
  totals.bitmaps += scene.bitmaps;
  totals.pictures += static_cast<int>(plan.pictures.size());
  totals.droppedLinks += scene.droppedLinks;
  totals.untypedFields += scene.untypedFields;
  if (scene.damages == 0) return;
  ++totals.damaged;
  std::cerr << options.input.string() << ": page " << number + 1
            << ": damaged: a part of it may be missing\n";
}

std::string counted(int count, const char* one, const char* many) {
  return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

void tell(const Totals& totals, double seconds) {
  std::printf("%s, %.2f s, %zu bytes", counted(totals.pages, "page", "pages").c_str(), seconds,
              totals.bytes);
  const auto note = [](int count, const char* one, const char* many) {
    if (count > 0) std::printf(", %s", counted(count, one, many).c_str());
  };
  note(totals.pictures, "part as an SVG picture", "parts as SVG pictures");
  note(totals.bitmaps, "part as a bitmap", "parts as bitmaps");
  note(totals.droppedLinks, "link with another scheme left out",
       "links with other schemes left out");
  note(totals.untypedFields, "field without a type drawn only", "fields without a type drawn only");
  note(totals.failed, "page failed", "pages failed");
  std::printf("\n");
}

Totals draw(const Options& options) {
  const std::string name = options.input.string();
  const std::optional<std::string> password = readPassword(options.passwordFile);
  std::optional<Engine> engine;
  try {
    engine.emplace(options.input, password);
  } catch (const EngineError& wrong) {
    throw Failure(name + ": " + wrong.what());
  }
  const std::vector<int> pages = selectPages(options.pages, engine->pageCount());
  if (engine->wasRepaired()) std::cerr << name << ": damaged: it was repaired for reading\n";
  std::optional<OutputFolder> folder;
  try {
    folder.emplace(options.output, engine->pageCount());
  } catch (const std::runtime_error& wrong) {
    throw Failure(options.output.string() + ": " + wrong.what());
  }
  Totals totals;
  Progress progress(pages.size());
  for (size_t i = 0; i < pages.size(); ++i) {
    progress.show(i, totals.failed);
    try {
      drawPage(*engine, pages[i], options, *folder, totals);
    } catch (const EngineError& wrong) {
      ++totals.failed;
      progress.clear();
      std::cerr << name << ": page " << pages[i] + 1 << ": " << wrong.what() << '\n';
    }
  }
  return totals;
}

int run(int count, char** arguments) {
  Options options;
  CLI::App app("Draws the pages of a PDF as SVG documents: page-001.svg and so on.",
               "qzsvggen-pdf");
  app.set_version_flag("--version", version);
  app.add_option("INPUT", options.input, "the PDF")->required();
  app.add_option("-o,--output", options.output, "the folder for the pages")->required();
  app.add_option("--pages", options.pages, "which pages, such as 1-3,7 (all)");
  app.add_option("--text", options.text,
                 "outlines: text is drawn as shapes; both: it can be found and copied as well")
      ->check(CLI::IsMember({"outlines", "both"}))
      ->capture_default_str();
  app.add_option("--resolution", options.resolution, "pixels per inch of what becomes a bitmap")
      ->check(CLI::Range(10, 2400))
      ->capture_default_str();
  app.add_option("--password-file", options.passwordFile,
                 "a file whose first line is the password");
  app.add_flag(
      "--exact", options.exact,
      "leave the root as the library writes it: in twentieths of a point, without viewBox");
  try {
    app.parse(count, arguments);
  } catch (const CLI::ParseError& wrong) {
    return app.exit(wrong) == 0 ? 0 : 2;
  }
  const auto started = Clock::now();
  const Totals totals = draw(options);
  tell(totals, std::chrono::duration<double>(Clock::now() - started).count());
  return totals.failed + totals.damaged > 0 ? 2 : 0;
}

}  // namespace

int main(int count, char** arguments) {
  try {
    return run(count, arguments);
  } catch (const std::bad_alloc&) {
    std::fputs("qzsvggen-pdf: memory is exhausted\n", stderr);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
  }
  return 2;
}
