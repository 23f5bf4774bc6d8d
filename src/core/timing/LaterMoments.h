// The moments to which a reminder can be put off. docs/reminders.md lists them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "support/LocalTime.h"

namespace kestrin {

struct PutOffMoment {
  int32 moment = 0;
  /// A named day: what counts is the time on the wall clock, whatever becomes of the zone.
  bool onWallClock = false;
  Civil wall;
};

/// Numbers that stand in the settings: never renumber.
enum LaterChoice : int32 {
  InFiveMinutes = 0,
  InOneHour = 1,
  ThisEvening = 2,
  TomorrowMorning = 3,
  NextWeek = 4,
  WhenItBegins = 5,
};

struct LaterTerms {
  int32 evening = 18 * 3600;  ///< seconds after midnight
  int32 morning = 8 * 3600;
  bool use24Hours = false;
  int32 begins = 0;  ///< of a prewarning: when its event begins, the last moment there is
};

struct LaterOffer {
  LaterChoice choice;
  std::string label;
  PutOffMoment when;
};

/// What there is to choose from at `now`, in order, `lastChoice` first when it is among them.
std::vector<LaterOffer> LaterOffers(int64 now, const Zone& zone, const LaterTerms& terms,
                                    int32 lastChoice);

/// "today, 14:09", "tomorrow, 08:00", "Mon, Nov 23 2026, 08:00".
std::string MomentInWords(int32 moment, int64 now, const Zone& zone, bool use24Hours);

struct TypedMoment {
  PutOffMoment when;
  std::string fault;  ///< a sentence for the person; empty when `when` holds
};
/// What a person typed: a day alone means its morning, a time of day that has passed tomorrow's.
TypedMoment ReadTypedMoment(std::string_view text, int64 now, const Zone& zone,
                            const LaterTerms& terms);

}  // namespace kestrin
