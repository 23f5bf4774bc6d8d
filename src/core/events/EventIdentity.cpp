#include "core/events/EventIdentity.h"

#include <array>
#include <charconv>

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
  const std::array<int64, 14> values = {
      rule.PeriodType,  rule.Multiple,   rule.TimingType, rule.EventTime,      rule.DayOfMonth,
      rule.WeekOfMonth, rule.DayOfWeek,  rule.Month,      rule.MultiStartTime, rule.ApplyTime,
      rule.TimeToApply, rule.SubIntType, rule.ApplyStop,  rule.StopTime};
  constexpr size_t MostDigits = 20;
  std::array<char, values.size() * (MostDigits + 1)> text{};
  char* end = text.data();
  for (const int64 value : values) {
    end = std::to_chars(end, end + MostDigits, value).ptr;
    *end++ = ' ';
  }
  return Fnv32({text.data(), static_cast<size_t>(end - text.data())});
}

}  // namespace kestrin
