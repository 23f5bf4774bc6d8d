// The screen, as a port. Main thread only. Windows own themselves; core keeps plain pointers to the
// two interfaces below, which each window takes back (EventSet::WindowClosed, Event::WindowClosed)
// before it goes.
#pragma once

#include <string>
#include <vector>

#include "core/ports/AlertScreen.h"
#include "kestrin/Types.h"

class QWidget;

namespace kestrin {

class Event;
class EventAddOnData;
class EventSet;

/// The window that shows a set. The calls come with the set unlocked or locked by the main thread.
class SetWindow {
 public:
  virtual ~SetWindow() = default;
  virtual void Activate() = 0;
  virtual void EventAdded(Event& event) = 0;
  /// The event is about to go; nothing may keep a pointer to it.
  virtual void EventRemoved(Event& event) = 0;
  virtual void EventsRemoved(const std::vector<Event*>& events) {
    for (Event* const event : events) EventRemoved(*event);
  }
  /// Columns of the event have changed. May be called 100,000 times in a row: collect, repaint
  /// once.
  virtual void EventModified(Event& event) = 0;
  /// The set's name, its modified flag or what it delivers next have changed.
  virtual void SetChanged() = 0;
  /// Hands over what is being typed.
  virtual void CommitEdits() = 0;
  /// Closes and returns true, or asks the user first and returns false.
  virtual bool RequestClose() = 0;
  /// Closes without a question.
  virtual void CloseNow() = 0;
};

/// The editor window of an event.
class EditorWindow {
 public:
  virtual ~EditorWindow() = default;
  virtual void Activate() = 0;
  /// The event's name, times, status or active flag have changed. May be collected.
  virtual void RedrawTimes() = 0;
  /// Any other field has changed, by somebody else than this window.
  virtual void EventChanged() = 0;
  /// Before another handler is selected: the old one's edit view goes.
  virtual void RemoveEditView() = 0;
  /// After it: the new one's comes.
  virtual void AddEditView() = 0;
  virtual void CommitEdits() = 0;
  virtual void CloseNow() = 0;
};

class UserInterface : public AlertScreen {
 public:
  /// Both return null without a screen.
  virtual SetWindow* OpenSetWindow(EventSet& set) = 0;
  virtual EditorWindow* OpenEventWindow(Event& event) = 0;

  /// A warning with one button that waits, in a loop of its own, until it is pressed.
  virtual void WaitForFatalError(const std::string& title, const std::string& text,
                                 const std::string& button) = 0;

  virtual void ShowOpenPanel() = 0;
  virtual void ShowSettingsWindow() = 0;
  virtual void ShowAboutWindow() = 0;
  /// `stateFolder`: where the journal of deliveries stands.
  virtual void ShowHistoryWindow(const std::string& stateFolder) = 0;
  /// Closes what the four calls before have opened.
  virtual void CloseOtherWindows() = 0;
  /// The settings that windows show have changed.
  virtual void SettingsChanged() = 0;

  /// The edit view of a built-in handler's data, or null; deletes any handler's.
  virtual QWidget* CreateEditView(EventAddOnData& data, Rect frame) = 0;
  virtual void DestroyEditView(QWidget* view) = 0;
};

}  // namespace kestrin
