// The foot of an event set window: what comes next, when the set rings, and what was just done.
#pragma once

#include <QWidget>

class QPushButton;

namespace kestrin {

class ElidedLabel;
class EventSet;

class StatusLine final : public QWidget {
  Q_OBJECT

 public:
  explicit StatusLine(EventSet& set);

  /// Something of the set or the settings has changed. Collected: the line changes once, on the
  /// next turn of the event loop.
  void Refresh();
  /// Says what was done, or what the person should know, and tells screen readers; `canUndo`: and
  /// offers it back. Until the next one, or HideReport.
  void Report(const QString& what, bool canUndo);
  void HideReport();
  /// The set is about to go.
  void Forget() { set_ = nullptr; }

 signals:
  void UndoRequested();
  /// To remember the set for delivery, or to forget it.
  void RememberRequested();
  /// The line says so from now on.
  void RememberedIs(bool remembered);

 private:
  QWidget* BuildReportRow();
  QLayout* BuildRingingRow();
  void Update();
  void ShowNext();

  EventSet* set_;
  ElidedLabel* next_;
  ElidedLabel* ringing_;
  QPushButton* remember_;
  QWidget* reportRow_ = nullptr;
  ElidedLabel* report_ = nullptr;
  QPushButton* undo_ = nullptr;
  bool refreshWaits_ = false;
};

/// Whether the set's file is remembered for delivery. The set is not locked.
bool IsRemembered(const EventSet& set);

/// When the set rings, in a few words.
QString RingingText(const EventSet& set);

}  // namespace kestrin
