// What a handler add-on implements. An add-on is a shared library that defines the entry points
// declared at the end.
//
// A payload is a uint32 byte count followed by exactly that many bytes.
#pragma once

#include "kestrin/Types.h"

class QWidget;

namespace kestrin {

class EndianIndependentFile;
class Event;

/// A handler's data for one event. Owned by the event; every call comes on the main thread.
/// An exception that leaves an override is caught by the application and reported.
class EventAddOnData {
 public:
  explicit EventAddOnData(Event* attachedTo);
  EventAddOnData(const EventAddOnData&) = delete;
  EventAddOnData& operator=(const EventAddOnData&) = delete;

  virtual ~EventAddOnData();

  /// A new view, sized to `frame`, that edits this data; null when there is nothing to edit.
  /// The caller places it, records it and takes ownership until DestroyEditView.
  virtual QWidget* CreateEditView(Rect frame) = 0;

  /// Writes the payload at the file's position. False as soon as a write is not whole.
  virtual bool SaveData(EndianIndependentFile* file) = 0;

  /// Carries the action out. Called with the event set unlocked; must return within one second,
  /// so whatever waits belongs in a thread of its own, between ProcessHold and ProcessDone.
  /// `missed`: the event is delivered late because nothing ran when it came due.
  virtual void DealWithEvent(bool missed) = 0;

  /// Deletes the recorded edit view, if any.
  virtual void DestroyEditView();

  virtual void EAODReserved1();
  virtual void EAODReserved2();
  virtual void EAODReserved3();
  virtual void EAODReserved4();
  virtual void EAODReserved5();
  virtual void EAODReserved6();

  Event* GetAttachedTo() const { return attachedTo_; }
  Event* GetParentEvent() const { return attachedTo_; }
  void RecordEditView(QWidget* view) { editView_ = view; }
  QWidget* GetEditView() const { return editView_; }

  /// Keeps the application alive until the matching ProcessDone. Any thread.
  static void ProcessHold();
  static void ProcessDone();

 private:
  void* reserved_[4] = {};
  QWidget* editView_ = nullptr;
  Event* attachedTo_;
};

/// An add-on's data derives from this too when some deliveries need no screen. Without a display
/// every other delivery stays due until there is one.
class ActsWithoutScreen {
 public:
  virtual ~ActsWithoutScreen();
  /// Whether the next DealWithEvent would open a window or ask a question.
  virtual bool NeedsScreen() const = 0;
};

}  // namespace kestrin

extern "C" {
// Declared here so that a definition with another signature does not compile, and so that one in a
// library built with hidden visibility is exported all the same.

/// The handler's name, valid until unloading; null refuses.
[[gnu::visibility("default")]] const char* InitializeAddOn();
/// Without a file fresh data; else data read from the payload, `*ok` false if that fails. The
/// caller owns what is returned.
[[gnu::visibility("default")]] kestrin::EventAddOnData* NewAddOnData(
    kestrin::Event* event, kestrin::EndianIndependentFile* file, bool* ok);
/// Optional; called once at exit.
[[gnu::visibility("default")]] void CleanUpAddOn();

using NewAddOnDataFunction = decltype(&NewAddOnData);
using InitializeAddOnFunction = decltype(&InitializeAddOn);
using CleanUpAddOnFunction = decltype(&CleanUpAddOn);
}
