// Makes the sample event set: one event of every period type, every built-in handler among them.
//
//   make-sample OUT.kestrin [--now TIME] [--soon SECONDS] [--copies N] [--alerts SECONDS]
//                [--heap N]
//
// Times are reckoned from TIME (seconds since 1970; now by default). With --soon, the first event
// is a reminder due that many seconds later. With --alerts, the set holds something else: a
// prewarning, a nag and a question, which come that many seconds later and apart. With --heap, it
// holds so many events that come all at once, after --soon seconds: of twenty, one is a question.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/delivery/VirtualEngine.h"
#include "core/events/EventSet.h"
#include "core/files/StoredSetFile.h"
#include "handlers/LoadEventHandlers.h"
#include "handlers/SampleEvents.h"

namespace kestrin {
namespace {

constexpr int32 Hour = 3600, Minute = 60;

void AddAlerts(SampleEvents& sample, VirtualEngine& engine, int32 apart) {
  const auto now = static_cast<int32>(engine.clock.Time);
  Event& birthday = sample.Add(SampleEvents::Cake, "Ada's birthday", Once, -1);
  birthday.SetEventTime(now + apart + Minute, true);
  birthday.SetApplyPrewarn(true);
  birthday.SetPrewarnTime(1);
  birthday.SetPrewarnType(Minutes);
  birthday.SetPrewarnMessage("Time to find a present.");

  Event& rent = sample.Add(SampleEvents::Money, "Pay the rent", Once, -1);
  rent.SetDeliverIfMissed(false);
  rent.SetApplyNag(true);
  rent.SetNagRepeatTime(2);
  rent.SetNagRepeatType(Minutes);
  rent.SetNagMessage("It is still not paid.");
  engine.clock.Time -= Hour;  // its time has gone by when the set is opened
  rent.SetEventTime(now + 2 * apart - 2 * Minute, true);
  engine.clock.Time += Hour;

  Event& backup = sample.AddBackup(Once, -1);
  backup.SetEventTime(now + 3 * apart, true);
}

void AddHeap(SampleEvents& sample, int32 count, int32 due) {
  constexpr const char* names[] = {"Water the plants", "Ring Ada up", "Stand-up", "Take a break",
                                   "Put the bins out"};
  for (int32 i = 0; i < count; ++i) {
    Event& event =
        i % 20 == 19 ? sample.AddBackup(Once, -1) : sample.Add(i % 11, names[i % 5], Once, -1);
    if (i % 20 != 19) SampleEvents::Say(event, "Five minutes are enough for it.");
    event.SetEventTime(due, true);
  }
}

struct Wishes {
  int64 now = SystemClock().Now();
  int32 soon = 0, copies = 1, alerts = 0, heap = 0;
};

void Fill(EventSet& set, VirtualEngine& engine, const Wishes& wishes) {
  SampleEvents sample(set);
  const auto now = static_cast<int32>(wishes.now);
  if (wishes.alerts > 0) AddAlerts(sample, engine, wishes.alerts);
  if (wishes.heap > 0) AddHeap(sample, wishes.heap, now + std::max(wishes.soon, 1));
  const bool isSample = wishes.alerts == 0 && wishes.heap == 0;
  for (int32 copy = 0; isSample && copy < wishes.copies; ++copy)
    sample.AddSample(wishes.soon > 0 ? wishes.soon : 24 * Hour);
}

int Make(const char* path, const Wishes& wishes) {
  VirtualEngine engine;
  engine.clock.Time = wishes.now;
  LoadBuiltInHandlers(engine.context);
  const std::unique_ptr<EventSet> set = NewSet(engine.context, "sample");
  Fill(*set, engine, wishes);
  SetLayout& layout = set->Layout();
  layout.WindowFrame = {60, 80, 613,
                        440};  // as wide as a new one, so that it grows with its columns
  layout.ColumnShown.fill(true);
  const bool saved = set->SaveCopy(path);
  if (!saved) std::fprintf(stderr, "make-sample: %s: cannot be written\n", path);
  return saved ? 0 : 2;
}

}  // namespace
}  // namespace kestrin

int main(int argc, char** argv) {
  kestrin::Wishes wishes;
  const char* path = argc > 1 ? argv[1] : nullptr;
  bool usable = path != nullptr && argc % 2 == 0;
  for (int i = 2; usable && i + 1 < argc; i += 2) {
    if (std::strcmp(argv[i], "--now") == 0)
      wishes.now = std::strtoll(argv[i + 1], nullptr, 10);
    else if (std::strcmp(argv[i], "--soon") == 0)
      wishes.soon = std::atoi(argv[i + 1]);
    else if (std::strcmp(argv[i], "--copies") == 0)
      wishes.copies = std::atoi(argv[i + 1]);
    else if (std::strcmp(argv[i], "--alerts") == 0)
      wishes.alerts = std::atoi(argv[i + 1]);
    else if (std::strcmp(argv[i], "--heap") == 0)
      wishes.heap = std::atoi(argv[i + 1]);
    else
      usable = false;
  }
  if (!usable) {
    std::fputs(
        "usage: make-sample OUT.kestrin [--now TIME] [--soon SECONDS] [--copies N]\n"
        "                   [--alerts SECONDS] [--heap N]\n",
        stderr);
    return 1;
  }
  return kestrin::Make(path, wishes);
}
