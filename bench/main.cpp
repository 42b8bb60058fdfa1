// Measures whole pages through the shared object's C interface, side by side with the floor (a flat
// writer of the same text) and with other libraries, and prints one table.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <stdexcept>

#include "memory.h"
#include "workloads.h"

namespace bench {
namespace {

struct Options {
  bool quick = false;
  bool keepHeap = true;
  std::string only;  // names of workloads, separated by commas; empty: all
};

// ---- One page -----------------------------------------------------------------------------------

// Writes the document at `out`, of which the caller knows that it is large enough; without it the
// document is only finished. Returns the size that SVG_Close asked for.
int32_t drawPage(const Workload& workload, int count, char16_t* out) {
  SvgGenerator* const generator = SVG_Create(&kPage);
  workload.draw(generator, count);
  const int32_t size = SVG_Close(generator, nullptr, 0);
  if (out != nullptr) SVG_Close(generator, out, size);
  SVG_Delete(generator);
  return size;
}

size_t writePage(const Workload& workload, int count, char16_t* out) {
  FlatWriter writer(out);
  workload.write(writer, count);
  return static_cast<size_t>(writer.end() - out);
}

template <class... Values>
std::string format(const char* pattern, Values... values) {
  char text[512];
  snprintf(text, sizeof text, pattern, values...);
  return text;
}

// A figure is worth nothing if the two do not write the same.
void requireSameText(std::u16string_view library, std::u16string_view floor) {
  if (library == floor) return;
  const auto place = static_cast<size_t>(
      std::mismatch(library.begin(), library.end(), floor.begin(), floor.end()).first -
      library.begin());
  const auto excerpt = [start = place < 30 ? 0 : place - 30](std::u16string_view text) {
    std::string result;
    for (size_t i = start; i < std::min(start + 60, text.size()); ++i)
      result += text[i] < 128 ? static_cast<char>(text[i]) : '?';
    return result;
  };
  throw std::runtime_error(format("the texts differ at unit %zu\n  library: %s\n  floor:   %s",
                                  place, excerpt(library).c_str(), excerpt(floor).c_str()));
}

// ---- Timing -------------------------------------------------------------------------------------

struct Subject {
  std::string name;
  std::function<void()> run;
};

// Keeps each subject's fastest repetition: whatever else runs on the machine only adds time.
class FastestRuns : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration) continue;
      const double time = run.cpu_accumulated_time / static_cast<double>(run.iterations);
      double& fastest = seconds.try_emplace(run.run_name.function_name, time).first->second;
      fastest = std::min(fastest, time);
    }
  }
  std::map<std::string, double> seconds;
};

// The repetitions of all subjects alternate in random order, so that each meets the same machine.
std::map<std::string, double> measure(const std::vector<Subject>& subjects) {
  benchmark::ClearRegisteredBenchmarks();
  for (const Subject& subject : subjects)
    benchmark::RegisterBenchmark(subject.name.c_str(), [&subject](benchmark::State& state) {
      int page = 0;
      for (auto _ : state) {
        PageData::get().turnTo(page++ % PageData::kPages);
        subject.run();
      }
    });
  FastestRuns reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return reporter.seconds;
}

// ---- Rows ---------------------------------------------------------------------------------------

struct Row {
  const Workload* workload;
  int count;
  double values[kMetrics] = {};  // 0: not measured
};

using Peers = std::map<Metric, std::unique_ptr<Peer>>;

