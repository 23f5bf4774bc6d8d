// One page of an event's editor, as the window knows it.
#pragma once

#include <QWidget>
#include <functional>
#include <vector>

namespace kestrin {

class Event;
class TypedField;
class WrappingTextView;

/// Its controls write through the event's setters at once. The event outlives the page. Main
/// thread only.
class EditorPage : public QWidget {
  Q_OBJECT

 public:
  /// Makes a change of the event, and shows what came of it.
  using Writer = std::function<void(const std::function<void(Event&)>& change)>;

  explicit EditorPage(Event& event, QWidget* parent = nullptr) : QWidget(parent), event_(event) {}

  /// Brings every control in step with the event, but for what is being typed. Writes nothing.
  virtual void ShowEvent() = 0;
  /// Hands over what is being typed. What cannot be read stays in its field, marked, and changes
  /// nothing.
  virtual void CommitEdits() = 0;
  /// Drops what is being typed: the page shows the event again, and the event may go before it.
  virtual void DropEdits();

 signals:
  /// A typed value was refused, with a sentence that says why: the last of them, or one that still
  /// stands when that is settled; empty when all fields are good.
  void Complained(const QString& why);

 protected:
  Event& GetEvent() const { return event_; }

  /// Changes the event under its set's lock, then shows it.
  void Write(const std::function<void(Event&)>& change);

  /// From then on the field's complaints are the page's, and the three below look after it.
  void AddField(TypedField* field);
  void AddText(WrappingTextView* text);
  /// The page passes on what was said last of all that stands. Empty: `source` has nothing to say.
  void TakeComplaint(const QObject* source, const QString& why);
  void ShowFields();
  void CommitFields();
  /// Fields of rows that are hidden show their values again: nobody could correct them there.
  void DropHiddenEdits();

 private:
  struct Complaint {
    const QObject* source;
    QString why;
  };

  Event& event_;
  std::vector<TypedField*> fields_;
  std::vector<WrappingTextView*> texts_;
  std::vector<Complaint> complaints_;
};

}  // namespace kestrin
