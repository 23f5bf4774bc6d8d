// One reminder: its record, the setters with their side effects, and its handler's data.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "core/events/AddOnSlots.h"
#include "core/events/Context.h"
#include "core/timing/EventRecord.h"
#include "core/timing/EventTiming.h"
#include "kestrin/EventAddOnData.h"
#include "support/Bitmap.h"

namespace kestrin {

class EditorWindow;
class EventSet;

enum class ConstructorResult : int32 { Success = 0, CouldNotOpen = 1, CouldNotRead = 2 };

/// Belongs to one set, which is its lock (GetProtectionSemaphore): callers hold it, or are the main
/// thread. Setters that change the timing recompute the next time; every setter but those of the
/// window's state marks the set modified. Texts are cut to TextLimit - 1 bytes at their first NUL.
class Event {
 public:
  /// A new event with the defaults: tomorrow at midnight, the "Message" handler. Not yet in the
  /// set.
  explicit Event(EventSet& owner);
  /// An event with these values and no handler data: the reader of a file or message adds it.
  Event(EventSet& owner, EventRecord record);
  /// The same, of which a reader fills in the values. Who reads notifies nobody.
  struct ToBeRead {};
  Event(EventSet& owner, ToBeRead);
  EventRecord& ValuesToRead() { return record_; }
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;
  ~Event();

  const EventRecord& Record() const { return record_; }
  uint64 GetHandle() const { return handle_; }  ///< never reused in this process
  EventSet* GetOwner() const { return &owner_; }
  EventSet& GetProtectionSemaphore() const { return owner_; }

  const std::string& GetName() const { return record_.Name; }
  int32 GetNextEventTime() const { return record_.NextEventTime; }
  int32 GetActualEventTime() const { return record_.ActualEventTime; }
  bool GetActive() const { return record_.Active; }
  int32 GetStatus() const { return record_.Status; }
  bool GetApplyTime() const { return record_.ApplyTime; }
  const std::string& GetComment() const { return record_.Comment; }
  bool GetShouldWindowOpen() const { return record_.ShouldWindowOpen; }

  void SetName(std::string_view name);
  void SetActive(bool active);
  void SetPeriodType(PeriodicityType type);
  void SetMultiple(uint32 multiple);
  void SetTimingType(TimingType type);
  /// `useTimeOfDay`: `time` brings a time of day along; otherwise only its day counts. False, and
  /// nothing changes, when the day with the event's time of day is beyond what can be stored.
  bool SetEventTime(int32 time, bool useTimeOfDay);
  void SetDayOfMonth(int8 day);
  void SetWeekOfMonth(int8 week);
  void SetDayOfWeek(int8 day);
  void SetMonth(int8 month);
  void SetMultiStartTime(int32 time);
  void SetApplyTime(bool apply);
  void SetTimeToApply(int32 secondsIntoDay);
  void SetSubIntType(TimeIntervalType type);
  void SetApplyStop(bool apply);
  void SetStopTime(int32 secondsIntoDay);
  void SetApplyPrewarn(bool apply);
  void SetPrewarnTime(uint32 time);
  void SetPrewarnType(TimeIntervalType type);
  void SetApplyPrewarnRepeat(bool apply);
  void SetPrewarnRepeatTime(uint32 time);
  void SetPrewarnRepeatType(TimeIntervalType type);
  void SetPrewarnMessage(std::string_view text);
  void SetApplyNag(bool apply);
  void SetNagRepeatTime(uint32 time);
  void SetNagRepeatType(TimeIntervalType type);
  void SetNagMessage(std::string_view text);
  void SetDeliverIfMissed(bool deliver);
  void SetDeleteOnceDelivered(bool doDelete);
  void SetComment(std::string_view text);
  void SetWindowFrame(Rect frame) { record_.WindowFrame = frame; }
  void SetTabShown(int32 tab) { record_.TabShown = tab; }
  void SetShouldWindowOpen(bool open) { record_.ShouldWindowOpen = open; }
  /// `own` is kept only for OwnIconNumber, which needs it.
  void SetIcon(int32 index, std::unique_ptr<IconPair> own);
  /// For readers: the bitmaps that belong to OwnIconNumber. Notifies nobody.
  void AdoptIcon(std::unique_ptr<IconPair> own) { ownIcon_ = std::move(own); }
  /// The event's own bitmaps, or null.
  const IconPair* GetOwnIcon() const { return ownIcon_.get(); }
  void SetModified();
  /// For undo: every field of `record` but the times and the status, and the bitmaps of
  /// OwnIconNumber. A changed rule has the times computed as at now.
  void TakeFields(EventRecord record, bool ruleChanged, std::unique_ptr<IconPair> own);