Row measureRow(const Workload& workload, int count, const Peers& peers) {
  PageData::get().turnTo(0);
  const auto size = static_cast<size_t>(drawPage(workload, count, nullptr));
  // Pages differ a little in size, and the floor may write more than it should.
  const size_t room = size + size / 16 + 65536;
  MappedUnits host(room), mapped(room);
  host.touch();
  mapped.touch();
  drawPage(workload, count, host.data());
  const size_t length = writePage(workload, count, mapped.data());
  requireSameText({host.data(), size - 1}, {mapped.data(), length});

  std::vector<Subject> subjects = {
      {"library", [&] { drawPage(workload, count, host.data()); }},
      {"floor", [&] { writePage(workload, count, mapped.data()); }},
      {"fresh", [&] { writePage(workload, count, MappedUnits(room).data()); }},
  };
  if (workload.drawPeer != nullptr && count == 10000)
    for (const auto& [metric, peer] : peers)
      subjects.push_back(
          {peer->version(), [&workload, &peer = *peer, count] { workload.drawPeer(peer, count); }});
  auto seconds = measure(subjects);

  Row row = {&workload, count};
  const double elements = count + workload.furtherElements;
  row.values[kNanoseconds] = 1e9 * seconds["library"] / elements;
  row.values[kFloorNanoseconds] = 1e9 * seconds["floor"] / elements;
  const auto ratio = [&seconds](const std::string& subject, const std::string& to) {
    return seconds.contains(subject) && seconds.contains(to) ? seconds[subject] / seconds[to] : 0;
  };
  row.values[kToFloor] = ratio("library", "floor");
  row.values[kToFresh] = ratio("library", "fresh");
  for (const auto& [metric, peer] : peers) row.values[metric] = ratio(peer->version(), "library");

  PageData::get().turnTo(0);
  HeapPeak heap;
  drawPage(workload, count, host.data());
  row.values[kPeakPerElement] = static_cast<double>(heap.bytes()) / elements;
  row.values[kPeakPerByte] =
      static_cast<double>(heap.bytes()) / (2.0 * static_cast<double>(length));
  return row;
}

// ---- The table ----------------------------------------------------------------------------------

struct Column {
  const char* title;
  const char* unit;  // in the targets
  int decimals;
  bool atLeast;
};
constexpr Column kColumns[kMetrics] = {
    {"ns", "ns", 1, false},          {"F ns", "", 1, false},
    {"/ F", "F", 2, false},          {"/ fresh F", "fresh F", 2, false},
    {"Cairo /", "x Cairo", 0, true}, {"MuPDF /", "x MuPDF", 0, true},
    {"peak B", "", 1, false},        {"peak / doc", "doc", 2, false},
    {"growth", "growth", 2, false},
};

// "reach" with the aim in parentheses, and whether it holds or what does not.
std::pair<std::string, std::string> judge(const Row& row) {
  std::string targets, missed;
  for (const Target& target : row.workload->targets) {
    const Column& column = kColumns[target.metric];
    const double value = row.values[target.metric];
    if (target.count != row.count || value == 0) continue;
    targets += targets.empty() ? "" : ", ";
    targets += format("%g %s", target.reach, column.unit);
    if (target.aim != 0) targets += format(" (%g)", target.aim);
    if (column.atLeast ? value < target.reach : value > target.reach)
      missed += std::string(" ") + column.unit;
  }
  if (targets.empty()) return {};
  return {targets, missed.empty() ? "yes" : "NO:" + missed};
}

void printHeader() {
  std::string titles = "| workload |       N |", rule = "|---|--:|";
  for (const Column& column : kColumns) {
    titles += std::string(" ") + column.title + " |";
    rule += "--:|";
  }
  std::cout << titles << " reach (aim) | holds |\n" << rule << "---|---|\n";
}

void printRow(const Row& row) {
  std::cout << format("| %-8s | %7d |", row.workload->name.c_str(), row.count);
  for (int i = 0; i < kMetrics; ++i) {
    const Column& column = kColumns[i];
    const std::string text =
        row.values[i] == 0 ? "" : format("%.*f", column.decimals, row.values[i]);
    const auto width = static_cast<int>(std::char_traits<char>::length(column.title));
    std::cout << format(" %*s |", width, text.c_str());
  }
  const auto [targets, verdict] = judge(row);
  std::cout << ' ' << targets << " | " << verdict << " |" << std::endl;
}

