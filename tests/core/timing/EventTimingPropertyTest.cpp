// What holds for any rule: in UTC against a slow computation that takes one step after another with
// the C library's calendar, and of any bytes at all.
#include <gtest/gtest.h>

#include <ctime>
#include <random>

#include "core/timing/EventTiming.h"

namespace kestrin {
namespace {

constexpr int64 Day = 86400;

class StepByStep {
 public:
  StepByStep(const TimingRule& rule, int64 now) : r_(rule), now_(now) {}

  int64 Actual() {
    const bool multi = r_.PeriodType >= MultiAnnually;
    const int64 from = multi ? r_.MultiStartTime : now_;
    const int steps = multi ? static_cast<int>(r_.Multiple) : 1;
    tm t = Broken(from - from % Day);
    switch (r_.PeriodType) {
      case Once:
        return r_.EventTime;
      case Annually:
      case MultiAnnually:
        if (r_.TimingType == ByDate) return ByDateFrom(steps, multi ? from : INT64_MIN);
        t.tm_mon = r_.Month;
        return Stepped(t, t.tm_year, from, steps);
      case Monthly:
      case MultiMonthly:
        return Stepped(t, t.tm_mon, from, steps);
      case Weekly:
      case MultiWeekly: {
        const int ahead = (r_.DayOfWeek - t.tm_wday + 7) % 7;
        t.tm_mday += ahead || !r_.ApplyTime || r_.TimeToApply > from % Day ? ahead : 7;
        for (a_ = timegm(&t) + Tod(); a_ <= now_;) a_ += 7 * Day * steps;
        return a_;
      }
      case SubDaily:
        return WithinTheDay();
      default: {
        a_ = from - from % Day + Tod();
        if (a_ <= from) a_ += Day;
        while (a_ <= now_) a_ += Day * steps;
        const int w = Broken(a_).tm_wday;
        if (r_.PeriodType == Weekdays) return a_ + (w == 0 ? Day : w == 6 ? 2 * Day : 0);
        return a_ + (r_.PeriodType == Weekends && w >= 1 && w <= 5 ? (6 - w) * Day : 0);
      }
    }
  }

 private:
  static tm Broken(time_t time) {
    tm fields = {};
    gmtime_r(&time, &fields);
    return fields;
  }
  int64 Tod() const { return r_.ApplyTime ? r_.TimeToApply : 0; }
  int64 ByDateFrom(int years, int64 start) {
    tm t = Broken(r_.EventTime);
    for (a_ = r_.EventTime; a_ < start; a_ = timegm(&t)) ++t.tm_year;
    for (; a_ <= now_; a_ = timegm(&t)) t.tm_year += years;
    return a_;
  }
  int64 Stepped(tm& t, int& unit, int64 from, int steps) {
    while (Eval(t, r_.TimingType == ByDayOfMonth) <= from) ++unit;
    for (; a_ <= now_; Eval(t, r_.TimingType == ByDayOfMonth)) unit += steps;
    return a_;
  }
  int64 Eval(tm& t, bool byDay) {
    const int month = byDay || r_.Month == EachMonthsOwnEnd ? t.tm_mon : r_.Month;
    tm last = {};
    last.tm_year = t.tm_year, last.tm_mon = month + 1;  // day 0: the one before
    const int length = Broken(timegm(&last)).tm_mday;
    if (byDay) {
      t.tm_mday =
          r_.DayOfMonth >= 32 ? length - r_.DayOfMonth + 32 : std::min<int>(r_.DayOfMonth, length);
    } else {
      t.tm_mday = r_.WeekOfMonth <= 3 ? 1 : length;
      t = Broken(timegm(&t));
      if (r_.WeekOfMonth <= 3)
        t.tm_mday += (r_.DayOfWeek - t.tm_wday + 7) % 7 + 7 * r_.WeekOfMonth;
      else
        t.tm_mday -= (t.tm_wday - r_.DayOfWeek + 7) % 7 + 7 * (r_.WeekOfMonth - 4);
    }
    return a_ = timegm(&t) + Tod();
  }
  int64 GridAfterNow(int64 a) const {
    const int64 step = IntervalLength[static_cast<size_t>(r_.SubIntType)] * r_.Multiple;
    while (a <= now_) a += step;
    return a;
  }
  int64 WithinTheDay() const {
    if (r_.MultiStartTime > now_) return r_.MultiStartTime;
    if (!r_.ApplyStop) return GridAfterNow(r_.MultiStartTime);
    const int64 st = r_.MultiStartTime % Day, stop = r_.StopTime, l = now_ - now_ % Day;
    if (stop <= st && stop >= now_ % Day) {
      const int64 a = GridAfterNow(l + st - Day), next = a % Day > stop ? l + st : a;
      if (next > now_) return next;
    }
    if (now_ < l + st) return l + st;
    const int64 a = GridAfterNow(l + st);
    const bool out = stop > st ? a % Day > stop || a - l > Day : a - l > Day && a % Day > stop;
    return out ? l + st + Day : a;
  }

