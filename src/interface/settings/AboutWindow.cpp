#include "interface/settings/AboutWindow.h"

#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QSysInfo>
#include <QVBoxLayout>

#include "interface/common/ApplicationIcon.h"

namespace kestrin {

namespace {

constexpr int PictureSize = 64;
constexpr qreal NameScale = 1.6;

QString Details() {
  return QString("Kestrin %1, Qt %2 (%3), %4")
      .arg(KESTRIN_VERSION, qVersion(), QGuiApplication::platformName(),
           QSysInfo::prettyProductName());
}

QLabel* MakeText(const char* objectName, const QString& text) {
  auto* label = new QLabel(text);
  label->setObjectName(objectName);
  label->setTextFormat(Qt::PlainText);
  return label;
}

}  // namespace

AboutWindow::AboutWindow(DocumentApp& application) : SideWindow(application) {
  setObjectName("aboutWindow");
  setWindowTitle("About Kestrin");
  setWindowFlags(Qt::Dialog);
  auto* picture = new QLabel;
  picture->setPixmap(ApplicationPicture(PictureSize, devicePixelRatioF()));
  auto* body = new QHBoxLayout;
  body->setSpacing(18);
  body->addWidget(picture, 0, Qt::AlignTop);
  body->addLayout(MakeTexts(), 1);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
  QPushButton* ok = buttons->button(QDialogButtonBox::Ok);
  ok->setObjectName("ok");
  ok->setDefault(true);
  ok->setFocus();
  connect(buttons, &QDialogButtonBox::accepted, this, &QWidget::close);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(20, 20, 20, 16);
  column->setSpacing(18);
  column->setSizeConstraint(QLayout::SetFixedSize);
  column->addLayout(body);
  column->addWidget(buttons);
}

QLayout* AboutWindow::MakeTexts() {
  QLabel* name = MakeText("name", "Kestrin");
  QFont large = name->font();
  large.setPointSizeF(large.pointSizeF() * NameScale);
  large.setBold(true);
  name->setFont(large);
  QLabel* details = MakeText("details", Details());
  details->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  details->setAccessibleName("Details");
  details->setForegroundRole(QPalette::PlaceholderText);
  auto* texts = new QVBoxLayout;
  texts->setSpacing(4);
  texts->addWidget(name);
  texts->addWidget(MakeText("version", QString("Version %1").arg(KESTRIN_VERSION)));
  texts->addSpacing(8);
  texts->addWidget(MakeText("purpose", "Plans personal events and reminds you of them."));
  texts->addWidget(details);
  return texts;
}

void AboutWindow::keyPressEvent(QKeyEvent* event) {
  const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (isReturn)
    close();
  else
    SideWindow::keyPressEvent(event);
}

}  // namespace kestrin
