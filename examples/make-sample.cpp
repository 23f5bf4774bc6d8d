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
#include <string>

#include "core/delivery/VirtualEngine.h"
#include "core/events/EventSet.h"
#include "core/files/StoredSetFile.h"
#include "handlers/ActOnFileDataHandler.h"
#include "handlers/CommandDataHandler.h"
#include "handlers/LoadEventHandlers.h"
#include "handlers/MessageDataHandler.h"

namespace kestrin {
namespace {

constexpr int32 Hour = 3600, Minute = 60;
// Some of the standard icons.
constexpr int32 Bell = 0, Cake = 1, Money = 2, Disk = 3, Clock = 5, Heart = 6, Star = 8, House = 9,
                Plane = 10;
enum HandlerRow : int32 { DoNothingRow = 1, MessageRow = 2, CommandRow = 3, ActOnFileRow = 4 };

class Sample {
 public:
  explicit Sample(VirtualEngine& engine)
      : engine_(engine), set_(NewSet(engine.context, "sample")) {}

  EventSet& Set() { return *set_; }

  void AddSoon(int32 seconds) {
    Event& event = Add(Bell, "Welcome to Kestrin", Once, -1);
    event.SetEventTime(static_cast<int32>(engine_.clock.Time) + seconds, true);
    Say(event, "This is what a reminder looks like. Press Ok, and have a look at the list.");
  }

  void AddAlerts(int32 apart) {
    const auto now = static_cast<int32>(engine_.clock.Time);
    Event& birthday = Add(Cake, "Ada's birthday", Once, -1);
    birthday.SetEventTime(now + apart + Minute, true);
    birthday.SetApplyPrewarn(true);
    birthday.SetPrewarnTime(1);
    birthday.SetPrewarnType(Minutes);
    birthday.SetPrewarnMessage("Time to find a present.");

    Event& rent = Add(Money, "Pay the rent", Once, -1);
    rent.SetDeliverIfMissed(false);
    rent.SetApplyNag(true);
    rent.SetNagRepeatTime(2);
    rent.SetNagRepeatType(Minutes);
    rent.SetNagMessage("It is still not paid.");
    engine_.clock.Time -= Hour;  // its time has gone by when the set is opened
    rent.SetEventTime(now + 2 * apart - 2 * Minute, true);
    engine_.clock.Time += Hour;

    Event& backup = AddBackup(Once, -1);
    backup.SetEventTime(now + 3 * apart, true);
  }

  void AddHeap(int32 count, int32 seconds) {
    constexpr const char* names[] = {"Water the plants", "Ring Ada up", "Stand-up", "Take a break",
                                     "Put the bins out"};
    for (int32 i = 0; i < count; ++i) {
      Event& event = i % 20 == 19 ? AddBackup(Once, -1) : Add(i % 11, names[i % 5], Once, -1);
      if (i % 20 != 19) Say(event, "Five minutes are enough for it.");
      event.SetEventTime(static_cast<int32>(engine_.clock.Time) + seconds, true);
    }
  }

  void AddYearly() {
    Event& birthday = Add(Cake, "Ada's birthday", Annually, 9 * Hour);
    birthday.SetTimingType(ByDayOfMonth);
    birthday.SetMonth(11);
    birthday.SetDayOfMonth(10);
    birthday.SetApplyPrewarn(true);
    birthday.SetPrewarnTime(1);
    birthday.SetPrewarnType(Weeks);
    birthday.SetApplyPrewarnRepeat(true);
    birthday.SetPrewarnRepeatTime(2);
    birthday.SetPrewarnRepeatType(Days);
    birthday.SetPrewarnMessage("Time to find a present.");
    Say(birthday, "Ring her up and congratulate.");

    Event& passport = Add(Plane, "Renew the passport", MultiAnnually, -1);
    passport.SetMultiple(10);
    passport.SetTimingType(ByDayOfWeek);
    passport.SetWeekOfMonth(0);
    passport.SetDayOfWeek(1);
    passport.SetMonth(4);
    Say(passport, "The office is open in the mornings only.");
  }

  void AddMonthly() {
    Event& rent = Add(Money, "Pay the rent", Monthly, 18 * Hour);
    rent.SetTimingType(ByDayOfMonth);
    rent.SetDayOfMonth(32);
    rent.SetApplyNag(true);
    rent.SetNagRepeatTime(1);
    rent.SetNagRepeatType(Days);
    rent.SetNagMessage("It is still not paid.");
    Say(rent, "Last day of the month.");

    Event& filter = Add(House, "Change the water filter", MultiMonthly, 10 * Hour);
    filter.SetMultiple(3);
    filter.SetDayOfWeek(6);
    filter.SetWeekOfMonth(1);
    Say(filter, "The spare one lies in the cellar.");
  }

