// Windows without a screen that write down what they were told. Like real ones they own themselves:
// CloseNow deletes them.
#pragma once

#include <string>
#include <vector>

#include "core/events/Event.h"
#include "core/events/EventSet.h"
#include "core/ports/UserInterface.h"

namespace kestrin {

class FakeSetWindow final : public SetWindow {
 public:
  FakeSetWindow(EventSet& set, std::function<void(FakeSetWindow*)> gone)
      : set_(&set), gone_(std::move(gone)) {}
  ~FakeSetWindow() override {
    if (set_) set_->WindowClosed();
    gone_(this);
  }

  bool RefuseToClose = false;
  int Activated = 0, Changed = 0, Commits = 0, CloseRequests = 0;
  std::vector<uint64> Added, Removed, Modified;  ///< handles of events
  std::function<void()> WhenCommitting;          ///< may be null

  EventSet* Set() const { return set_; }
  /// The set has gone without closing its window; for the end of a test.
  void Orphan() { set_ = nullptr; }

  void Activate() override { ++Activated; }
  void EventAdded(Event& event) override { Added.push_back(event.GetHandle()); }
  void EventRemoved(Event& event) override { Removed.push_back(event.GetHandle()); }
  void EventModified(Event& event) override { Modified.push_back(event.GetHandle()); }
  void SetChanged() override { ++Changed; }
  void CommitEdits() override {
    ++Commits;
    if (WhenCommitting) WhenCommitting();
  }
  bool RequestClose() override {
    ++CloseRequests;
    if (RefuseToClose) return false;
    CloseNow();
    return true;
  }
  void CloseNow() override { delete this; }

 private:
  EventSet* set_;
  std::function<void(FakeSetWindow*)> gone_;
};

class FakeEditorWindow final : public EditorWindow {
 public:
  FakeEditorWindow(Event& event, std::function<void(FakeEditorWindow*)> gone)
      : event_(&event), gone_(std::move(gone)) {}
  ~FakeEditorWindow() override {
    gone_(this);
    if (event_) event_->WindowClosed();
  }

  std::vector<std::string> Calls;        ///< names of the operations, in order
  std::function<void()> WhenCommitting;  ///< may be null

  Event* GetEvent() const { return event_; }
  void Orphan() { event_ = nullptr; }

  void Activate() override { Calls.emplace_back("Activate"); }
  void RedrawTimes() override { Calls.emplace_back("RedrawTimes"); }
  void EventChanged() override { Calls.emplace_back("EventChanged"); }
  void RemoveEditView() override { Calls.emplace_back("RemoveEditView"); }
  void AddEditView() override { Calls.emplace_back("AddEditView"); }
  void CommitEdits() override {
    Calls.emplace_back("CommitEdits");
    if (WhenCommitting) WhenCommitting();
  }
  void CloseNow() override { delete this; }

 private:
  Event* event_;
  std::function<void(FakeEditorWindow*)> gone_;
};

}  // namespace kestrin
