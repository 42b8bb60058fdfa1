// qzsvggen-pdf: draws the pages of a PDF as SVG documents.
#include <sys/resource.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <thread>

#include "index_file.h"
#include "page_job.h"

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

const std::map<std::string, TextMode> textModes = {
    {"fonts", TextMode::kFonts}, {"both", TextMode::kBoth}, {"outlines", TextMode::kOutlines}};

struct Options {
  DrawOptions draw;
  Limits limits;
  fs::path output, passwordFile;
  std::string pages;
  bool count = false, index = true;
};

// A message that is complete as it is.
struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
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

  void show(size_t done, size_t failed) {
    if (!terminal_ || Clock::now() < next_) return;
    next_ = Clock::now() + std::chrono::milliseconds(100);
    const std::chrono::duration<double> passed = Clock::now() - started_;
    const double left = passed.count() / static_cast<double>(std::max<size_t>(done, 1)) *
                        static_cast<double>(total_ - done);
    std::fprintf(stderr, "\r%zu of %zu pages, %zu failed, %.0f s still \033[K", done, total_,
                 failed, left);
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

std::string counted(size_t count, const char* one, const char* many) {
  return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

// Names the pages that are not as they should be. Returns whether there are any.
bool complain(const std::string& name, const std::vector<int>& pages,
              const std::vector<Answer>& answers) {
  bool any = false;
  for (size_t i = 0; i < pages.size(); ++i) {
    const Answer& page = answers[i];
    if (!page.failed && !page.damaged) continue;
    any = true;
    std::cerr << name << ": page " << pages[i] + 1 << ": "
              << (page.failed ? page.message : "damaged: a part of it may be missing") << '\n';
  }
  return any;
}

void tell(const std::vector<Answer>& answers, double seconds) {
  const auto sum = [&](auto Answer::*member) {
    size_t total = 0;
    for (const Answer& page : answers) total += static_cast<size_t>(page.*member);
    return total;
  };
  const auto note = [](size_t count, const char* one, const char* many) {
    if (count > 0) std::printf(", %s", counted(count, one, many).c_str());
  };
  const size_t failed = sum(&Answer::failed);
  std::printf("%s, %.2f s, %zu bytes", counted(answers.size() - failed, "page", "pages").c_str(),
              seconds, sum(&Answer::bytes));
  note(sum(&Answer::pictures), "part as an SVG picture", "parts as SVG pictures");
  note(sum(&Answer::bitmaps), "part as a bitmap", "parts as bitmaps");
  note(sum(&Answer::droppedLinks), "link with another scheme left out",
       "links with other schemes left out");
  note(sum(&Answer::untypedFields), "field without a type drawn only",
       "fields without a type drawn only");
  note(failed, "page failed", "pages failed");
  rusage workers;
  getrusage(RUSAGE_CHILDREN, &workers);
  std::printf(", %ld MB at most a process\n", workers.ru_maxrss >> 10);
}

// Leaves nothing half-written behind, however the drawing ends.
struct Tidying {
  const OutputFolder& folder;
  std::vector<std::string> names;

  ~Tidying() {
    for (const std::string& name : names) folder.removePart(name);
    folder.removeIfEmpty();
  }
};

Answer describe(Workers& workers, const std::string& name) {
  const Answer document = workers.ask({PageJob::describeDocument}, [](size_t, size_t) {}).front();
  if (document.failed) throw Failure(name + ": " + document.message);
  return document;
}

// Writes a file with all pages that could be drawn.
void makeIndex(const OutputFolder& folder, const std::string& title,
               const std::vector<std::string>& names, const std::vector<Answer>& answers) {
  std::vector<fs::path> drawn;
  for (size_t i = 0; i < names.size(); ++i)
    if (!answers[i].failed) drawn.push_back(folder.pathOf(names[i]));
  if (drawn.empty()) return;
  folder.write("index.html", [&](std::ostream& file) { writeIndex(file, title, drawn); });
}

// Returns whether all is as it should be.
bool draw(const Options& options) {
  const auto started = Clock::now();
  const std::string name = options.draw.input.string();
  OutputFolder folder(options.output);
  const SignalWatch signals;
  Tidying tidying{folder, {}};
  std::optional<Workers> workers(std::in_place, PageJob(options.draw, folder), options.limits,
                                 signals);
  const Answer document = describe(*workers, name);
  const std::vector<int> pages = selectPages(options.pages, document.pageCount);
  if (options.count) {
    std::printf("%d\n", document.pageCount);
    return true;
  }
  if (options.output.empty()) throw Failure("--output is required");
  if (document.damaged) std::cerr << name << ": damaged: it was repaired for reading\n";
  try {
    folder.make();
  } catch (const std::runtime_error& wrong) {
    throw Failure(options.output.string() + ": " + wrong.what());
  }
  for (const int page : pages) tidying.names.push_back(pageName(page, document.pageCount));
  Progress progress(pages.size());
  const std::vector<Answer> answers =
      workers->ask(pages, [&](size_t done, size_t failed) { progress.show(done, failed); });
  workers.reset();
  progress.clear();
  const bool wrong = complain(name, pages, answers);
  if (options.index)
    makeIndex(folder, options.draw.input.filename().string(), tidying.names, answers);
  tell(answers, std::chrono::duration<double>(Clock::now() - started).count());
  return !wrong;
}

int run(int count, char** arguments) {
  Options options;
  CLI::App app("Draws the pages of a PDF as SVG documents: page-001.svg and so on.",
               "qzsvggen-pdf");
  app.set_version_flag("--version", version);
  app.add_option("INPUT", options.draw.input, "the PDF")->required();
  app.add_option("-o,--output", options.output, "the folder for the pages");
  app.add_flag("!--no-index", options.index, "write no index.html, which shows all pages");
  app.add_option("--pages", options.pages, "which pages, such as 1-3,7 (all)");
  app.add_option("--text", options.draw.text,
                 "fonts: text that is set in the page's letters; both: shapes, with text over them "
                 "to be found and copied, for readers that know no fonts of a page, such as "
                 "librsvg; outlines: shapes alone")
      ->transform(CLI::CheckedTransformer(textModes, CLI::ignore_case).description(""))
      ->default_str("fonts");
  app.add_option("--resolution", options.draw.resolution,
                 "pixels per inch of what becomes a bitmap")
      ->check(CLI::Range(10, 2400))
      ->capture_default_str();
  app.add_option("--password-file", options.passwordFile,
                 "a file whose first line is the password");
  app.add_flag(
      "--exact", options.draw.exact,
      "leave the root as the library writes it: in twentieths of a point, without viewBox");
  options.limits.jobs = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
  app.add_option("--jobs", options.limits.jobs, "processes that draw at once (the cores)")
      ->check(CLI::Range(1, 1000));
  app.add_option("--seconds", options.limits.seconds, "of the processor that a page may take")
      ->check(CLI::Range(1, 86400))
      ->capture_default_str();
  app.add_option("--memory", options.limits.memory, "megabytes that a process may take")
      ->check(CLI::Range(64, 1 << 20))
      ->capture_default_str();
  app.add_flag("--count", options.count, "only tell how many pages there are");
  try {
    app.parse(count, arguments);
  } catch (const CLI::ParseError& wrong) {
    return app.exit(wrong) == 0 ? 0 : 2;
  }
  options.draw.password = readPassword(options.passwordFile);
  return draw(options) ? 0 : 2;
}

}  // namespace

int main(int count, char** arguments) {
  try {
    return run(count, arguments);
  } catch (const Interruption& interruption) {
    raise(interruption.signal);
  } catch (const std::bad_alloc&) {
    std::fputs("qzsvggen-pdf: memory is exhausted\n", stderr);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
  }
  return 2;
}
