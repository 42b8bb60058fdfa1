// Many generators on many threads: each page is what it is on one thread.
//
//     threads_test DIRECTORY...
#include <atomic>
#include <thread>

#include "pages.h"

namespace {

using namespace qz::test;

Document draw(const RecordedPage& page) {
  qz::tools::Replay replay(page.recording);
  replay.draw();
  return replay.close();
}

}  // namespace

int main(int, char** arguments) {
  const std::vector<RecordedPage> pages = readPages(arguments + 1);
  std::vector<Document> twins;
  for (const RecordedPage& page : pages) twins.push_back(draw(page));

  std::atomic<int> drawn = 0, different = 0;
  std::vector<std::thread> threads;
  for (size_t start = 0; start < 16; ++start)
    threads.emplace_back([&, start] {
      for (size_t i = 0; i < 2 * pages.size(); ++i, ++drawn) {
        const size_t page = (start + i) % pages.size();
        if (draw(pages[page]) != twins[page]) ++different;
      }
    });
  for (std::thread& thread : threads) thread.join();
  std::cout << drawn << " pages on " << threads.size() << " threads, " << different
            << " different\n";
  return drawn == 0 || different > 0 ? 1 : 0;
}
