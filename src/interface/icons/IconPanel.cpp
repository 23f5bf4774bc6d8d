#include "interface/icons/IconPanel.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/settings/KestrinSettings.h"
#include "interface/common/Frames.h"
#include "interface/icons/UserIcons.h"
#include "support/Opened.h"

namespace kestrin {

IconPanel::IconPanel(KestrinSettings& settings, const IconChoice& now, QWidget* owner)
    : QWidget(owner, Qt::Tool), settings_(settings), icons_(new IconGrid(settings)), now_(now) {
  setObjectName("iconPanel");
  setWindowTitle("Icons");
  setAttribute(Qt::WA_DeleteOnClose);
  icons_->ShowIcons(now);
  icons_->setDragEnabled(true);
  icons_->setDragDropMode(QAbstractItemView::DragOnly);
  connect(icons_, &IconGrid::Chosen, this, [this](const IconChoice& choice) {
    now_ = choice;
    emit Chosen(choice);
  });
  connect(icons_, &IconGrid::RemovalWanted, this, [this](const IconPair& icon) {
    RemoveUserIcon(settings_, icon);
    IconsChanged();
  });
  auto* file = new QPushButton("&Choose image file…");
  file->setObjectName("chooseImage");
  file->setAutoDefault(false);
  connect(file, &QPushButton::clicked, this, &IconPanel::FileWanted);
  auto* column = new QVBoxLayout(this);
  column->addWidget(icons_, 1);
  column->addWidget(file);
}

IconPanel* IconPanel::Opened() {
  for (QWidget* widget : QApplication::topLevelWidgets())
    if (auto* panel = qobject_cast<IconPanel*>(widget); panel && panel->isVisible()) return panel;
  return nullptr;
}

void IconPanel::Open() {
  if (IconPanel* other = Opened()) other->close();
  const QSize size = sizeHint();
  Point place;
  {
    const AutoLock lock(settings_.Protect);
    place = settings_.IconPanelLocation;
  }
  const Rect at{place.x, place.y, place.x + static_cast<float>(size.width() - 1),
                place.y + static_cast<float>(size.height() - 1)};
  setGeometry(GeometryOnScreen(at, {100, 80, 400, 300}));
  show();
  icons_->setFocus();
}

void IconPanel::IconsChanged() {
  if (IconPanel* panel = Opened()) panel->icons_->ShowIcons(panel->now_);
}

void IconPanel::moveEvent(QMoveEvent* event) {
  QWidget::moveEvent(event);
  if (!isVisible()) return;
  const AutoLock lock(settings_.Protect);
  settings_.IconPanelLocation = {static_cast<float>(geometry().x()),
                                 static_cast<float>(geometry().y())};
  settings_.Changed();
}

void IconPanel::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape)
    close();
  else
    QWidget::keyPressEvent(event);
}

}  // namespace kestrin
