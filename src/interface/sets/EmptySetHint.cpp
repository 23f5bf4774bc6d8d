#include "interface/sets/EmptySetHint.h"

#include <QAbstractItemView>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

#include "core/loop/MessageCodes.h"
#include "core/loop/MessageQueue.h"

namespace kestrin {

EmptySetHint::EmptySetHint(MessageQueue& application, QAbstractItemView& view)
    : QWidget(view.parentWidget()), view_(view) {
  setObjectName("emptySet");
  auto* grid = new QGridLayout(this);
  grid->setColumnStretch(0, 1);
  grid->setColumnStretch(3, 1);
  grid->setRowStretch(0, 1);
  auto* heading = new QLabel("This event set is empty.");
  grid->addWidget(heading, 1, 1, 1, 2);
  connect(AddButton(*grid, "newEvent", "New event", "Ctrl+Shift+N"), &QPushButton::clicked, this,
          &EmptySetHint::NewEventRequested);
  const auto post = [&application](uint32 code) {
    return [&application, code] { application.Post(Message(code)); };
  };
  connect(AddButton(*grid, "openSet", "&Open…", "Ctrl+O"), &QPushButton::clicked, this,
          post(OPEN_EVENT_SET));
  connect(AddButton(*grid, "showSample", "&Look at the sample", ""), &QPushButton::clicked, this,
          post(SHOW_SAMPLE));
  grid->setRowStretch(grid->rowCount(), 2);
  view.viewport()->installEventFilter(this);
}

QPushButton* EmptySetHint::AddButton(QGridLayout& grid, const char* objectName,
                                     const QString& label, const QString& keys) {
  const int row = grid.rowCount();
  auto* button = new QPushButton(label);
  button->setObjectName(objectName);
  button->setToolTip(keys);
  auto* key = new QLabel(keys);
  key->setForegroundRole(QPalette::PlaceholderText);
  grid.addWidget(button, row, 1);
  grid.addWidget(key, row, 2);
  return button;
}

bool EmptySetHint::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Resize || event->type() == QEvent::Move) {
    const QWidget& area = *view_.viewport();
    setGeometry(QRect(area.mapTo(parentWidget(), QPoint()), area.size()));
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace kestrin
