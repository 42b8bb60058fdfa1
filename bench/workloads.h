// What is measured: pages that are drawn through the C interface, and written by the floor.
#pragma once

#include <vector>

#include "flat_writer.h"
#include "page_data.h"
#include "peers.h"

namespace bench {

// What a row of the table tells. Times are whole cycles of a page; "per element" means divided by
// the page's number of elements.
enum Metric {
  kNanoseconds,       // per element
  kFloorNanoseconds,  // per element, of the flat writer into mapped memory
  kToFloor,           // time / time of the flat writer into memory that is already mapped
  kToFresh,           // time / time of the flat writer into memory that is mapped for each page
  kCairo,             // time of Cairo / time
  kMuPdf,             // time of MuPDF / time
  kPeakPerElement,    // bytes of heap at its peak, without the host's buffer
  kPeakPerByte,       // the same, divided by the bytes of the finished document
  kGrowth,            // time per element / that of the smallest count
  kMetrics
};

// A figure to reach at a count of elements, and one to aim for (0: none). Metrics of peers are
// reached from above, the others from below.
struct Target {
  int count;
  Metric metric;
  double reach;
  double aim = 0;
};

struct Workload {
  std::string name;
  std::string title;
  std::vector<int> counts;
  std::vector<Target> targets;
  void (*draw)(SvgGenerator* generator, int count);
  void (*write)(FlatWriter& writer, int count);
  void (*drawPeer)(Peer& peer, int count) = nullptr;
  int furtherElements = 0;  // drawn in addition to the count
};

const std::vector<Workload>& workloads();
constexpr RECT kPage = {0, 0, kPageSize, kPageSize};

}  // namespace bench
