// The reader of recordings: any bytes are read or refused, and what is read can be drawn.
#include <cstddef>
#include <sstream>

#include "recording.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::istringstream file(std::string(reinterpret_cast<const char*>(data), size));
  qz::tools::Recording recording("no directory");
  std::string line;
  while (std::getline(file, line)) {
    try {
      recording.append(line);
    } catch (const qz::tools::RecordingError&) {
    }
  }
  if (recording.page() == nullptr) return 0;
  qz::tools::Replay replay(recording);
  replay.draw();
  replay.close();
  return 0;
}
