// What stands in the list of a set without events: what a person can do now.
#pragma once

#include <QWidget>

class QAbstractItemView;
class QGridLayout;
class QPushButton;

namespace kestrin {

class MessageQueue;

/// Lies over the view's empty part while it is shown; beside the view in their common parent, since
/// a screen reader knows nothing in a view but its rows. What goes to the application is posted.
class EmptySetHint final : public QWidget {
  Q_OBJECT

 public:
  /// The view has its parent already.
  EmptySetHint(MessageQueue& application, QAbstractItemView& view);

 signals:
  void NewEventRequested();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QPushButton* AddButton(QGridLayout& grid, const char* objectName, const QString& label,
                         const QString& keys);

  QAbstractItemView& view_;
};

}  // namespace kestrin
