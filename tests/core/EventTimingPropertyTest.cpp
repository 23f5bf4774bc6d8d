// What holds for any rule: in UTC against a slow reckoning that takes one step after another with
// the C library's calendar, and of any bytes at all.
#include <gtest/gtest.h>

#include <ctime>
#include <random>

#include "core/EventTiming.h"

namespace kestrin {
namespace {

constexpr int64 Day = 86400;

class StepByStep {
 public:
  StepByStep(const TimingRule& rule, int64 now) : r_(rule), now_(now) {}

  int64 Actual() {
    tm today = Broken(now_ - now_ % Day);
    tm start = Broken(r_.MultiStartTime - r_.MultiStartTime % Day);
    const bool byDay = r_.TimingType == ByDayOfMonth;
    switch (r_.PeriodType) {
      case Once:
        return r_.EventTime;
      case Annually:
        if (r_.TimingType == ByDate) return ByDateFrom(1, INT64_MIN);
        today.tm_mon = static_cast<int>(r_.Month);
        while (Eval(today, byDay) <= now_) ++today.tm_year;
        return a_;
      case Monthly:
        while (Eval(today, byDay) <= now_) ++today.tm_mon;
        return a_;
      case Weekly: {
        const int d = static_cast<int>(r_.DayOfWeek), w = today.tm_wday;
        today.tm_mday += w < d ? d - w : w > d ? d - w + 7 : 0;
        if (w == d && !(r_.ApplyTime && r_.TimeToApply > now_ % Day)) today.tm_mday += 7;
        return timegm(&today) + Tod();
      }
      case Daily:
      case Weekdays:
      case Weekends: {
        const int64 a = TodayOrTomorrow(now_);
        const int w = Broken(a).tm_wday;
        if (r_.PeriodType == Weekdays) return a + (w == 0 ? Day : w == 6 ? 2 * Day : 0);
        return a + (r_.PeriodType == Weekends && w >= 1 && w <= 5 ? (6 - w) * Day : 0);
      }
      case MultiAnnually:
        if (r_.TimingType == ByDate) return ByDateFrom(r_.Multiple, r_.MultiStartTime);
        start.tm_mon = static_cast<int>(r_.Month);
        while (Eval(start, byDay) <= r_.MultiStartTime) ++start.tm_year;
        while (a_ <= now_) start.tm_year += r_.Multiple, Eval(start, byDay);
        return a_;
      case MultiMonthly:
        while (Eval(start, byDay) <= r_.MultiStartTime) ++start.tm_mon;
        while (a_ <= now_) start.tm_mon += r_.Multiple, Eval(start, byDay);
        return a_;
      case MultiWeekly: {
        const int d = static_cast<int>(r_.DayOfWeek), w = start.tm_wday;
        start.tm_mday += w < d ? d - w : w > d ? d - w + 7 : 0;
        if (w == d && r_.ApplyTime && r_.TimeToApply <= r_.MultiStartTime % Day) start.tm_mday += 7;
        a_ = timegm(&start) + Tod();
        while (a_ <= now_) a_ += 7 * Day * r_.Multiple;
        return a_;
      }
      case MultiDaily:
        a_ = TodayOrTomorrow(r_.MultiStartTime);
        while (a_ <= now_) a_ += Day * r_.Multiple;
        return a_;
      default:
        return WithinTheDay();
    }
  }