  void AddWeekly() {
    Event& choir = Add(Star, "Choir practice", Weekly, 19 * Hour + 30 * Minute);
    choir.SetDayOfWeek(4);
    choir.SetDeliverIfMissed(false);
    Say(choir, "Bring the new score.");

    Event& bins = Add(House, "Put the paper bin out", MultiWeekly, 20 * Hour);
    bins.SetMultiple(2);
    bins.SetDayOfWeek(2);
    Say(bins, "");
  }

  void AddDaily() {
    AddBackup(Daily, 22 * Hour);

    Event& timesheet = Add(Clock, "Fill the time sheet in", Weekdays, 16 * Hour + 45 * Minute);
    timesheet.SetSelectedHandler(ActOnFileRow);
    auto* file = dynamic_cast<ActOnFileDataHandler*>(timesheet.GetAddOnData());
    file->SetFileName("/usr/share/common-licenses/GPL-3");
    file->SetVerify(true);

    Say(Add(House, "Water the garden", Weekends, 8 * Hour), "The tomatoes first.");

    Event& plants = Add(Star, "Turn the orchids", MultiDaily, -1);
    plants.SetMultiple(5);
    plants.SetSelectedHandler(DoNothingRow);

    Event& eyes = Add(Heart, "Look out of the window", SubDaily, -1);
    eyes.SetMultiStartTime(Today(9 * Hour));
    eyes.SetMultiple(2);
    eyes.SetSubIntType(Hours);
    eyes.SetApplyStop(true);
    eyes.SetStopTime(17 * Hour);
    eyes.SetComment("Every two hours between nine and five.");
    Say(eyes, "Twenty seconds, something far away.");
  }

 private:
  /// A new event, due at `secondsIntoDay` (none when negative), starting today.
  Event& Add(int32 icon, const char* name, PeriodicityType type, int32 secondsIntoDay) {
    Event& event = *set_->AddEvent(nullptr);
    event.SetName(name);
    event.SetIcon(icon, nullptr);
    event.SetPeriodType(type);
    event.SetMultiStartTime(Today(0));
    if (secondsIntoDay >= 0) {
      event.SetApplyTime(true);
      event.SetTimeToApply(secondsIntoDay);
    }
    event.SetShouldWindowOpen(false);
    return event;
  }

  Event& AddBackup(PeriodicityType type, int32 secondsIntoDay) {
    Event& backup = Add(Disk, "Back the documents up", type, secondsIntoDay);
    backup.SetSelectedHandler(CommandRow);
    auto* command = dynamic_cast<CommandDataHandler*>(backup.GetAddOnData());
    command->SetCommand("rsync -a ~/Documents/ ~/Backup/");
    command->SetVerify(true);
    return backup;
  }

  int32 Today(int32 secondsIntoDay) const {
    const Zone& zone = engine_.context.zone;
    Civil time = MidnightOf(zone.AtMoment(engine_.clock.Time));
    time.seconds += secondsIntoDay;
    return static_cast<int32>(zone.ToMoment(time));
  }

  static void Say(Event& event, const char* text) {
    event.SetSelectedHandler(MessageRow);
    dynamic_cast<MessageDataHandler*>(event.GetAddOnData())->SetMessage(text);
  }

  VirtualEngine& engine_;
  std::unique_ptr<EventSet> set_;
};

struct Wishes {
  int64 now = SystemClock().Now();
  int32 soon = 0, copies = 1, alerts = 0, heap = 0;
};

int Make(const char* path, const Wishes& wishes) {
  VirtualEngine engine;
  engine.clock.Time = wishes.now;
  LoadBuiltInHandlers(engine.context);
  Sample sample(engine);
  if (wishes.alerts > 0) sample.AddAlerts(wishes.alerts);
  if (wishes.heap > 0) sample.AddHeap(wishes.heap, std::max(wishes.soon, 1));
  const bool isSample = wishes.alerts == 0 && wishes.heap == 0;
  for (int32 copy = 0; isSample && copy < wishes.copies; ++copy) {
    sample.AddSoon(wishes.soon > 0 ? wishes.soon : 24 * Hour);
    sample.AddYearly();
    sample.AddMonthly();
    sample.AddWeekly();
    sample.AddDaily();
  }
  SetLayout& layout = sample.Set().Layout();
  layout.WindowFrame = {60, 80, 1000, 440};
  layout.ColumnShown.fill(true);
  layout.ColumnWidth = {26, 190, 235, 235, 90, 150};
  const bool saved = sample.Set().SaveCopy(path);
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
