// The plain values of one event, under the names its file record gives them. Any value may come
// from a file: numbers outside their tables are kept as they are and never used as an index.
#pragma once

#include <string>

#include "core/timing/EventTypes.h"
#include "kestrin/Types.h"

namespace kestrin {

/// The part of the record that decides when an event occurs. Times are seconds since 1970, times
/// of day are seconds after local midnight. Enumerations are plain int32 because a file may hold
/// any number.
struct TimingRule {
  int32 NextEventTime = 0;
  int32 ActualEventTime = 0;
  int32 Status = WaitingForEvent;
  int32 PeriodType = Once;
  uint32 Multiple = 2;
  int32 TimingType = ByDate;
  int32 RememberType = ByDate;
  int32 EventTime = 0;
  int8 DayOfMonth = 1;   ///< 1..31; 32 = last day, 32 + k = (k + 1)-th to last
  int8 WeekOfMonth = 0;  ///< 0..3 = first..fourth; 4 = last, 4 + k = (k + 1)-th to last
  int8 DayOfWeek = 0;    ///< 0 = Sunday
  int8 Month = 0;        ///< 0 = January; 12 = EachMonthsOwnEnd, where that means something
  int32 MultiStartTime = 0;
  bool ApplyTime = false;
  int32 TimeToApply = 0;
  int32 SubIntType = Hours;
  bool ApplyStop = false;
  int32 StopTime = 79200;
  bool ApplyPrewarn = false;
  uint32 PrewarnTime = 1;
  int32 PrewarnType = Days;
  bool ApplyPrewarnRepeat = false;
  uint32 PrewarnRepeatTime = 6;
  int32 PrewarnRepeatType = Hours;
  bool ApplyNag = false;
  uint32 NagRepeatTime = 2;
  int32 NagRepeatType = Days;
};

struct EventRecord : TimingRule {
  std::string Name = "Untitled";
  std::string PrewarnMessage;
  std::string NagMessage;
  std::string Comment;
  bool Active = true;
  bool DeliverIfMissed = true;
  bool DeleteOnceDelivered = false;
  bool ShouldWindowOpen = true;
  int32 IconNumber = 0;  ///< a standard icon, OwnIconNumber or NoIconNumber
  int32 TabShown = 0;
  Rect WindowFrame;
};

}  // namespace kestrin
