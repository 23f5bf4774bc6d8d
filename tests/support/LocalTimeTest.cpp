#include "support/LocalTime.h"

#include <gtest/gtest.h>

#include <stdlib.h>
#include <time.h>
#include <filesystem>

#include <array>
#include <random>

namespace kestrin {
namespace {

// Sets TZ for a test; null takes it away.
void SetZone(const char* name) {
  if (name)
    setenv("TZ", name, 1);
  else
    unsetenv("TZ");
  tzset();
}

TEST(Civil, AgreesWithTheCLibrary) {
  std::mt19937_64 random(1);
  std::uniform_int_distribution<int64> seconds(-100'000'000'000, 200'000'000'000);
  std::uniform_int_distribution<int> field(-100000, 100000);
  for (int i = 0; i < 200000; ++i) {
    const Civil time{seconds(random)};
    const time_t same = time.seconds;
    tm broken = {};
    gmtime_r(&same, &broken);
    const CivilFields fields = ToFields(time);
    ASSERT_EQ(fields.weekday, broken.tm_wday) << same;
    ASSERT_EQ((std::array{fields.year - 1900, fields.month, fields.day, fields.hour, fields.minute,
                          fields.second}),
              (std::array<int64, 6>{broken.tm_year, broken.tm_mon, broken.tm_mday, broken.tm_hour,
                                    broken.tm_min, broken.tm_sec}))
        << same;
    ASSERT_EQ(ToCivil(fields), time);
    ASSERT_EQ(MidnightOf(time).seconds + SecondsIntoDay(time), time.seconds);
    ASSERT_LT(static_cast<uint32>(SecondsIntoDay(time)), SecondsPerDay);

    broken = {};
    broken.tm_year = field(random) / 20, broken.tm_mon = field(random),
    broken.tm_mday = field(random);
    broken.tm_hour = field(random), broken.tm_min = field(random), broken.tm_sec = field(random);
    const Civil joined = ToCivil({broken.tm_year + int64{1900}, broken.tm_mon, broken.tm_mday,
                                  broken.tm_hour, broken.tm_min, broken.tm_sec});
    ASSERT_EQ(joined.seconds, timegm(&broken));
  }
}

TEST(Zone, AMomentOutOfReachStaysAtItsEnd) {
  for (const int64 silly : {INT64_MIN, INT64_MAX})
    for (const Zone& zone : {Zone(), *Zone::Load("Europe/Berlin")}) {
      EXPECT_EQ(zone.AtMoment(silly).seconds < 0, silly < 0);
      EXPECT_EQ(zone.ToMoment({silly}) < 0, silly < 0);
    }
}

TEST(Zone, SystemFollowsTheEnvironment) {
  const char* const before = getenv("TZ");
  const std::optional<std::string> kept = before ? std::optional(before) : std::nullopt;
  const std::pair<const char*, const char*> cases[] = {
      {":America/New_York", "America/New_York"},
      {"/usr/share/zoneinfo/Pacific/Apia", "Pacific/Apia"},
      {"EST5EDT", "EST5EDT"},
      {"", "UTC"},
      {"No/Such_Zone", "UTC"},
      {"../../../etc/passwd", "UTC"}};
  for (const auto& [given, name] : cases) {
    SetZone(given);
    EXPECT_EQ(Zone::System().Name(), name) << given;
  }
  SetZone(nullptr);
  const time_t moment = 1794729600;
  tm broken = {};
  localtime_r(&moment, &broken);
  EXPECT_EQ(Zone::System().AtMoment(moment).seconds, timegm(&broken)) << Zone::System().Name();
  SetZone(kept ? kept->c_str() : nullptr);
  for (const char* name : {"", "localtime", "libc:localtime", "Europe", "Nowhere"})
    EXPECT_FALSE(Zone::Load(name)) << name;
}

/// Every zone of the system against the library its rules come from.
TEST(Zone, ListedChangesAgreeWithTheZoneDatabaseEverywhere) {
  std::mt19937_64 random(7);
  std::uniform_int_distribution<int64> anyTime(INT32_MIN, INT32_MAX);
  int zones = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator("/usr/share/zoneinfo")) {
    const std::string name = std::filesystem::relative(entry.path(), "/usr/share/zoneinfo");
    absl::TimeZone reference;
    const std::optional<Zone> zone = Zone::Load(name);
    if (!entry.is_regular_file() || !zone || !absl::LoadTimeZone(name, &reference)) continue;
    ++zones;
    for (int i = 0; i < 300; ++i) {
      const int64 moment = anyTime(random);
      const absl::TimeZone::CivilInfo civil = reference.At(absl::FromUnixSeconds(moment));
      ASSERT_EQ(zone->AtMoment(moment).seconds, moment + civil.offset) << name << " " << moment;
      // Around the changes, where it matters: the civil times about the next one.
      absl::TimeZone::CivilTransition change;
      absl::CivilSecond wall = civil.cs;
      if (reference.NextTransition(absl::FromUnixSeconds(moment), &change))
        wall = (i % 2 ? change.from : change.to) + (i % 7 - 3) * 600;
      const absl::TimeZone::TimeInfo expected = reference.At(wall);
      const bool skipped = expected.kind == absl::TimeZone::TimeInfo::SKIPPED;
      const Civil asked{wall - absl::CivilSecond(1970)};
      const Zone::Resolved resolved = zone->Resolve(asked);
      ASSERT_EQ(resolved.moment, absl::ToUnixSeconds(skipped ? expected.trans : expected.pre))
          << name << " " << asked.seconds;
      using enum Zone::Answer;
      const bool unique = expected.kind == absl::TimeZone::TimeInfo::UNIQUE;
      ASSERT_EQ(resolved.answer, skipped ? Skipped : unique ? Unique : Repeated) << name;
    }
  }
  EXPECT_GT(zones, 300);
}

}  // namespace
}  // namespace kestrin
