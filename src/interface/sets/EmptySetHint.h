// What stands in the list of a set without events: what a person can do now.
#pragma once

#include <QWidget>

class QAbstractItemView;
class QGridLayout;
class QPushButton;

namespace kestrin {

class MessageQueue;

/// Lies over the view's empty part while it is shown. What goes to the application is posted.
class EmptySetHint final : public QWidget {
  Q_OBJECT

 public:
  EmptySetHint(MessageQueue& application, QAbstractItemView& view);

 signals:
  void NewEventRequested();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QPushButton* AddButton(QGridLayout& grid, const char* objectName, const QString& label,
                         const QString& keys);
};

}  // namespace kestrin
