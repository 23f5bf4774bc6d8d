#include "interface/icons/IconMenu.h"

#include <QScreen>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "interface/icons/UserIcons.h"

namespace kestrin {

IconMenu::IconMenu(KestrinSettings& settings, const IconChoice& now, QWidget* parent)
    : QFrame(parent, Qt::Popup), icons_(new IconGrid(settings)) {
  setObjectName("iconMenu");
  setAccessibleName("Icon");
  setAttribute(Qt::WA_DeleteOnClose);
  setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
  icons_->ShowIcons(now);
  icons_->setFrameShape(QFrame::NoFrame);
  connect(icons_, &IconGrid::Chosen, this, [this](const IconChoice& choice) {
    close();
    emit Chosen(choice);
  });
  connect(icons_, &IconGrid::RemovalWanted, this, [this, &settings, now](const IconPair& icon) {
    RemoveUserIcon(settings, icon);
    icons_->ShowIcons(now);
    adjustSize();
  });
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(4, 4, 4, 4);
  column->setSpacing(0);
  column->addWidget(icons_);
  AddButton(*column, "noIcon", "&No icon", [this] { emit Chosen({}); });
  AddButton(*column, "chooseImage", "&Choose image file…", [this] { emit FileWanted(); });
  AddButton(*column, "openIconPanel", "Icon &panel", [this] { emit PanelWanted(); });
}

void IconMenu::AddButton(QBoxLayout& column, const char* objectName, const QString& label,
                         const std::function<void()>& act) {
  auto* button = new QToolButton;
  button->setObjectName(objectName);
  button->setText(label);
  button->setToolButtonStyle(Qt::ToolButtonTextOnly);
  button->setAutoRaise(true);
  button->setFocusPolicy(Qt::StrongFocus);
  button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  connect(button, &QToolButton::clicked, this, [this, act] {
    close();
    act();
  });
  column.addWidget(button);
}

void IconMenu::OpenAt(const QWidget& widget) {
  adjustSize();
  const QRect room = widget.screen()->availableGeometry();
  const QPoint below = widget.mapToGlobal(QPoint(0, widget.height()));
  move(std::clamp(below.x(), room.left(), std::max(room.left(), room.right() - width())),
       std::clamp(below.y(), room.top(), std::max(room.top(), room.bottom() - height())));
  show();
  icons_->setFocus();
}

}  // namespace kestrin
