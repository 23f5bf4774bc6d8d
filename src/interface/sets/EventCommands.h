// Commands of an event set window that work on events.
#pragma once

#include <QObject>
#include <memory>
#include <vector>

#include "core/editing/EditHistory.h"
#include "core/events/Event.h"

namespace kestrin {

class EventSet;
class ListEventView;

/// Each but Copy and the editors' is a step of the history.
class EventCommands final : public QObject {
  Q_OBJECT

 public:
  EventCommands(EventSet& set, ListEventView& list);

  EditHistory& History() { return history_; }

  /// Adds an event and opens its editor.
  void New();
  void Edit(Event* event);
  void EditSelected();
  void DeleteSelected();
  void DeleteFinished();
  void Duplicate();
  void SetActive(bool active);
  /// As the current one is not.
  void ToggleActive();
  void Cut();
  /// False when nothing is selected or an event could not be copied.
  bool Copy();
  void Paste();
  void Undo();
  void Redo();
  /// The set is about to go.
  void Forget();

 signals:
  /// Events were made, pasted or brought back.
  void Added();
  /// What the person should know of what was done.
  void Noted(const QString& note);

 private:
  void Add(std::vector<std::unique_ptr<Event>> events, EditKind kind);
  void Tell(const std::optional<EditHistory::Done>& done);

  EventSet* set_;
  ListEventView& list_;
  EditHistory history_;
};

}  // namespace kestrin
