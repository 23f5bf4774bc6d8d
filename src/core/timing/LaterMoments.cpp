#include "core/timing/LaterMoments.h"

#include <algorithm>

#include "core/timing/DateTimeText.h"
#include "core/timing/EventTiming.h"

namespace kestrin {

namespace {

constexpr char NoMoment[] =
    "This is no date or time. Type one like 14:30, tomorrow, 9 am or Dec 3.";
constexpr char HasPassed[] = "That has passed.";
constexpr char TooLate[] = "The event begins before that.";

std::string TimeText(int32 moment, const Zone& zone, bool use24Hours) {
  return GetTimeOfDayText(GetSecondsIntoDay(moment, zone), use24Hours);
}

/// Three letters of its weekday.
std::string DayText(int32 moment, const Zone& zone) {
  return GetDateTimeString(moment, false, zone, true).substr(0, 3);
}

PutOffMoment OnWallClock(Civil wall, const Zone& zone) {
  const int64 moment = zone.ToMoment(wall);
  return {FitsTime(moment) ? static_cast<int32>(moment) : 0, true, wall};
}

PutOffMoment AfterSeconds(int64 now, int64 seconds) {
  const int64 moment = now + seconds;
  return {FitsTime(moment) ? static_cast<int32>(moment) : 0, false, {}};
}

Civil DaysOn(Civil midnight, int64 days, int32 timeOfDay) {
  return {midnight.seconds + days * SecondsPerDay + timeOfDay};
}

}  // namespace

std::vector<LaterOffer> LaterOffers(int64 now, const Zone& zone, const LaterTerms& terms,
                                    int32 lastChoice) {
  if (!FitsTime(now)) return {};
  const Civil today = MidnightOf(zone.AtMoment(now));
  const int64 toMonday = (8 - WeekdayOf(today)) % 7 == 0 ? 7 : (8 - WeekdayOf(today)) % 7;
  std::vector<LaterOffer> offers = {
      {InFiveMinutes, "In 5 minutes", AfterSeconds(now, 300)},
      {InOneHour, "In 1 hour", AfterSeconds(now, 3600)},
      {ThisEvening, "This evening", OnWallClock(DaysOn(today, 0, terms.evening), zone)},
      {TomorrowMorning, "Tomorrow morning", OnWallClock(DaysOn(today, 1, terms.morning), zone)},
      {NextWeek, "Next week", OnWallClock(DaysOn(today, toMonday, terms.morning), zone)},
  };
  std::erase_if(offers, [&](const LaterOffer& offer) {
    return offer.when.moment <= now || (terms.begins != 0 && offer.when.moment >= terms.begins);
  });
  if (terms.begins > now)
    offers.push_back({WhenItBegins, "When it begins", {terms.begins, false, {}}});
  for (LaterOffer& offer : offers) {
    const bool namesDay = offer.choice == TomorrowMorning || offer.choice == NextWeek;
    const std::string day = namesDay ? DayText(offer.when.moment, zone) + " " : "";
    offer.label += " (" + day + TimeText(offer.when.moment, zone, terms.use24Hours) + ")";
  }
  const auto last = std::find_if(offers.begin(), offers.end(), [&](const LaterOffer& offer) {
    return offer.choice == lastChoice;
  });
  if (last != offers.end()) std::rotate(offers.begin(), last, last + 1);
  return offers;
}

std::string MomentInWords(int32 moment, int64 now, const Zone& zone, bool use24Hours) {
  const int64 days =
      (MidnightOf(zone.AtMoment(moment)).seconds - MidnightOf(zone.AtMoment(now)).seconds) /
      SecondsPerDay;
  const std::string day = days == 0   ? "today"
                          : days == 1 ? "tomorrow"
                                      : GetDateTimeString(moment, false, zone, use24Hours);
  return day + ", " + TimeText(moment, zone, use24Hours);
}

TypedMoment ReadTypedMoment(std::string_view text, int64 now, const Zone& zone,
                            const LaterTerms& terms) {
  if (!FitsTime(now)) return {{}, NoMoment};
  const int32 timeAlone = ParseTimeOfDay(text);
  PutOffMoment when;
  if (timeAlone >= 0) {
    const Civil today = MidnightOf(zone.AtMoment(now));
    const bool isAhead = zone.ToMoment(DaysOn(today, 0, timeAlone)) > now;
    when = OnWallClock(DaysOn(today, isAhead ? 0 : 1, timeAlone), zone);
  } else {
    bool hasTime = false;
    int32 moment = hastimeinfo_parsedate(text, now, zone, &hasTime);
    // "20 minutes" is meant as "in 20 minutes".
    if (moment == -1)
      moment = hastimeinfo_parsedate("in " + std::string(text), now, zone, &hasTime);
    if (moment == -1) return {{}, NoMoment};
    const Civil wall = zone.AtMoment(moment);
    if (!hasTime)
      when = OnWallClock(DaysOn(wall, 0, terms.morning), zone);
    else if (moment - now < SecondsPerDay)
      when = {moment, false, {}};
    else
      when = OnWallClock(wall, zone);
  }
  if (when.moment <= now) return {{}, HasPassed};
  if (terms.begins != 0 && when.moment > terms.begins) return {{}, TooLate};
  return {when, ""};
}

}  // namespace kestrin
