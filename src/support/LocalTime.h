// Moments, wall-clock times and zones. A moment is int64 seconds since 1970-01-01 00:00 UTC. A wall
// clock time is `Civil`: seconds since 1970-01-01 00:00 as the clock on the wall shows it, a day
// being 86400 of them, whatever the zone. The two meet in `Zone` alone.
#pragma once

#include <absl/time/time.h>

#include <compare>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kestrin/Types.h"

namespace kestrin {

inline constexpr int64 SecondsPerDay = 86400;

struct Civil {
  int64 seconds = 0;
  auto operator<=>(const Civil&) const = default;
};

/// Broken-down wall-clock time. Out-of-range fields are allowed where a function normalises.
struct CivilFields {
  int64 year = 1970;  ///< full year, for example 2026
  int64 month = 0;    ///< 0 = January
  int64 day = 1;      ///< 1..31
  int64 hour = 0, minute = 0, second = 0;
  int weekday = 4;  ///< 0 = Sunday; ignored on the way in
};

/// Normalises as mktime does: any field may lie outside its range. Proleptic Gregorian calendar.
Civil ToCivil(const CivilFields& fields);
CivilFields ToFields(Civil time);
/// 0 = Sunday.
int WeekdayOf(Civil time);
/// Midnight of the same day on the wall clock.
Civil MidnightOf(Civil time);
/// 0..86399.
int32 SecondsIntoDay(Civil time);

/// A time zone by name. Cheap to copy; safe in any thread.
class Zone {
 public:
  Zone();  ///< UTC

  /// A zone of the system's database, or nothing when there is none of that name.
  static std::optional<Zone> Load(const std::string& name);

  /// The zone that TZ names (UTC when there is none of that name), else the one that /etc/localtime
  /// points to, else the one that /etc/timezone names, else UTC. Looked up anew at every call
  /// (up to a fifth of a millisecond), so a changed link is seen.
  static Zone System();

  const std::string& Name() const { return name_; }

  Civil AtMoment(int64 moment) const;

  enum class Answer { Unique, Skipped, Repeated };
  struct Resolved {
    int64 moment;  ///< Skipped: the first moment after the gap. Repeated: the first occurrence.
    Answer answer;
  };
  Resolved Resolve(Civil time) const;
  int64 ToMoment(Civil time) const { return Resolve(time).moment; }

 private:
  Zone(absl::TimeZone zone, std::string name);

  /// A change of the clocks: at `moment` they go from `before` to `after` seconds east of UTC.
  struct Change {
    int64 moment;
    int32 before, after;
    int64 FirstCivil() const { return moment + (before < after ? before : after); }
    int64 EndCivil() const { return moment + (before < after ? after : before); }
  };
  static std::vector<Change> ChangesOf(const absl::TimeZone& zone);
  Resolved ResolveByRule(Civil time) const;

  absl::TimeZone zone_;
  std::string name_;
  /// Every change that an int32 time can meet, in order: looking one up is far cheaper than asking
  /// the zone, which works out all the fields of a date.
  std::shared_ptr<const std::vector<Change>> changes_;
  int32 firstOffset_ = 0;
};

}  // namespace kestrin
