#include "core/events/EventIdentity.h"

#include "core/events/Event.h"
#include "core/events/EventSet.h"

namespace kestrin {

std::string JournalPath(const EventSet& set) {
  const bool isCopy = set.IsUntitled() && !set.File().RecoveredFrom().empty();
  return isCopy ? set.File().RecoveredFrom() : set.GetFileName();
}

EventName NameNow(const EventSet& set, const Event& event) {
  EventName name{event.GetName(), event.GetHandlerName(), 0};
  for (const auto& each : set.Events()) {
    if (each.get() == &event) break;
    if (each->GetName() == name.Name && each->GetHandlerName() == name.Handler) ++name.Place;
  }
  return name;
}

EventState StateOf(const TimingRule& rule) {
  return {rule.ActualEventTime, rule.NextEventTime, rule.Status, false};
}

EventState StateOf(const EventTimes& times) {
  return {times.ActualEventTime, times.NextEventTime, times.Status, false};
}

uint32 RuleMark(const TimingRule& rule) {
  std::string text;
  for (const int64 value :
       {int64{rule.PeriodType}, int64{rule.Multiple}, int64{rule.TimingType}, int64{rule.EventTime},
        int64{rule.DayOfMonth}, int64{rule.WeekOfMonth}, int64{rule.DayOfWeek}, int64{rule.Month},
        int64{rule.MultiStartTime}, int64{rule.ApplyTime}, int64{rule.TimeToApply},
        int64{rule.SubIntType}, int64{rule.ApplyStop}, int64{rule.StopTime}})
    text += std::to_string(value) + " ";
  return Fnv32(text);
}

}  // namespace kestrin
