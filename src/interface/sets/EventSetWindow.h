// The window of an event set: menus over a list of its events and a status line.
#pragma once

#include <QMainWindow>

#include "core/ports/UserInterface.h"

namespace kestrin {

class DocumentApp;
class EmptySetHint;
class EventCommands;
class EventSetMenus;
class ListEventView;
class SetSaving;
class StatusLine;

/// Registers with the application while it is open. Closing takes it back from its set, which may
/// be the end of the set, and deletes it on a later turn of the event loop.
class EventSetWindow final : public QMainWindow, public SetWindow {
  Q_OBJECT

 public:
  EventSetWindow(EventSet& set, DocumentApp& application);
  ~EventSetWindow() override;

  /// Null once the window has closed.
  EventSet* GetEventSet() const { return set_; }
  /// The window's. For who works on the list from outside, as benchmarks and tests do.
  ListEventView* GetEventsView() const { return list_; }
  void SettingsChanged();

  void Activate() override;
  void EventAdded(Event& event) override;
  void EventRemoved(Event& event) override;
  void EventsRemoved(const std::vector<Event*>& events) override;
  void EventModified(Event& event) override;
  void SetChanged() override;
  void CommitEdits() override;
  bool RequestClose() override;
  void CloseNow() override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void BuildBody();
  void ConnectCommands();
  void OpenAtFrame();
  void StoreFrame();
  void RememberAsDefault();
  void Command(uint32 command);
  bool SaveCommand(uint32 command);
  bool EventCommand(uint32 command);
  bool EditCommand(uint32 command);
  void ShowSteps();
  void SetViewMode(int32 mode);
  void ToggleColumn(uint32 command);
  void ShowRowMenu(const QPoint& at);
  /// Takes the window back from the set and the application; afterwards there is no set.
  void Detach();

  EventSet* set_;
  DocumentApp& application_;
  EventSetMenus* menus_;
  ListEventView* list_;
  StatusLine* status_;
  EmptySetHint* hint_ = nullptr;
  EventCommands* commands_;
  SetSaving* saving_;
  QRect opened_;  ///< the geometry the window was given; only another one is the person's
};

}  // namespace kestrin
