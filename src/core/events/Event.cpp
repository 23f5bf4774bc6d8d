#include "core/events/Event.h"

#include <algorithm>

#include "core/events/EditRecorder.h"
#include "core/events/EventSet.h"
#include "core/events/HandlerTable.h"
#include "core/ports/Clock.h"
#include "core/ports/UserInterface.h"
#include "core/settings/KestrinSettings.h"
#include "support/OwnedText.h"

namespace kestrin {

Event::Event(EventSet& owner) : owner_(owner), handle_(owner.GetContext().nextHandle++) {
  const Civil today = MidnightOf(LocalZone().AtMoment(Now()));
  const Civil tomorrow{today.seconds + SecondsPerDay};
  const int64 moment = LocalZone().ToMoment(tomorrow);
  const int32 start = FitsTime(moment) ? static_cast<int32>(moment) : 0;
  const CivilFields fields = ToFields(tomorrow);
  record_.NextEventTime = record_.ActualEventTime = start;
  record_.EventTime = record_.MultiStartTime = start;
  record_.DayOfMonth = static_cast<int8>(fields.day);
  record_.DayOfWeek = static_cast<int8>(fields.weekday);
  record_.Month = static_cast<int8>(fields.month);
  record_.WeekOfMonth = DetermineWeekOfMonth(record_.DayOfMonth, record_.DayOfWeek);
  record_.WindowFrame = owner.GetContext().settings.EventWindowPosition.NextFrame();
  SetSelectedHandler(MessageHandler);
}

Event::Event(EventSet& owner, EventRecord record)
    : owner_(owner), handle_(owner.GetContext().nextHandle++), record_(std::move(record)) {}

Event::Event(EventSet& owner, ToBeRead) : owner_(owner), handle_(owner.GetContext().nextHandle++) {}

Event::~Event() = default;

const Zone& Event::LocalZone() const { return owner_.GetContext().zone; }
int64 Event::Now() const { return owner_.GetContext().clock.Now(); }

template <typename T, typename V>
void Event::StoreTiming(T& field, V value) {
  field = value;
  UpdateEventTime();
}

template <typename T, typename V>
void Event::StorePlain(T& field, V value) {
  field = value;
  SetModified();
}

void Event::SetName(std::string_view name) {
  if (indexStamp != 0) owner_.FileNames().BeforeChange(*this);
  record_.Name = FitText(name);
  if (window_) window_->RedrawTimes();
  owner_.EventModified(this);
}

void Event::SetActive(bool active) {
  const bool isSwitchedOn = active && !record_.Active;
  record_.Active = active;
  if (isSwitchedOn && record_.NextEventTime != 0 && record_.NextEventTime <= Now()) {
    UpdateEventTime();
    return;
  }
  if (window_) window_->RedrawTimes();
  owner_.EventModified(this);
}

namespace {

bool IsAllowed(int32 periodType, int32 timingType) {
  return timingType >= 0 && timingType < NumberOfTimingTypes &&
         AllowableTypeCombination[periodType][timingType];
}

}  // namespace

void Event::SetPeriodType(PeriodicityType type) {
  record_.PeriodType = type;
  if (!IsAllowed(type, record_.TimingType)) {
    if (IsAllowed(type, record_.RememberType)) {
      record_.TimingType = record_.RememberType;
    } else {
      record_.RememberType = record_.TimingType;
      int32 highest = NumberOfTimingTypes - 1;
      while (!IsAllowed(type, highest)) --highest;
      record_.TimingType = highest;
    }
  }
  if (type == SubDaily) record_.ApplyTime = true;
  UpdateEventTime();
}

void Event::SetMultiple(uint32 multiple) { StoreTiming(record_.Multiple, multiple); }
void Event::SetTimingType(enum TimingType type) { StoreTiming(record_.TimingType, type); }

/// EventTime becomes the day of `day` joined, on the wall clock, with the time of day in use.
bool Event::JoinDayAndTime(int32 day) {
  const std::optional<int32> joined =
      OnDayOf(day, record_.ApplyTime ? record_.TimeToApply : 0, LocalZone());
  if (joined) record_.EventTime = *joined;
  return joined.has_value();
}

bool Event::SetEventTime(int32 time, bool useTimeOfDay) {
  if (useTimeOfDay) {
    record_.EventTime = time;
    record_.TimeToApply = kestrin::GetSecondsIntoDay(time, LocalZone());
    record_.ApplyTime = true;
  } else if (!JoinDayAndTime(time)) {
    return false;
  }
  UpdateEventTime();
  return true;
}

void Event::SetDayOfMonth(int8 day) { StoreTiming(record_.DayOfMonth, day); }
void Event::SetWeekOfMonth(int8 week) { StoreTiming(record_.WeekOfMonth, week); }
void Event::SetDayOfWeek(int8 day) { StoreTiming(record_.DayOfWeek, day); }
void Event::SetMonth(int8 month) { StoreTiming(record_.Month, month); }
void Event::SetMultiStartTime(int32 time) { StoreTiming(record_.MultiStartTime, time); }

void Event::SetApplyTime(bool apply) {
  record_.ApplyTime = apply;
  JoinDayAndTime(record_.EventTime);
  UpdateEventTime();
}

void Event::SetTimeToApply(int32 secondsIntoDay) {
  record_.TimeToApply = FoldIntoDay(secondsIntoDay);
  if (record_.ApplyTime) JoinDayAndTime(record_.EventTime);
  UpdateEventTime();
}

void Event::SetSubIntType(TimeIntervalType type) { StoreTiming(record_.SubIntType, type); }
void Event::SetApplyStop(bool apply) { StoreTiming(record_.ApplyStop, apply); }
void Event::SetStopTime(int32 time) { StoreTiming(record_.StopTime, FoldIntoDay(time)); }
void Event::SetApplyPrewarn(bool apply) { StoreTiming(record_.ApplyPrewarn, apply); }
void Event::SetPrewarnTime(uint32 time) { StoreTiming(record_.PrewarnTime, time); }
void Event::SetPrewarnType(TimeIntervalType type) { StoreTiming(record_.PrewarnType, type); }
void Event::SetApplyPrewarnRepeat(bool on) { StoreTiming(record_.ApplyPrewarnRepeat, on); }
void Event::SetPrewarnRepeatTime(uint32 time) { StoreTiming(record_.PrewarnRepeatTime, time); }
void Event::SetPrewarnRepeatType(TimeIntervalType type) {
  StoreTiming(record_.PrewarnRepeatType, type);
}

void Event::SetPrewarnMessage(std::string_view text) {
  StorePlain(record_.PrewarnMessage, FitText(text));
}
void Event::SetNagMessage(std::string_view text) { StorePlain(record_.NagMessage, FitText(text)); }
void Event::SetComment(std::string_view text) { StorePlain(record_.Comment, FitText(text)); }

void Event::SetApplyNag(bool apply) {
  record_.ApplyNag = apply;
  if (record_.Status == WaitingToNag && !apply) UpdateEventTime();
  SetModified();
}

void Event::SetNagRepeatTime(uint32 time) { StorePlain(record_.NagRepeatTime, time); }
void Event::SetNagRepeatType(TimeIntervalType type) { StorePlain(record_.NagRepeatType, type); }
void Event::SetDeliverIfMissed(bool deliver) { StorePlain(record_.DeliverIfMissed, deliver); }
void Event::SetDeleteOnceDelivered(bool on) { StorePlain(record_.DeleteOnceDelivered, on); }

void Event::SetIcon(int32 index, std::unique_ptr<IconPair> own) {
  if (index == OwnIconNumber && !own) return;
  ownIcon_ = index == OwnIconNumber ? std::move(own) : nullptr;
  record_.IconNumber = index;
  owner_.EventModified(this);
}

void Event::SetModified() { owner_.SetModified(); }

void Event::TakeFields(EventRecord record, bool ruleChanged, std::unique_ptr<IconPair> own) {
  const bool isDue = record_.NextEventTime != 0 && record_.NextEventTime <= Now();
  const bool recompute = ruleChanged || (record.Active && !record_.Active && isDue) ||
                         (record_.Status == WaitingToNag && !record.ApplyNag);
  if (record.Name != record_.Name) SetName(record.Name);
  record.NextEventTime = record_.NextEventTime;
  record.ActualEventTime = record_.ActualEventTime;
  record.Status = record_.Status;
  record_ = std::move(record);
  ownIcon_ = std::move(own);
  if (recompute)
    UpdateEventTime();
  else
    owner_.EventModified(this);
  if (window_) window_->EventChanged();
}

void Event::TakeValues(Event& other) {
  const bool open = record_.ShouldWindowOpen;
  const int32 tab = record_.TabShown;
  const Rect frame = record_.WindowFrame;
  record_ = std::move(other.record_);
  record_.ShouldWindowOpen = open;
  record_.TabShown = tab;
  record_.WindowFrame = frame;
  ownIcon_ = std::move(other.ownIcon_);
  owner_.EventModified(this);
  if (!window_) return;
  window_->RedrawTimes();
  window_->EventChanged();
}

void Event::AdoptAddOnData(int32 row, std::unique_ptr<EventAddOnData> data) {
  handlers_.Replace(row, std::move(data));
}

void Event::ReplaceAddOnData(std::unique_ptr<EventAddOnData> data) {
  if (window_) window_->RemoveEditView();
  handlers_.Replace(handlers_.SelectedRow(), std::move(data));
  if (window_) window_->AddEditView();
  owner_.EventModified(this);
}

void Event::HandlerChanged() {
  const EventSet::Recorded recorded(owner_);
  if (EditRecorder* const recorder = owner_.Recorder()) recorder->HandlerChanged(*this);
  SetModified();
}

bool Event::SetSelectedHandler(int32 row) {
  const HandlerTable& handlers = owner_.GetContext().handlers;
  if (!handlers.Has(row)) return false;
  if (row == GetSelectedHandler() && GetAddOnData()) return true;
  std::unique_ptr<EventAddOnData> data = handlers_.Take(row);
  if (!data) {
    if (row == UnknownHandler) return false;
    bool ok = true;
    bool threw = false;
    data = handlers.MakeAddOnData(row, this, nullptr, &ok, &threw);
    if (!data) return false;
  }
  if (indexStamp != 0) owner_.FileNames().BeforeChange(*this);
  if (window_) window_->RemoveEditView();
  handlers_.Select(row, std::move(data));
  if (window_) window_->AddEditView();
  owner_.EventModified(this);
  return true;
}

std::string Event::GetHandlerName() const {
  const HandlerTable& handlers = owner_.GetContext().handlers;
  if (!handlers.Has(GetSelectedHandler())) return "";  // there are no handlers (any more)
  if (GetSelectedHandler() != UnknownHandler) return handlers.NameOf(GetSelectedHandler());
  const auto* unknown = dynamic_cast<const KeepsOriginalHandler*>(GetAddOnData());
  return unknown ? unknown->GetOriginalHandler() : handlers.NameOf(UnknownHandler);
}

void Event::SetTimes(const EventTimes& times) {
  record_.ActualEventTime = times.ActualEventTime;
  record_.NextEventTime = times.NextEventTime;
  record_.Status = times.Status;
  if (window_) window_->RedrawTimes();
  owner_.EventModified(this);
}

void Event::UpdateEventTime() {
  const bool skipPrewarn = skipPrewarn_;
  skipNag_ = skipPrewarn_ = false;
  SetTimes(ComputeEventTimes(record_, Now(), LocalZone(), skipPrewarn));
}

void Event::OpenWindow() {
  if (window_)
    window_->Activate();
  else
    window_ = owner_.GetContext().ui.OpenEventWindow(*this);
}

}  // namespace kestrin