 private:
  static tm Broken(time_t time) {
    tm fields = {};
    gmtime_r(&time, &fields);
    return fields;
  }
  int64 Tod() const { return r_.ApplyTime ? r_.TimeToApply : 0; }
  int64 TodayOrTomorrow(int64 t) const {
    const int64 a = t - t % Day + Tod();
    return a <= t ? a + Day : a;
  }
  int64 ByDateFrom(uint32 years, int64 start) {
    tm t = Broken(r_.EventTime);
    for (a_ = r_.EventTime; a_ < start; a_ = timegm(&t)) ++t.tm_year;
    for (; a_ <= now_; a_ = timegm(&t)) t.tm_year += static_cast<int>(years);
    return a_;
  }
  int64 Eval(tm& t, bool byDay) {
    const int month = byDay ? t.tm_mon : r_.Month;
    const int length = DaysInMonth(month, t.tm_year);
    if (byDay) {
      t.tm_mday =
          r_.DayOfMonth >= 32 ? length - r_.DayOfMonth + 32 : std::min<int>(r_.DayOfMonth, length);
    } else {
      t.tm_mday = r_.WeekOfMonth <= 3 ? 1 : length;
      t = Broken(timegm(&t));
      int w = t.tm_wday;
      if (r_.WeekOfMonth <= 3) {
        t.tm_mday += (w < r_.DayOfWeek   ? r_.DayOfWeek - w
                      : w > r_.DayOfWeek ? r_.DayOfWeek - w + 7
                                         : 0) +
                     7 * r_.WeekOfMonth;
      } else {
        if (w < r_.DayOfWeek) w += 7;
        t.tm_mday -= w - r_.DayOfWeek + 7 * (r_.WeekOfMonth - 4);
      }
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
  int64 Pick(int64 least, int64 most) {
    return std::uniform_int_distribution<int64>(least, most)(random_);
  }
  /// A rule that an editor would let pass, with times from 1971 to 2030.
  TimingRule Sane(int32 kind) {
    const auto small = [&](int64 least, int64 most) {
      return static_cast<int8>(Pick(least, most));
    };
    const auto number = [&](int64 least, int64 most) {
      return static_cast<int32>(Pick(least, most));
    };
    TimingRule rule;
    rule.PeriodType = kind;
    do rule.TimingType = number(0, 2);
    while (!AllowableTypeCombination[kind][rule.TimingType]);
    rule.Multiple = static_cast<uint32>(Pick(1, Pick(0, 1) ? 3 : 50));
    rule.EventTime = number(31536000, 1900000000);
    rule.MultiStartTime = number(31536000, 1900000000);
    if (Pick(0, 1)) rule.MultiStartTime -= rule.MultiStartTime % static_cast<int32>(Day);
    rule.DayOfMonth = small(1, 59);
    rule.WeekOfMonth = small(0, 7);
    rule.DayOfWeek = small(0, 6);
    rule.Month = small(0, 11);
    rule.ApplyTime = Pick(0, 3) > 0;
    rule.TimeToApply = Pick(0, 1) ? number(0, 86399) : number(0, 95) * 900;
    rule.SubIntType = number(3, 4);
    rule.ApplyStop = Pick(0, 1);
    rule.StopTime = Pick(0, 4) ? number(0, 86399) : rule.MultiStartTime % static_cast<int32>(Day);
    return rule;
  }
  int64 Now() { return Pick(31536000, 2000000000); }

 private:
  std::mt19937_64 random_;
};

TEST(EventTimingProperty, AgreesWithStepByStepReckoningInUtc) {
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

TEST(EventTimingProperty, AnyBytesEnd) {
  RandomRules random(4711);
  const Zone zones[] = {Zone(), *Zone::Load("America/St_Johns"), *Zone::Load("Pacific/Apia")};
  const int64 odd[] = {INT64_MIN, INT64_MAX, INT32_MIN, INT32_MAX, -1, 0};
  for (int i = 0; i < 60000; ++i) {
    SCOPED_TRACE(i);
    TimingRule rule = random.Sane(i % NumberOfPeriodTypes);
    // Each field keeps its sane value, or takes an extreme one, or any bytes at all.
    const auto spoil = [&](auto& field) {
      const int64 choice = random.Pick(0, 5);
      if (choice > 2) return;
      const int64 value = choice ? odd[random.Pick(0, 5)] : random.Pick(INT64_MIN, INT64_MAX);
      field = static_cast<std::remove_reference_t<decltype(field)>>(value);
    };
    spoil(rule.NextEventTime), spoil(rule.ActualEventTime), spoil(rule.Multiple);
    spoil(rule.EventTime), spoil(rule.DayOfMonth), spoil(rule.WeekOfMonth);
    spoil(rule.DayOfWeek), spoil(rule.Month), spoil(rule.MultiStartTime);
    spoil(rule.TimeToApply), spoil(rule.StopTime), spoil(rule.PrewarnTime);
    spoil(rule.PrewarnRepeatTime), spoil(rule.NagRepeatTime);
    if (random.Pick(0, 9) == 0) spoil(rule.PeriodType), spoil(rule.TimingType);
    rule.SubIntType = static_cast<int32>(random.Pick(-1, 5));
    rule.PrewarnType = static_cast<int32>(random.Pick(-1, 5));
    rule.PrewarnRepeatType = static_cast<int32>(random.Pick(-1, 5));
    rule.NagRepeatType = static_cast<int32>(random.Pick(-1, 5));
    rule.ApplyPrewarn = random.Pick(0, 1), rule.ApplyPrewarnRepeat = random.Pick(0, 1);
    const int64 now = random.Pick(0, 3) ? random.Now() : odd[random.Pick(0, 5)];
    const Zone& zone = zones[i % 3];

    const EventTimes times = ComputeEventTimes(rule, now, zone);
    const bool done = times.Status == DoneWithEvent;
    ASSERT_TRUE(done ? times.NextEventTime == 0 : times.ActualEventTime > now);
    ASSERT_TRUE(done || times.NextEventTime >= now);
    ASSERT_TRUE(done || times.NextEventTime <= times.ActualEventTime);
    ASSERT_NE(times.Status, WaitingToNag);
    const EventTimes nag = NextNag(rule, now, zone);
    ASSERT_TRUE(nag.Status == DoneWithEvent || nag.NextEventTime > now);
    const EventTimes warning = NextPrewarning(rule, now, zone);
    ASSERT_TRUE(warning.NextEventTime > now || warning.NextEventTime == rule.ActualEventTime);
  }
}

}  // namespace
}  // namespace kestrin
