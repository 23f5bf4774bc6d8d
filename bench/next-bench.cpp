// Processor time of reading a set and of computing every event's next time anew.
//
//   next-bench FILE [RUNS]
//
// Prints, as nanoseconds per event and the best of the runs: read, compute, total.
#include <time.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "core/delivery/VirtualEngine.h"
#include "core/events/EventSet.h"
#include "core/files/StoredSetFile.h"
#include "handlers/LoadEventHandlers.h"

namespace kestrin {
namespace {

double ProcessorNanoseconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

struct Figures {
  double read = std::numeric_limits<double>::max();
  double compute = read;
  double total = read;
};

bool RunOnce(const char* path, Figures& best) {
  VirtualEngine engine;
  engine.clock.Time = SystemClock().Now();
  LoadBuiltInHandlers(engine.context);
  const double begun = ProcessorNanoseconds();
  const SetReading reading = ReadSet(engine.context, path);
  const double read = ProcessorNanoseconds();
  if (!reading.Set || reading.Set->CountEvents() == 0) return false;
  const EventSet& set = *reading.Set;
  for (const auto& event : set.Events()) event->UpdateEventTime();
  const double computed = ProcessorNanoseconds();
  const double events = set.CountEvents();
  best.read = std::min(best.read, (read - begun) / events);
  best.compute = std::min(best.compute, (computed - read) / events);
  best.total = std::min(best.total, (computed - begun) / events);
  return true;
}

}  // namespace
}  // namespace kestrin

int main(int argc, char** argv) {
  if (argc < 2 || argc > 3) {
    std::fputs("usage: next-bench FILE [RUNS]\n", stderr);
    return 1;
  }
  kestrin::Figures best;
  for (int runs = argc > 2 ? std::atoi(argv[2]) : 7; runs > 0; --runs) {
    if (!kestrin::RunOnce(argv[1], best)) {
      std::fprintf(stderr, "next-bench: %s: no events can be read\n", argv[1]);
      return 2;
    }
  }
  std::printf("%.0f %.0f %.0f\n", best.read, best.compute, best.total);
  return 0;
}