  /// Row of the handler table. "Unknown" is taken only by an event that holds such data; a factory
  /// that fails leaves the old handler in place. Returns whether the handler is the one asked for.
  bool SetSelectedHandler(int32 row);
  int32 GetSelectedHandler() const { return handlers_.SelectedRow(); }
  EventAddOnData* GetAddOnData() const { return handlers_.Selected(); }
  EventAddOnData* GetAddOnData(int32 row) const { return handlers_.Of(row); }
  /// What a file or message calls the handler: for "Unknown" the name of the missing one.
  std::string GetHandlerName() const;
  /// For readers: puts data into a slot and selects it. Notifies nobody.
  void AdoptAddOnData(int32 row, std::unique_ptr<EventAddOnData> data);
  /// Other data for the selected handler; an open edit view is made anew.
  void ReplaceAddOnData(std::unique_ptr<EventAddOnData> data);
  /// The data of the handler has changed. Marks the set modified.
  void HandlerChanged();

  /// Recomputes the times and the status as at now and tells everybody.
  void UpdateEventTime();

  /// For readers: everything but the handler's data as `other` has it, which may be emptied.
  void TakeValues(Event& other);

  // For delivery.
  /// Takes what was worked out elsewhere and tells everybody.
  void SetTimes(const EventTimes& times);
  /// Whether the rest of this occurrence's prewarnings or nags is left out, until the times are
  /// recomputed.
  bool GetSkipPrewarn() const { return skipPrewarn_; }
  bool GetSkipNag() const { return skipNag_; }
  void SetSkipPrewarn(bool skip) { skipPrewarn_ = skip; }
  void SetSkipNag(bool skip) { skipNag_ = skip; }
  /// Whether its action runs now, which needs it and its data.
  bool IsActing() const { return acting_; }
  void SetActing(bool acting) { acting_ = acting; }
  /// The journal's record of the delivery under way; empty when there is none.
  const std::string& GetDelivery() const { return delivery_; }
  void SetDelivery(std::string record) { delivery_ = std::move(record); }

  /// Opens the editor, or activates it.
  void OpenWindow();
  EditorWindow* GetWindow() const { return window_; }
  void WindowClosed() { window_ = nullptr; }

  // For NextEventIndex alone.
  uint64 indexStamp = 0;  ///< place in the set's list: smaller stands earlier
  int32 indexPlace = -1;

 private:
  /// Stores a field of the timing rule and recomputes.
  template <typename T, typename V>
  void StoreTiming(T& field, V value);
  /// Stores any other field and marks the set modified.
  template <typename T, typename V>
  void StorePlain(T& field, V value);
  bool JoinDayAndTime(int32 day);
  const Zone& LocalZone() const;
  int64 Now() const;

  EventSet& owner_;
  uint64 handle_;
  EventRecord record_;
  std::unique_ptr<IconPair> ownIcon_;
  AddOnSlots handlers_;
  EditorWindow* window_ = nullptr;
  bool acting_ = false;
  std::string delivery_;
  bool skipNag_ = false;
  bool skipPrewarn_ = false;
};

}  // namespace kestrin