  const TimingRule& r_;
  const int64 now_;
  int64 a_ = 0;
};

class RandomRules {
 public:
  explicit RandomRules(uint32 seed) : random_(seed) {}
  template <typename Number = int64>
  Number Pick(int64 least, int64 most) {
    return static_cast<Number>(std::uniform_int_distribution<int64>(least, most)(random_));
  }
  /// A rule that an editor would let pass, with times from 1971 to 2030.
  TimingRule Sane(int32 kind) {
    TimingRule rule;
    rule.PeriodType = kind;
    do rule.TimingType = Pick<int32>(0, 2);
    while (!AllowableTypeCombination[kind][rule.TimingType]);
    rule.Multiple = Pick<uint32>(1, Pick(0, 1) ? 3 : 50);
    rule.EventTime = Pick<int32>(31536000, 1900000000);
    rule.MultiStartTime = Pick<int32>(31536000, 1900000000);
    if (Pick(0, 1)) rule.MultiStartTime -= rule.MultiStartTime % static_cast<int32>(Day);
    rule.DayOfMonth = Pick<int8>(1, 59);
    rule.WeekOfMonth = Pick<int8>(0, 7);
    rule.DayOfWeek = Pick<int8>(0, 6);
    rule.Month = Pick<int8>(0, kind == Monthly || kind == MultiMonthly ? 12 : 11);
    rule.ApplyTime = Pick(0, 3) > 0;
    rule.TimeToApply = Pick(0, 1) ? Pick<int32>(0, 86399) : Pick<int32>(0, 95) * 900;
    rule.SubIntType = Pick<int32>(3, 4);
    rule.ApplyStop = Pick(0, 1);
    rule.StopTime =
        Pick(0, 4) ? Pick<int32>(0, 86399) : rule.MultiStartTime % static_cast<int32>(Day);
    return rule;
  }
  int64 Now() { return Pick(31536000, 2000000000); }

 private:
  std::mt19937_64 random_;
};

TEST(EventTimingProperty, AgreesWithStepByStepComputationInUtc) {
  RandomRules random(2026);
  for (int32 kind = 0; kind < NumberOfPeriodTypes; ++kind) {
    for (int i = 0; i < 3000; ++i) {
      SCOPED_TRACE(testing::Message() << "kind " << kind << ", rule " << i);
      const TimingRule rule = random.Sane(kind);
      // At any moment, then a second before the occurrence and at it.
      int64 now = random.Now();
      for (const int64 ahead : {1, 0, 0}) {
        const int64 expected = StepByStep(rule, now).Actual();
        const EventTimes times = ComputeEventTimes(rule, now, Zone());
        if (expected > INT32_MAX || (kind == Once && expected <= now)) {
          ASSERT_EQ(times.Status, DoneWithEvent);
        } else {
          ASSERT_EQ(times.NextEventTime, expected);
        }
        now = std::min<int64>(expected, INT32_MAX) - ahead;
      }
    }
  }
}

}  // namespace
}  // namespace kestrin
