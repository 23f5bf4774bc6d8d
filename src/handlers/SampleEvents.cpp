#include "handlers/SampleEvents.h"

#include <utility>

#include "core/events/Context.h"
#include "core/ports/Clock.h"
#include "core/timing/EventTypes.h"
#include "handlers/ActOnFileDataHandler.h"
#include "handlers/CommandDataHandler.h"
#include "handlers/MessageDataHandler.h"
#include "support/LocalTime.h"

namespace kestrin {

namespace {

constexpr int32 Hour = 3600, Minute = 60;
enum HandlerRow : int32 { DoNothingRow = 1, MessageRow = 2, CommandRow = 3, ActOnFileRow = 4 };

}  // namespace

Event& SampleEvents::Add(int32 icon, const char* name, PeriodicityType type, int32 secondsIntoDay) {
  Event& event = *made_.emplace_back(std::make_unique<Event>(set_));
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

Event& SampleEvents::AddBackup(PeriodicityType type, int32 secondsIntoDay) {
  Event& backup = Add(Disk, "Back the documents up", type, secondsIntoDay);
  backup.SetSelectedHandler(CommandRow);
  auto* command = dynamic_cast<CommandDataHandler*>(backup.GetAddOnData());
  command->SetCommand("rsync -a ~/Documents/ ~/Backup/");
  command->SetVerify(true);
  return backup;
}

void SampleEvents::Say(Event& event, const char* text) {
  event.SetSelectedHandler(MessageRow);
  dynamic_cast<MessageDataHandler*>(event.GetAddOnData())->SetMessage(text);
}

int32 SampleEvents::Today(int32 secondsIntoDay) const {
  const Context& context = set_.GetContext();
  Civil time = MidnightOf(context.zone.AtMoment(context.clock.Now()));
  time.seconds += secondsIntoDay;
  return static_cast<int32>(context.zone.ToMoment(time));
}

SampleEvents::~SampleEvents() {
  for (std::unique_ptr<Event>& event : made_) set_.AppendRead(std::move(event));
}

void SampleEvents::AddSample(int32 welcomeAfter) {
  AddWelcome(welcomeAfter);
  AddYearly();
  AddMonthly();
  AddWeekly();
  AddDaily();
}

void SampleEvents::AddWelcome(int32 seconds) {
  Event& event = Add(Bell, "Welcome to Kestrin", Once, -1);
  event.SetEventTime(static_cast<int32>(set_.GetContext().clock.Now()) + seconds, true);
  Say(event, "This is what a reminder looks like. Press Ok, and have a look at the list.");
}

void SampleEvents::AddYearly() {
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

void SampleEvents::AddMonthly() {
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

void SampleEvents::AddWeekly() {
  Event& choir = Add(Star, "Choir practice", Weekly, 19 * Hour + 30 * Minute);
  choir.SetDayOfWeek(4);
  choir.SetDeliverIfMissed(false);
  Say(choir, "Bring the new score.");

  Event& bins = Add(House, "Put the paper bin out", MultiWeekly, 20 * Hour);
  bins.SetMultiple(2);
  bins.SetDayOfWeek(2);
  Say(bins, "");
}

void SampleEvents::AddDaily() {
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

}  // namespace kestrin
