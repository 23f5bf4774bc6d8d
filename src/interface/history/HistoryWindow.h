// The window that tells what was delivered, put off and missed.
#pragma once

#include <string>

#include "interface/common/SideWindow.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QSortFilterProxyModel;
class QTreeView;

namespace kestrin {

class HistoryModel;
struct Context;

/// Reads the files of the state folder when it opens and whenever it becomes active.
class HistoryWindow final : public SideWindow {
  Q_OBJECT

 public:
  HistoryWindow(Context& context, const std::string& stateFolder, DocumentApp& application);

 protected:
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildList();
  QLayout* MakeFoot();
  void Refresh();
  void ShowState();
  void RemindAgain();

  Context& context_;
  const std::string stateFolder_;
  HistoryModel* model_;
  QSortFilterProxyModel* shown_;
  QLineEdit* filter_;
  QTreeView* list_;
  QLabel* count_ = nullptr;
  QPushButton* again_ = nullptr;
  QString fault_;  ///< why something is missing; empty when nothing is
};

}  // namespace kestrin
