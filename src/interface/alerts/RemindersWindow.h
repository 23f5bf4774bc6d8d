// The window in which many reminders are answered one after another, or all together.
#pragma once

#include <QDialog>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <optional>
#include <vector>

#include "core/ports/Alert.h"
#include "core/timing/LaterMoments.h"
#include "interface/alerts/ReminderModel.h"

class QLabel;
class QPushButton;
class QTreeView;

namespace kestrin {

class AlertPane;
class LaterMenu;
struct Context;

/// Opens without taking the focus, as a box does. What is answered together waits ten seconds, in
/// which it can be taken back, before Answered and PutOff come for it. Empty of rows and of what
/// waits, it emits Emptied and is to be deleted.
class RemindersWindow final : public QDialog {
  Q_OBJECT

 public:
  using MayOpen = std::function<bool(const AlertRequest&)>;
  RemindersWindow(const Context& context, MayOpen mayOpenEvent);

  void Add(AlertId id, const AlertRequest& request);
  /// False when it has no such row. A row that waits to be answered stands in the list again.
  bool Update(AlertId id, const AlertRequest& request);
  bool Remove(AlertId id);
  /// Why it could not be put off; the row is current then.
  void Complain(AlertId id, const std::string& why);
  /// To the front, with the focus, and the row current.
  void Raise(AlertId id);
  /// Shows the window, or says that something has come.
  void Announce();

  void reject() override;

 signals:
  /// The rows are still there; whoever gets this removes them.
  void Answered(AlertId id, int which);
  void PutOff(AlertId id, const PutOffMoment& when);
  void OpenEventWanted(uint64 set, uint64 event);
  void Emptied();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  /// What was answered together and can still be taken back.
  struct Bulk {
    std::vector<ReminderModel::Row> rows;
    std::optional<PutOffMoment> when;  ///< else answered with OK
  };

  QWidget* MakeList();
  QLayout* MakeLine();
  const ReminderModel::Row* Current() const;
  AlertId CurrentId() const;
  void MakeCurrent(int row);
  void ShowCurrent();
  void AfterRemoval(int row);
  void StandAbove(bool above);
  void ShowNumbers();
  void ShowNew();
  void SpanHeadings();

  std::vector<ReminderModel::Row> Together(const std::optional<PutOffMoment>& when) const;
  void OpenLaterMenu();
  void AnswerTogether(const std::optional<PutOffMoment>& when);
  void TakeBack();
  void Carry();
  void EndIfEmpty();

  const Context& context_;
  MayOpen mayOpenEvent_;
  ReminderModel* model_;
  QTreeView* list_ = nullptr;
  QPushButton* new_ = nullptr;
  QLabel* line_ = nullptr;
  QPushButton* takeBack_ = nullptr;
  QPushButton* laterAll_ = nullptr;
  QPushButton* okAll_ = nullptr;
  AlertPane* pane_;
  QPointer<LaterMenu> menu_;
  QTimer carry_;
  QTimer refresh_;  ///< shows the current row once after many changes
  Bulk bulk_;
  AlertId shown_ = 0;   ///< in the pane
  AlertId newest_ = 0;  ///< the last one that the person could see
  bool settled_ = false;
};

}  // namespace kestrin
