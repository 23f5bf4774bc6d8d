// The document: a list of events, the file it is stored in, the settings of its window, and the
// answer to what comes next.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "core/Event.h"
#include "core/KestrinSettings.h"
#include "core/NextEventIndex.h"
#include "support/FileDoor.h"
#include "support/Locker.h"

namespace kestrin {

class SetWindow;

/// How a set's window shows it. Opaque numbers in files; any value is kept.
struct SetLayout {
  Rect WindowFrame;
  std::array<int32, NumberOfColumns> ColumnOrder{};
  std::array<bool, NumberOfColumns> ColumnShown{};
  std::array<float, NumberOfColumns> ColumnWidth{};
  int32 NumberOfKeys = 0;
  std::array<int32, MaxSortKeys> SortKeys{};
  std::array<int32, MaxSortKeys> SortModes{};
  int32 ViewMode = 0;
};

/// The set is the lock of its events. It is created, changed and destroyed in the main thread;
/// other threads lock it to read.
class EventSet : public Locker {
 public:
  /// With a path: reads that file; on failure `result` or `versionOK` says so (the user is told of
  /// an unknown version here, of everything else by the caller) and the set is good only to be
  /// destroyed. Without: a new, empty, untitled set called `untitledName`.
  EventSet(Context& context, const std::string& path, ConstructorResult* result, bool* versionOK);
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
  /// caller may keep the event to offer it back: InsertEvent.
  std::unique_ptr<Event> RemoveEvent(Event* event);
  /// Room for that many events, while reading.
  void Reserve(size_t count) { events_.reserve(count); }

  void EventModified(Event* event);
  Event* GetNextEvent();
  /// 0 and null when nothing is pending. Inactive events are passed over.
  int32 GetNextEventTime(Event** event);
  /// The same without the events that `passOver` names by handle.
  int32 GetNextEventTime(Event** event, const std::vector<uint64>& passOver);

  /// Writes the file as a whole. On success nothing is modified any more. If the file was changed by
  /// others since it was read, the set is written beside it, keeps that new name and the user is told.
  bool SaveData();
  /// Writes a copy elsewhere; name and modified flag stay.
  bool SaveCopy(const std::string& path);

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

  const std::string& GetFileName() const { return fileName_; }
  /// A new name: what is known of the earlier file no longer holds.
  void SetFileName(const std::string& path);
  bool IsUntitled() const { return untitled_; }
  /// The last component of the file name.
  std::string GetLeaf() const;
  static std::string LeafOf(const std::string& path);

  /// Opens the window, or activates it. Nothing happens without a screen.
  void OpenWindow();
  SetWindow* GetWindow() const { return window_; }
  /// From the window's destructor: closes the editors and destroys this set unless it delivers
  /// without a window.
  void WindowClosed();
  /// Whether the set delivers events with no window open, by the settings.
  bool DeliversUnseen() const;

  const SetLayout& Layout() const { return layout_; }
  SetLayout& Layout() { return layout_; }  ///< window state: changing it marks nothing modified

  const std::string& FileVersion() const { return fileVersion_; }
  bool FileIsBigEndian() const { return fileIsBigEndian_; }
  void RecordFileForm(std::string version, bool bigEndian);

 private:
  bool WriteTo(const std::string& path);
  std::string NameBeside() const;

  Context& context_;
  uint64 handle_;
  std::vector<std::unique_ptr<Event>> events_;
  NextEventIndex index_;
  uint64 nextStamp_ = 1;
  std::string fileName_;
  bool untitled_ = false;
  std::optional<FileStamp> stamp_;  ///< the file as it was read or last written
  SetWindow* window_ = nullptr;
  SetLayout layout_;
  std::string fileVersion_;
  bool fileIsBigEndian_ = false;
  bool modified_ = false;
  bool deliveryModified_ = false;
  int32 deliveries_ = 0;
};

}  // namespace kestrin
