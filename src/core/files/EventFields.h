// The one list of an event's fields, in the order in which set files, messages and dumps hold them.
#pragma once

#include "core/timing/EventRecord.h"

namespace kestrin {

/// What a field is called in a record and, where that differs, in a message.
struct FieldName {
  constexpr FieldName(const char* both) : record(both), message(both) {}
  constexpr FieldName(const char* inRecord, const char* inMessage)
      : record(inRecord), message(inMessage) {}
  const char* record;
  const char* message;
};

template <typename Record, typename Visitor>
void VisitRule(Record& record, Visitor& visit) {
  visit.Field("PeriodType", record.PeriodType);
  visit.Field("Multiple", record.Multiple);
  visit.Field({"TimingType", "TimeType"}, record.TimingType);
  visit.Field("RememberType", record.RememberType);
  visit.Field({"EventTime", "SelectEventTime"}, record.EventTime);
  visit.Field("DayOfMonth", record.DayOfMonth);
  visit.Field("WeekOfMonth", record.WeekOfMonth);
  visit.Field("DayOfWeek", record.DayOfWeek);
  visit.Field("Month", record.Month);
  visit.Field("MultiStartTime", record.MultiStartTime);
  visit.Field("ApplyTime", record.ApplyTime);
  visit.Field({"TimeToApply", "SecondsIntoDay"}, record.TimeToApply);
  visit.Field("SubIntType", record.SubIntType);
  visit.Field("ApplyStop", record.ApplyStop);
  visit.Field("StopTime", record.StopTime);
}

template <typename Record, typename Visitor>
void VisitReminders(Record& record, Visitor& visit) {
  visit.Field("ApplyPrewarn", record.ApplyPrewarn);
  visit.Field("PrewarnTime", record.PrewarnTime);
  visit.Field("PrewarnType", record.PrewarnType);
  visit.Field("ApplyPrewarnRepeat", record.ApplyPrewarnRepeat);
  visit.Field("PrewarnRepeatTime", record.PrewarnRepeatTime);
  visit.Field("PrewarnRepeatType", record.PrewarnRepeatType);
  visit.OptionalText("PrewarnMessage", record.PrewarnMessage);
  visit.Field("ApplyNag", record.ApplyNag);
  visit.Field("NagRepeatTime", record.NagRepeatTime);
  visit.Field("NagRepeatType", record.NagRepeatType);
  visit.OptionalText("NagMessage", record.NagMessage);
  visit.Field("DeliverIfMissed", record.DeliverIfMissed);
  visit.Field("DeleteOnceDelivered", record.DeleteOnceDelivered);
  visit.OptionalText("Comment", record.Comment);
}

/// Calls `visit` for every field. Beside `Field` for each type that a record holds it has
/// `OptionalText` for a text that a message leaves out when it is empty, and for the places that
/// are not alike everywhere: `AfterStatus`, `Icon` (the number, and the bitmaps that OwnIconNumber
/// needs) and `WindowOpen`.
template <typename Record, typename Visitor>
void VisitEventFields(Record& record, Visitor& visit) {
  visit.Field("Name", record.Name);
  visit.Field("NextEventTime", record.NextEventTime);
  visit.Field("ActualEventTime", record.ActualEventTime);
  visit.Field("Active", record.Active);
  visit.Field("Status", record.Status);
  visit.AfterStatus();
  VisitRule(record, visit);
  VisitReminders(record, visit);
  visit.Icon(record.IconNumber);
  visit.Field("WindowFrame", record.WindowFrame);
  visit.WindowOpen(record.ShouldWindowOpen);
  visit.Field({"TabShown", "ShownTab"}, record.TabShown);
}

}  // namespace kestrin
