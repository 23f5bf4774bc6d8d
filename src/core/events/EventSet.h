// The document: a list of events, the file it is stored in, the settings of its window, and the
// answer to what comes next.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/events/Event.h"
#include "core/events/NextEventIndex.h"
#include "core/settings/SetLayout.h"
#include "support/FileDoor.h"
#include "support/Locker.h"

namespace kestrin {

class SetWindow;
struct SetFileReport;

/// The set is the lock of its events. It is created, changed and destroyed in the main thread;
/// other threads lock it to read.
class EventSet : public Locker {
 public:
  /// With a path: reads that file; on failure `result` or `versionOK` says so (the user is told of
  /// an unknown version here, of everything else by the caller) and the set is good only to be
  /// destroyed; `report` has the details. Without: a new, empty, untitled set called
  /// `untitledName`.
  EventSet(Context& context, const std::string& path, ConstructorResult* result, bool* versionOK,
           SetFileReport* report);
  EventSet(Context& context, const std::string& untitledName);
  ~EventSet() override;

  Context& GetContext() const { return context_; }
  uint64 GetHandle() const { return handle_; }

  const std::vector<std::unique_ptr<Event>>& Events() const { return events_; }
  int32 CountEvents() const { return static_cast<int32>(events_.size()); }
  bool HasEvent(const Event* event) const;
  Event* FindEvent(uint64 handle) const;

  /// Appends the event, or a new default one when it is null; tells the window and the application.
  Event* AddEvent(std::unique_ptr<Event> event);
  /// Appends while reading: nobody is told, nothing is marked.
  void AppendRead(std::unique_ptr<Event> event);
  /// Takes the event out (its editor is closed first) and tells the window and the application. The
  /// caller may keep the event and offer it back, at its old place, with InsertEvent.
  std::unique_ptr<Event> RemoveEvent(Event* event);
  Event* InsertEvent(std::unique_ptr<Event> event, size_t place);
  size_t PlaceOf(const Event* event) const;
  /// Offers a removed event back. Its editor stays closed, its times stay as they are; what has
  /// come due meanwhile counts as missed.
  Event* RestoreEvent(std::unique_ptr<Event> event, size_t place);
  /// Room for that many events, while reading.
  void Reserve(size_t count) { events_.reserve(count); }

  void EventModified(Event* event);
  Event* GetNextEvent();
  /// 0 and null when nothing is pending. Inactive events are passed over.
  int32 GetNextEventTime(Event** event);
  /// The same without the events that `passOver` is true for. Looks at every event.
  int32 GetNextEventTime(Event** event, const std::function<bool(const Event&)>& passOver);

  /// Open editors, and the set's window, hand over what is being typed. Before every save and
  /// before anybody asks whether the set was modified.
  void CommitEdits();

  enum class SavedBy { User, Itself };
  /// Writes the file as a whole. On success nothing is modified any more. If the file was changed
  /// by others since it was read, the set is written beside it, keeps that new name and the user is
  /// told. A save by the user takes the mark of a downloaded file off.
  bool SaveData(SavedBy by = SavedBy::User);
  /// Writes a copy elsewhere, marked like this set if it was downloaded; name and modified flag
  /// stay.
  bool SaveCopy(const std::string& path);

  /// Saves under another name, as the user. When that fails, the set keeps the name it has. When it
  /// succeeds, the new file is remembered for delivery or not, as `remember` says. With `remember`
  /// the earlier file is not remembered any longer; without, it goes on as it was left there.
  bool SaveAs(const std::string& path, bool remember);
  /// Has the set's file remembered for delivery, or forgotten.
  void Remember(bool remember);
  /// Writes into the file what deliveries have changed in it, without the user's changes.
  void SaveDeliveriesAlone();

  bool HasBeenModified() const { return modified_ || deliveryModified_; }
  /// Whether all that changed since the last save is what deliveries changed.
  bool OnlyDeliveriesChanged() const { return deliveryModified_ && !modified_; }
  void SetModified();

  /// While one of these lives, changes of the set count as made by delivery, not by the user.
  class DeliveryChange {
   public:
    explicit DeliveryChange(EventSet& set) : set_(set) { ++set_.deliveries_; }
    ~DeliveryChange() { --set_.deliveries_; }
    DeliveryChange(const DeliveryChange&) = delete;
    DeliveryChange& operator=(const DeliveryChange&) = delete;

   private:
    EventSet& set_;
  };

