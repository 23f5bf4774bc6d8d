#include "core/timing/EventOccurrence.h"
#include "core/timing/EventTiming.h"
#include "core/timing/EventTypes.h"
#include "support/CalendarMonth.h"

namespace kestrin {

namespace {

/// One search for a point of a rule with a daily window. Its day is the wall-clock day of now.
class WindowSearch {
 public:
  WindowSearch(const TimingRule& rule, int64 step, int64 now, const Zone& zone)
      : zone_(zone),
        step_(step),
        now_(now),
        stop_(FoldIntoDay(rule.StopTime)),
        first_(SecondsIntoDay(zone.AtMoment(rule.MultiStartTime))),
        wall_(zone.AtMoment(now)) {}

  int64 Next() const {
    const bool overMidnight = stop_ <= first_;
    if (overMidnight && SecondsIntoDay(wall_) <= stop_) {
      const int64 point = PointAfterNow(FirstPoint(-1));
      const int64 next = SecondsIntoDay(zone_.AtMoment(point)) > stop_ ? FirstPoint(0) : point;
      if (next > now_) return next;
    }
    const int64 today = FirstPoint(0);
    if (now_ < today) return today;
    const int64 point = PointAfterNow(today);
    const Civil wall = zone_.AtMoment(point);
    const bool late = SecondsIntoDay(wall) > stop_;
    const bool anotherDay = wall.seconds - MidnightOf(wall_).seconds > SecondsPerDay;
    return (overMidnight ? late && anotherDay : late || anotherDay) ? FirstPointLater() : point;
  }

 private:
  int64 FirstPoint(int64 daysOn) const {
    return zone_.ToMoment(OnDay(DayOf(wall_) + daysOn, first_));
  }
  int64 FirstPointLater() const {
    int64 daysOn = 1;
    while (FirstPoint(daysOn) <= now_) ++daysOn;  // clocks that go back over midnight
    return FirstPoint(daysOn);
  }
  int64 PointAfterNow(int64 anchor) const { return anchor + ((now_ - anchor) / step_ + 1) * step_; }

  const Zone& zone_;
  const int64 step_, now_;
  const int64 stop_, first_;
  const Civil wall_;
};

}  // namespace

int64 NextSubDaily(const TimingRule& rule, int64 now, const Zone& zone) {
  const int64 start = rule.MultiStartTime;
  if (start > now) return start;
  const int64 step = IntervalLength[static_cast<size_t>(rule.SubIntType)] * rule.Multiple;
  if (!rule.ApplyStop) return start + ((now - start) / step + 1) * step;
  return WindowSearch(rule, step, now, zone).Next();
}

}  // namespace kestrin
