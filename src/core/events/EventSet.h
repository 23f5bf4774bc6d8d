// The document: a list of events, the file it is stored in, the settings of its window, and the
// answer to what comes next.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/events/Event.h"
#include "core/events/EventList.h"
#include "core/events/NamesInFile.h"
#include "core/events/SetFile.h"
#include "core/settings/SetLayout.h"
#include "support/Locker.h"

namespace kestrin {

class EditRecorder;
class SetWindow;

/// The set is the lock of its events. It is created, changed and destroyed in the main thread;
/// other threads lock it to read.
class EventSet : public Locker {
 public:
  /// An empty set of that file name. Whoever makes one says where it is stored, before anything
  /// else is done with it.
  EventSet(Context& context, const std::string& fileName);
  void StoreIn(std::unique_ptr<SetFile> file) { file_ = std::move(file); }
  ~EventSet() override;

  Context& GetContext() const { return context_; }
  uint64 GetHandle() const { return handle_; }

  const std::vector<std::unique_ptr<Event>>& Events() const { return events_.All(); }
  int32 CountEvents() const { return static_cast<int32>(Events().size()); }
  bool HasEvent(const Event* event) const;
  Event* FindEvent(uint64 handle) const;

  /// Appends the event, or a new default one when it is null; tells the window and the application.
  Event* AddEvent(std::unique_ptr<Event> event);
  /// Appends while reading: nobody is told, nothing is marked.
  void AppendRead(std::unique_ptr<Event> event);
  /// Takes the event out (its editor is closed first) and tells the window and the application. The
  /// caller may keep what it gets and offer it back, at its old place. Where a person deletes, what
  /// was put off is asked for as well: then the caller holds Protect of OpenSets before the set.
  std::unique_ptr<Event> RemoveEvent(Event* event);
  std::vector<EventList::Removed> RemoveEvents(const std::vector<Event*>& events);
  /// Their editors stay closed, their times stay as they are; what has come due meanwhile counts as
  /// missed.
  void RestoreEvents(std::vector<EventList::Removed> removed);
  /// Room for that many events, while reading.
  void Reserve(size_t count) { events_.Reserve(count); }

  void EventModified(Event* event);
  Event* GetNextEvent();
  /// 0 and null when nothing is pending. Inactive events are passed over.
  int32 GetNextEventTime(Event** event);
  /// The same without the events that `passOver` is true for. Looks at every event.
  int32 GetNextEventTime(Event** event, const std::function<bool(const Event&)>& passOver);

  /// Open editors, and the set's window, hand over what is being typed. Before every save and
  /// before anybody asks whether the set was modified.
  void CommitEdits();

  SetFile& File() { return *file_; }
  const SetFile& File() const { return *file_; }
  using SavedBy = SetFile::SavedBy;
  bool SaveData(SavedBy by = SavedBy::User) { return file_->Save(by); }
  const std::string& WhyNotSaved() const { return file_->WhyNotSaved(); }
  bool SaveCopy(const std::string& path) { return file_->SaveCopy(path); }
  bool SaveAs(const std::string& path, bool remember) { return file_->SaveAs(path, remember); }
  void SaveDeliveriesAlone() { file_->SaveDeliveriesAlone(); }
  /// From the file: everything stands in `path` now, under which the set goes.
  void Saved(const std::string& path);
  /// Has the set's file remembered for delivery, or forgotten.
  void Remember(bool remember);

  /// From the file: it has been read again, and this is what it holds.
  void IsAsInFile();

  bool HasBeenModified() const { return modified_ || deliveryModified_; }
  /// Whether all that changed since the last save is what deliveries changed.
  bool OnlyDeliveriesChanged() const { return deliveryModified_ && !modified_; }
  void SetModified();
  /// By a person, so far.
  uint64 CountEdits() const { return edits_; }

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

  /// While one of these lives, changes of the set are noted down by whoever makes them.
  class Recorded {
   public:
    explicit Recorded(EventSet& set) : set_(set) { ++set_.recorded_; }
    ~Recorded() { --set_.recorded_; }
    Recorded(const Recorded&) = delete;
    Recorded& operator=(const Recorded&) = delete;

   private:
    EventSet& set_;
  };
  /// Not owned; null when nobody notes down what is changed.
  EditRecorder* Recorder() const { return recorder_; }
  void SetRecorder(EditRecorder* recorder) { recorder_ = recorder; }
  /// From the recorder: the person has taken back all that was changed since the last save.
  void BackAsSaved();

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
  void SetFileName(const std::string& path);
  /// From now on the set has no file, but a name.
  void BecomeUntitled(const std::string& name);
  bool IsUntitled() const { return untitled_; }

  NamesInFile& FileNames() { return fileNames_; }
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
  void OpenEditors();
  void FollowNames();

  Context& context_;
  uint64 handle_;
  EventList events_;
  std::string fileName_;
  bool untitled_ = false;
  std::unique_ptr<SetFile> file_;
  SetWindow* window_ = nullptr;
  std::vector<std::unique_ptr<Event>> acting_;
  SetLayout layout_;
  NamesInFile fileNames_;
  bool modified_ = false;
  bool deliveryModified_ = false;
  uint64 edits_ = 0;
  int32 deliveries_ = 0;
  int32 recorded_ = 0;
  EditRecorder* recorder_ = nullptr;
  bool actionRuns_ = false;
};

}  // namespace kestrin
