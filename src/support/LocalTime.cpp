#include "support/LocalTime.h"

#include <limits.h>
#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <string_view>
#include <utility>

#include "support/CalendarMonth.h"

namespace kestrin {

namespace {

// Limits that keep the sum of all fields inside 64 bits.
constexpr int64 MaxYear = 100'000'000'000, MaxMonth = 100'000'000'000;
constexpr int64 MaxDay = 10'000'000'000'000, MaxHour = 100'000'000'000'000;
constexpr int64 MaxMinute = 10'000'000'000'000'000, MaxSecond = 1'000'000'000'000'000'000;

// After 400 years the calendar repeats itself.
constexpr int64 MonthsPerEra = 4800, DaysPerEra = 146097;

// The changes of the clocks between these two are listed: all that int32 times can meet, and a
// year.
constexpr int64 FirstListed = int64{INT32_MIN} - 366 * SecondsPerDay;
constexpr int64 EndListed = int64{INT32_MAX} + 366 * SecondsPerDay;

constexpr int64 Within(int64 value, int64 limit) { return std::clamp(value, -limit, limit); }

std::string_view AfterZoneFolder(std::string_view path) {
  constexpr std::string_view mark = "zoneinfo/";
  const size_t at = path.rfind(mark);
  return at == std::string_view::npos ? std::string_view() : path.substr(at + mark.size());
}

std::optional<Zone> LoadFromPath(const std::string& path) {
  const std::unique_ptr<char, decltype(&free)> real(realpath(path.c_str(), nullptr), &free);
  for (const std::string& candidate : {real ? std::string(real.get()) : std::string(), path}) {
    const std::string_view name = AfterZoneFolder(candidate);
    if (name.empty()) continue;
    if (std::optional<Zone> zone = Zone::Load(std::string(name))) return zone;
  }
  return std::nullopt;
}

Zone FromEnvironment(std::string name) {
  if (!name.empty() && name.front() == ':') name.erase(0, 1);
  std::optional<Zone> zone;
  if (!name.empty() && name.front() == '/') {
    zone = LoadFromPath(name);
    if (zone) return *zone;
  }
  zone = Zone::Load(name);
  return zone ? *zone : Zone();
}

}  // namespace

Civil ToCivil(const CivilFields& fields) {
  const int64 month = Within(fields.year, MaxYear) * 12 + Within(fields.month, MaxMonth);
  const int64 era = FloorDivide(month, MonthsPerEra);
  const int64 day =
      era * DaysPerEra + FirstDayOf(month - era * MonthsPerEra) + Within(fields.day, MaxDay) - 1;
  return OnDay(day, Within(fields.hour, MaxHour) * 3600 + Within(fields.minute, MaxMinute) * 60 +
                        Within(fields.second, MaxSecond));
}

CivilFields ToFields(Civil time) {
  const int64 day = DayOf(time);
  const int32 sinceMidnight = SecondsIntoDay(time);
  const int64 era = FloorDivide(day, DaysPerEra);
  const DayInMonth date = MonthOf(day - era * DaysPerEra);

  CivilFields fields;
  fields.year = era * 400 + date.month / 12;
  fields.month = date.month % 12;
  fields.day = date.day;
  fields.hour = sinceMidnight / 3600;
  fields.minute = sinceMidnight / 60 % 60;
  fields.second = sinceMidnight % 60;
  fields.weekday = WeekdayOf(time);
  return fields;
}

int WeekdayOf(Civil time) { return static_cast<int>(WeekdayOfDay(DayOf(time))); }

Civil MidnightOf(Civil time) { return OnDay(std::max(DayOf(time), INT64_MIN / SecondsPerDay), 0); }

int32 SecondsIntoDay(Civil time) {
  const int64 rest = time.seconds % SecondsPerDay;
  return static_cast<int32>(rest < 0 ? rest + SecondsPerDay : rest);
}

Zone::Zone() : Zone(absl::UTCTimeZone(), "UTC") {}

Zone::Zone(absl::TimeZone zone, std::string name)
    : zone_(zone),
      name_(std::move(name)),
      changes_(std::make_shared<const std::vector<Change>>(ChangesOf(zone))),
      firstOffset_(zone.At(absl::FromUnixSeconds(FirstListed)).offset) {}

std::optional<Zone> Zone::Load(const std::string& name) {
  // absl would keep what "localtime" meant at the first call, and reads "libc:" as a zone that the
  // C library computes.
  if (name.empty() || name == "localtime" || name.starts_with("libc:") ||
      name.find('\0') != std::string::npos)
    return std::nullopt;
  absl::TimeZone zone;
  if (!absl::LoadTimeZone(name, &zone)) return std::nullopt;
  return Zone(zone, name);
}

Zone Zone::System() {
  if (const char* named = getenv("TZ")) return FromEnvironment(named);
  if (std::optional<Zone> zone = LoadFromPath("/etc/localtime")) return *zone;
  std::ifstream file("/etc/timezone");
  std::string name;
  if (file >> name)
    if (std::optional<Zone> zone = Load(name)) return *zone;
  // A copy of a zone's file, without a name. A change of it is seen at the next start only.
  if (std::optional<Zone> zone = Load("/etc/localtime")) return *zone;
  return Zone();
}

std::vector<Zone::Change> Zone::ChangesOf(const absl::TimeZone& zone) {
  std::vector<Change> changes;
  absl::Time at = absl::FromUnixSeconds(FirstListed);
  int32 offset = zone.At(at).offset;
  // What the clocks show before and after it says all; looking a change up costs far more.
  absl::TimeZone::CivilTransition transition;
  while (zone.NextTransition(at, &transition)) {
    const int64 moment = (transition.from - absl::CivilSecond(1970)) - offset;
    if (moment >= EndListed) break;
    const auto after = static_cast<int32>(offset + (transition.to - transition.from));
    changes.push_back({moment, std::exchange(offset, after), after});
    at = absl::FromUnixSeconds(moment);
  }
  return changes;
}

Civil Zone::AtMoment(int64 moment) const {
  if (moment >= FirstListed && moment < EndListed) {
    const auto next =
        std::upper_bound(changes_->begin(), changes_->end(), moment,
                         [](int64 time, const Change& change) { return time < change.moment; });
    return {moment + (next == changes_->begin() ? firstOffset_ : std::prev(next)->after)};
  }
  const int offset = zone_.At(absl::FromUnixSeconds(moment)).offset;
  int64 seconds = 0;
  if (__builtin_add_overflow(moment, int64{offset}, &seconds))
    seconds = moment < 0 ? INT64_MIN : INT64_MAX;
  return {seconds};
}

Zone::Resolved Zone::Resolve(Civil time) const {
  if (time.seconds < FirstListed + SecondsPerDay || time.seconds >= EndListed - SecondsPerDay)
    return ResolveByRule(time);
  const auto next = std::upper_bound(
      changes_->begin(), changes_->end(), time.seconds,
      [](int64 civil, const Change& change) { return civil < change.FirstCivil(); });
  if (next == changes_->begin()) return {time.seconds - firstOffset_, Answer::Unique};
  const Change& change = *std::prev(next);
  if (time.seconds >= change.EndCivil()) return {time.seconds - change.after, Answer::Unique};
  if (change.before < change.after) return {change.moment, Answer::Skipped};
  return {time.seconds - change.before, Answer::Repeated};
}

Zone::Resolved Zone::ResolveByRule(Civil time) const {
  const CivilFields fields = ToFields(time);
  const absl::CivilSecond civil(fields.year, fields.month + 1, fields.day, fields.hour,
                                fields.minute, fields.second);
  const absl::TimeZone::TimeInfo info = zone_.At(civil);
  switch (info.kind) {
    case absl::TimeZone::TimeInfo::SKIPPED:
      return {absl::ToUnixSeconds(info.trans), Answer::Skipped};
    case absl::TimeZone::TimeInfo::REPEATED:
      return {absl::ToUnixSeconds(info.pre), Answer::Repeated};
    case absl::TimeZone::TimeInfo::UNIQUE:
      break;
  }
  return {absl::ToUnixSeconds(info.pre), Answer::Unique};
}

}  // namespace kestrin
