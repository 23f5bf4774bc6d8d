// One page of an event's editor, as the window knows it.
#pragma once

#include <QWidget>

namespace kestrin {

class Event;

/// Its controls write through the event's setters at once. The event outlives the page. Main
/// thread only.
class EditorPage : public QWidget {
  Q_OBJECT

 public:
  explicit EditorPage(Event& event, QWidget* parent = nullptr) : QWidget(parent), event_(event) {}

  /// Brings every control in step with the event, but for what is being typed. Writes nothing.
  virtual void ShowEvent() = 0;
  /// Hands over what is being typed. What cannot be read stays in its field, marked, and changes
  /// nothing.
  virtual void CommitEdits() = 0;

 signals:
  /// A typed value was refused, with a sentence that says why; empty when all fields are good.
  void Complained(const QString& why);

 protected:
  Event& GetEvent() const { return event_; }

 private:
  Event& event_;
};

}  // namespace kestrin
