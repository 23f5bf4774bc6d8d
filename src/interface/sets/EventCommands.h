// Commands of an event set window that work on events.
#pragma once

#include <QObject>

#include "core/events/DeletedEvents.h"

namespace kestrin {

class EventSet;
class ListEventView;

class EventCommands final : public QObject {
  Q_OBJECT

 public:
  EventCommands(EventSet& set, ListEventView& list);

  /// Adds an event and opens its editor.
  void New();
  void Edit(Event* event);
  void EditSelected();
  void DeleteSelected();
  void Cut();
  /// False when nothing is selected or the event could not be copied.
  bool Copy();
  void Paste();
  /// Brings the event that was deleted last back.
  void Undo();
  /// What Undo would bring back; null when there is nothing.
  const Event* LastDeleted() const { return deleted_.Last(); }
  /// The set is about to go.
  void Forget();

 signals:
  void Deleted(const std::string& name);
  /// An event was made, pasted or brought back.
  void Added();

 private:
  void Select(const Event* event);

  EventSet* set_;
  ListEventView& list_;
  DeletedEvents deleted_;
};

}  // namespace kestrin