  bool IsActionRunning() const { return actionRuns_; }
  /// For a removed event that is still being dealt with; until then.
  void KeepActing(std::unique_ptr<Event> event) { acting_.push_back(std::move(event)); }
  void DropActing() { acting_.clear(); }

  /// While one of these lives, the action of one of the events runs: changes are made by whoever is
  /// at the windows, and the set may close but is not destroyed.
  class ActionRuns {
   public:
    explicit ActionRuns(EventSet& set) : set_(set), deliveries_(std::exchange(set.deliveries_, 0)) {
      set_.actionRuns_ = true;
    }
    ~ActionRuns() { set_.deliveries_ = deliveries_, set_.actionRuns_ = false; }
    ActionRuns(const ActionRuns&) = delete;
    ActionRuns& operator=(const ActionRuns&) = delete;

   private:
    EventSet& set_;
    int32 deliveries_;
  };

  const std::string& GetFileName() const { return fileName_; }
  /// A new name: what is known of the earlier file no longer holds.
  void SetFileName(const std::string& path);
  bool IsUntitled() const { return untitled_; }
  /// Whether the file came from elsewhere and the user has not saved it yet: commands and files
  /// then always ask first.
  bool IsDownloaded() const { return origin_.has_value(); }

  /// The set was read from a recovery copy: it goes by that name, unsaved, and the copy goes when
  /// the set is saved or discarded.
  void BecomeRecovered(const std::string& untitledName);
  const std::string& RecoveredFrom() const { return recoveredFrom_; }
  /// Removes the recovery copy, if there is one.
  void DiscardRecovered();

  /// The state in which an event was first delivered since the set was last saved.
  struct Delivered {
    std::string name;  ///< that the file has for it
    int32 occurrence;
    int32 status;
    bool operator==(const Delivered&) const = default;
  };
  using DeliveredEvents = std::unordered_map<uint64, Delivered>;
  /// The event is about to get another name: the file goes on calling it by the one it has.
  void RecordRename(const Event& event);
  /// `status`: in which the event was found.
  void RecordDelivered(const Event& event, int32 status);
  const DeliveredEvents& DeliveredUnsaved() const { return delivered_; }
  /// Moves on every event that is due at `now` although `delivered` says it was delivered. Each
  /// entry stands for one event.
  void MoveOnDelivered(DeliveredEvents delivered, int64 now);
  /// The last component of the file name.
  std::string GetLeaf() const;
  static std::string LeafOf(const std::string& path);

  /// How many editors a set may open along with its window.
  static constexpr int32 MaxEditorsAtOpening = 20;
  /// Opens the window, and the editors that stood open with it, or activates it. Nothing happens
  /// without a screen.
  void OpenWindow();
  SetWindow* GetWindow() const { return window_; }
  /// From the window's destructor: closes the editors and destroys this set unless it delivers
  /// without a window.
  void WindowClosed();
  /// Whether the set delivers its events, by the settings, while its window is open or is not.
  bool Delivers(bool shown) const;
  bool DeliversUnseen() const { return Delivers(false); }

  const SetLayout& Layout() const { return layout_; }
  SetLayout& Layout() { return layout_; }  ///< window state: changing it marks nothing modified

 private:
  void Read(ConstructorResult* result, bool* versionOK, SetFileReport* report);
  bool WriteTo(const std::string& path);
  bool Replace(const std::string& path, std::optional<FileStamp>* written);
  std::string NameBeside() const;
  /// The set has another name, which its editors show.
  void TellEditors();
  void OpenEditors();
  void Insert(std::unique_ptr<Event> event, size_t at);

  Context& context_;
  uint64 handle_;
  std::vector<std::unique_ptr<Event>> events_;
  NextEventIndex index_;
  uint64 nextStamp_ = 1;
  std::string fileName_;
  bool untitled_ = false;
  std::optional<FileStamp> stamp_;  ///< the file as it was read or last written
  /// What a save wrote that then failed: it may have come into place all the same.
  std::optional<FileStamp> attempted_;
  SetWindow* window_ = nullptr;
  std::vector<std::unique_ptr<Event>> acting_;
  SetLayout layout_;
  std::string recoveredFrom_;
  DeliveredEvents delivered_;  ///< by the event's handle
  /// What the file calls the events that were renamed since, by their handles.
  std::unordered_map<uint64, std::string> namesInFile_;
  std::optional<std::string> origin_;  ///< the mark of a downloaded file
  bool modified_ = false;
  bool deliveryModified_ = false;
  int32 deliveries_ = 0;
  bool actionRuns_ = false;
};

}  // namespace kestrin
