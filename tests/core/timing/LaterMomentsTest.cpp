#include "core/timing/LaterMoments.h"

#include <gmock/gmock.h>

namespace kestrin {
namespace {

using testing::ElementsAre;

constexpr int64 Saturday = 1795219200;  // 2026-11-21 00:00 UTC
constexpr int64 OneHour = 3600;

std::vector<std::string> Labels(int64 now, int32 last = -1, int64 begins = 0) {
  LaterTerms terms;
  terms.use24Hours = true;
  terms.begins = static_cast<int32>(begins);
  std::vector<std::string> labels;
  for (const LaterOffer& offer : LaterOffers(now, Zone(), terms, last))
    labels.push_back(offer.label);
  return labels;
}

TEST(LaterMomentsTest, EachNamesItsMomentPastOnesAreLeftOutAndTheLastChoiceStandsFirst) {
  const int64 now = Saturday + 14 * OneHour + 4 * 60;
  EXPECT_THAT(Labels(now),
              ElementsAre("In 5 minutes (14:09)", "In 1 hour (15:04)", "This evening (18:00)",
                          "Tomorrow morning (Sun 08:00)", "Next week (Mon 08:00)"));
  EXPECT_THAT(Labels(now + 5 * OneHour, NextWeek),
              ElementsAre("Next week (Mon 08:00)", "In 5 minutes (19:09)", "In 1 hour (20:04)",
                          "Tomorrow morning (Sun 08:00)"));
  EXPECT_THAT(Labels(now, -1, now + OneHour),
              ElementsAre("In 5 minutes (14:09)", "When it begins (15:04)"));
  EXPECT_THAT(Labels(Saturday + 2 * SecondsPerDay), testing::Contains("Next week (Mon 08:00)"));
}

TEST(LaterMomentsTest, TypedTimesLieAheadAndStayOnTheWallClock) {
  const int64 now = Saturday + 14 * OneHour;
  const struct {
    const char* typed;
    int64 moment;  ///< 0: refused
    bool onWallClock = true;
    int64 begins = 0;
  } cases[] = {
      {"15:30", now + 90 * 60},
      {"9 am", Saturday + 33 * OneHour},
      {"14:00", Saturday + 38 * OneHour},
      {"in 24 hours", Saturday + 38 * OneHour},
      {"in 23 hours", Saturday + 37 * OneHour, false},
      {"tomorrow", Saturday + 32 * OneHour},
      {"20 minutes", now + 1200, false},
      {"15:30", 0, true, now + OneHour},
      {"15:00", now + OneHour, true, now + OneHour},
      {"yesterday", 0},
      {"soon", 0},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.typed);
    LaterTerms terms;
    terms.begins = static_cast<int32>(each.begins);
    const TypedMoment read = ReadTypedMoment(each.typed, now, Zone(), terms);
    EXPECT_EQ(read.when.moment, each.moment) << read.fault;
    EXPECT_EQ(read.fault.empty(), each.moment != 0);
    EXPECT_EQ(read.when.onWallClock, each.moment != 0 && each.onWallClock);
  }
}

}  // namespace
}  // namespace kestrin
