// Processor time of reading a set and of computing every event's next time anew.
//
//   next-bench FILE [RUNS]
//
// Prints, as nanoseconds per event and the best of the runs: reading and computing event by event,
// as "kestrinctl next" does; reading all into a set, as the application does; computing all of it.
#include <time.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <utility>

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
  double oneByOne = std::numeric_limits<double>::max();
  double read = oneByOne;
  double compute = oneByOne;
};

bool RunOneByOne(const char* path, Figures& best) {
  VirtualEngine engine;
  engine.clock.Time = SystemClock().Now();
  LoadBuiltInHandlers(engine.context);
  SetFileReport report;
  int64 events = 0, sum = 0;
  report.OnEvent = [&](Event& event) {
    event.UpdateEventTime();
    ++events;
    sum += event.GetNextEventTime();
  };
  const double begun = ProcessorNanoseconds();
  const SetReading reading = ReadSet(engine.context, path, std::move(report));
  best.oneByOne = std::min(best.oneByOne, (ProcessorNanoseconds() - begun) /
                                              static_cast<double>(std::max<int64>(events, 1)));
  return reading.Set && sum != 0;
}

bool RunWhole(const char* path, Figures& best) {
  VirtualEngine engine;
  engine.clock.Time = SystemClock().Now();
  LoadBuiltInHandlers(engine.context);
  const double begun = ProcessorNanoseconds();
  const SetReading reading = ReadSet(engine.context, path);
  const double read = ProcessorNanoseconds();
  if (!reading.Set || reading.Set->CountEvents() == 0) return false;
  const EventSet& set = *reading.Set;
  for (const auto& event : set.Events()) event->UpdateEventTime();
  const double events = set.CountEvents();
  best.read = std::min(best.read, (read - begun) / events);
  best.compute = std::min(best.compute, (ProcessorNanoseconds() - read) / events);
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
  const int runs = argc > 2 ? std::atoi(argv[2]) : 7;
  // Apart, or the one would tidy up the heap that the other has left.
  for (const auto run : {kestrin::RunOneByOne, kestrin::RunWhole})
    for (int i = 0; i < runs; ++i) {
      if (run(argv[1], best)) continue;
      std::fprintf(stderr, "next-bench: %s: no events can be read\n", argv[1]);
      return 2;
    }
  std::printf("%.0f %.0f %.0f\n", best.oneByOne, best.read, best.compute);
  return 0;
}
