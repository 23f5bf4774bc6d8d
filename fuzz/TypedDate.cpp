// Any text as a date that a person typed, in any language, zone and year.
#include "Trial.h"
#include "core/timing/DateTimeText.h"
#include "core/timing/LaterMoments.h"

namespace kestrin {

void TryInput(FuzzedDataProvider& in) {
  static const Zone zones[] = {Zone(), *Zone::Load("Europe/Berlin"), *Zone::Load("Pacific/Apia"),
                               *Zone::Load("Australia/Lord_Howe")};
  const Zone& zone = in.PickValueInArray(zones);
  const DateLanguage language =
      LanguageNamed(in.PickValueInArray({"en", "de", "es", "fr", "it"}),
                    in.ConsumeBool() ? DateOrder::DayFirst : DateOrder::MonthFirst);
  const int64 now = in.ConsumeBool() ? in.ConsumeIntegral<int64>() : in.ConsumeIntegral<int32>();
  const std::string text = in.ConsumeRemainingBytesAsString();

  bool hasTime = false;
  const int32 plain = hastimeinfo_parsedate(text, now, zone, &hasTime);
  Demand(plain != -1 || !hasTime, "what is no date has no time");
  Demand(hastimeinfo_parsedate(" " + text + "\t", now, zone, nullptr) == plain, "blanks are air");
  const TypedDate typed = ReadTypedDate(text, now, zone, language);
  Demand(typed.kind == TypedDate::Kind::Date || WhyNoDate(typed, true), "a refusal has its reason");
  const std::string shown = GetDateTimeString(typed.moment, true, zone, typed.hasTime);
  const bool readsBack = typed.kind == TypedDate::Kind::Date && shown != "None" &&
                         zone.ToMoment(zone.AtMoment(typed.moment)) == typed.moment;
  Demand(!readsBack || hastimeinfo_parsedate(shown, now, zone, nullptr) == typed.moment,
         "what is shown is read back");
  const int32 timeOfDay = ParseTimeOfDay(text, language);
  Demand(timeOfDay >= -1 && timeOfDay < SecondsPerDay, "a time of day lies within one");
  const TypedMoment later = ReadTypedMoment(text, now, zone, LaterTerms());
  Demand(!later.fault.empty() || later.when.moment > now, "what is put off lies ahead");
  for (const LaterOffer& offer : LaterOffers(now, zone, LaterTerms(), 0))
    Demand(offer.when.moment > now, "what is offered lies ahead");
}

}  // namespace kestrin