void printConditions(const Options& options, const Peers& peers) {
  std::string processor = "unknown processor", line;
  for (std::ifstream file("/proc/cpuinfo"); std::getline(file, line);)
    if (line.starts_with("model name")) {
      processor = line.substr(line.find(':') + 2);
      break;
    }
  std::cout << processor << ", " << __VERSION__ << " (compiler)";
  for (const auto& [metric, name] : {std::pair(kCairo, "Cairo"), std::pair(kMuPdf, "MuPDF")})
    std::cout << ", "
              << (peers.contains(metric) ? peers.at(metric)->version() : format("no %s", name));
  std::cout << "\nAllocator: "
            << (options.keepHeap ? "keeps freed memory between pages (no trimming, no mapping)"
                                 : "in its default state (may return freed memory)")
            << "\nTimes are CPU time of whole pages, the fastest repetition of each.\n\n";
  for (const Workload& workload : workloads())
    std::cout << "  " << workload.name << "  " << workload.title << '\n';
  std::cout << '\n';
}

// ---- The program --------------------------------------------------------------------------------

bool isChosen(const Options& options, const Workload& workload) {
  return options.only.empty() ||
         ("," + options.only + ",").find("," + workload.name + ",") != std::string::npos;
}

// Takes out the options of ours; what is left is Google Benchmark's.
Options takeOptions(std::vector<std::string>& arguments) {
  Options options;
  std::erase_if(arguments, [&options](const std::string& argument) {
    if (argument == "--quick") return options.quick = true;
    if (argument == "--allocator=default") return !(options.keepHeap = false);
    if (argument == "--allocator=keep") return options.keepHeap = true;
    if (!argument.starts_with("--only=")) return false;
    options.only = argument.substr(7);
    return true;
  });
  const char* const speed[] = {"--benchmark_repetitions=11", "--benchmark_min_time=0.03"};
  const char* const quickSpeed[] = {"--benchmark_repetitions=5", "--benchmark_min_time=0.01"};
  const auto& defaults = options.quick ? quickSpeed : speed;
  arguments.insert(arguments.begin() + 1, std::begin(defaults), std::end(defaults));
  arguments.insert(arguments.begin() + 1, "--benchmark_enable_random_interleaving=true");
  return options;
}

// glibc gives the heap's top back to the system when a page is freed, and maps large blocks afresh
// each time: then a page pays for memory that it touches for the first time.
void keepHeap() {
  mallopt(M_TRIM_THRESHOLD, -1);
  mallopt(M_MMAP_MAX, 0);
}

void requireCountedHeap() {
  HeapPeak heap;
  SVG_Delete(SVG_Create(&kPage));
  if (heap.bytes() == 0) throw std::runtime_error("the library's heap is not counted");
}

int run(std::vector<std::string> arguments) {
  const Options options = takeOptions(arguments);
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  int count = static_cast<int>(pointers.size());
  benchmark::Initialize(&count, pointers.data());
  if (benchmark::ReportUnrecognizedArguments(count, pointers.data())) return 2;

  if (options.keepHeap) keepHeap();
  requireCountedHeap();
  Peers peers;
#if defined(BENCH_CAIRO)
  peers[kCairo] = makeCairo();
#endif
#if defined(BENCH_MUPDF)
  peers[kMuPdf] = makeMuPdf();
#endif
  printConditions(options, peers);
  printHeader();
  for (const Workload& workload : workloads()) {
    if (!isChosen(options, workload)) continue;
    double first = 0;
    for (const int elements : workload.counts) {
      if (options.quick && elements > 20000) continue;
      try {
        Row row = measureRow(workload, elements, peers);
        if (first == 0)
          first = row.values[kNanoseconds];
        else if (elements == workload.counts.back())
          row.values[kGrowth] = row.values[kNanoseconds] / first;
        printRow(row);
      } catch (const std::exception& error) {
        throw std::runtime_error(format("workload %s of %d: ", workload.name.c_str(), elements) +
                                 error.what());
      }
    }
  }
  return 0;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  try {
    return bench::run({argv, argv + argc});
  } catch (const std::exception& error) {
    std::cerr << "bench: " << error.what() << '\n';
    return 1;
  }
}
