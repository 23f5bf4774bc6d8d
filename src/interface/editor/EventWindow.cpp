#include "interface/editor/EventWindow.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QShortcut>
#include <QStyle>
#include <QVBoxLayout>
#include <utility>

#include "core/events/EventSet.h"
#include "core/settings/KestrinSettings.h"
#include "interface/common/Frames.h"
#include "interface/common/HelpKey.h"
#include "interface/common/ShownText.h"
#include "interface/editor/EditorPlace.h"
#include "interface/editor/EventTabView.h"
#include "interface/editor/EventView.h"

namespace kestrin {

EventWindow::EventWindow(Event& event) : event_(&event) {
  setObjectName("eventWindow");
  setWindowTitle("Event");
  Build();
  Retitle();
  ShowEvent();
  event.SetShouldWindowOpen(true);
  if (!header_->OfferName()) tabs_->setFocus();
  OpenAtFrame();
}

EventWindow::~EventWindow() { Detach(); }

void EventWindow::Build() {
  header_ = new EventView(*event_);
  tabs_ = new EventTabView(*event_);
  auto* column = new QVBoxLayout(this);
  column->addWidget(header_);
  column->addWidget(tabs_, 1);
  BuildComplaintLine();
  AddPage(header_);
  for (EditorPage* page : tabs_->Pages()) AddPage(page);
  AddShortcuts();
}

void EventWindow::AddShortcuts() {
  auto* close = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_W), this);
  connect(close, &QShortcut::activated, this, &QWidget::close);
  for (const QKeySequence& key :
       {QKeySequence(Qt::CTRL | Qt::Key_S), QKeySequence(Qt::CTRL | Qt::Key_Z),
        QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)}) {
    auto* shortcut = new QShortcut(key, this);
    connect(shortcut, &QShortcut::activated, this, [this, key] { PassOn(key); });
  }
  OpenHelpByKey(*this, event_->GetOwner()->GetContext(), [this] { return HelpChapter(); });
}

/// Of the page that is worked at.
std::string EventWindow::HelpChapter() const {
  constexpr const char* chapters[] = {"actions", "kinds", "reminders", "reminders", "event"};
  const int page = tabs_->currentIndex();
  const bool isAtHeader = header_->isAncestorOf(focusWidget());
  return isAtHeader || page < 0 ? "event" : chapters[page];
}

/// Saving may have to ask where; what is undone may be of another event.
void EventWindow::PassOn(const QKeySequence& key) {
  CommitEdits();
  const auto* setWindow = dynamic_cast<QWidget*>(event_->GetOwner()->GetWindow());
  if (!setWindow) return;
  for (QAction* action : setWindow->findChildren<QAction*>())
    if (action->shortcut() == key) return action->trigger();
}

/// Its room is there from the start, so that nothing moves when there is something to say.
void EventWindow::BuildComplaintLine() {
  complaintLine_ = new QWidget;
  auto* icon = new QLabel;
  const int side = style()->pixelMetric(QStyle::PM_SmallIconSize);
  icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(side));
  complaint_ = new QLabel;
  complaint_->setObjectName("complaint");
  complaint_->setTextFormat(Qt::PlainText);
  complaint_->setWordWrap(true);
  complaint_->setMinimumHeight(2 * fontMetrics().lineSpacing());
  complaint_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  auto* row = new QHBoxLayout(complaintLine_);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(icon, 0, Qt::AlignTop);
  row->addWidget(complaint_, 1);
  QSizePolicy policy = complaintLine_->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  complaintLine_->setSizePolicy(policy);
  complaintLine_->hide();
  layout()->addWidget(complaintLine_);
}

void EventWindow::AddPage(EditorPage* page) {
  const size_t row = pages_.size();
  pages_.push_back({page, {}});
  connect(page, &EditorPage::Complained, this, [this, row](const QString& why) {
    pages_[row].complaint = why;
    ShowComplaint(why);
  });
}

void EventWindow::ShowComplaint(const QString& last) {
  QString standing = last;
  for (const Page& entry : pages_)
    if (standing.isEmpty()) standing = entry.complaint;
  if (standing == complaint_->text()) return;
  complaint_->setText(standing);
  complaintLine_->setVisible(!standing.isEmpty());
  if (standing.isEmpty()) return;
  QAccessibleEvent said(complaint_, QAccessible::Alert);
  QAccessible::updateAccessibility(&said);
}

void EventWindow::OpenAtFrame() {
  layout()->activate();
  const WindowPositionSet& positions =
      event_->GetOwner()->GetContext().settings.EventWindowPosition;
  const Rect stored = event_->Record().WindowFrame;
  const QSize whole = minimumSizeHint() + QSize(0, tabs_->LackOfHeight());
  const QRect inside = GeometryOnScreen(stored, positions.DefaultFrame(), whole);
  const QMargins around(0, style()->pixelMetric(QStyle::PM_TitleBarHeight), 0, 0);
  const QRect frame =
      PlaceOfEditor({inside + around, !positions.Gives(stored), RoomFor(inside), FramesBeside()});
  setGeometry(frame - around);
  opened_ = geometry();
}

/// The set's window comes first.
std::vector<QRect> EventWindow::FramesBeside() const {
  std::vector<QRect> frames;
  const auto* const setWindow = dynamic_cast<QWidget*>(event_->GetOwner()->GetWindow());
  if (setWindow && setWindow->isVisible()) frames.push_back(setWindow->frameGeometry());
  for (const QWidget* widget : QApplication::topLevelWidgets())
    if (widget != this && widget->isVisible() && qobject_cast<const EventWindow*>(widget))
      frames.push_back(widget->frameGeometry());
  return frames;
}

void EventWindow::Activate() { BringToFront(*this); }

void EventWindow::Retitle() {
  constexpr qsizetype LongestName = 60;
  QString name = ShownLine(event_->GetName());
  if (name.size() > LongestName) name = name.left(LongestName) + u'…';
  const std::string described = " – Event (set " + event_->GetOwner()->GetLeaf() + ")";
  setWindowTitle(WindowTitle(name.toStdString() + described));
}

void EventWindow::ShowEvent() {
  for (const Page& entry : pages_) entry.page->ShowEvent();
}

/// A delivery changes an event's times more than once in a turn of the event loop.
void EventWindow::RedrawTimes() {
  if (std::exchange(redrawWaits_, true)) return;
  const auto redraw = [this] {
    redrawWaits_ = false;
    EventChanged();
  };
  QMetaObject::invokeMethod(this, redraw, Qt::QueuedConnection);
}

void EventWindow::EventChanged() {
  if (!event_) return;
  Retitle();
  ShowEvent();
}

void EventWindow::SettingsChanged() {
  if (event_) ShowEvent();
}

void EventWindow::RemoveEditView() { tabs_->RemoveEditView(); }
void EventWindow::AddEditView() { tabs_->AddEditView(); }

void EventWindow::CommitEdits() {
  if (!event_) return;
  for (const Page& entry : pages_) entry.page->CommitEdits();
}

void EventWindow::CloseNow() {
  hide();
  Detach();
  deleteLater();
}

void EventWindow::Detach() {
  if (!event_) return;
  CommitEdits();
  for (const Page& entry : pages_) entry.page->DropEdits();
  CloseOwnPopup();
  RememberAsDefault();
  tabs_->RemoveEditView();
  std::exchange(event_, nullptr)->WindowClosed();
}

/// A menu or calendar of this window is a window of its own.
void EventWindow::CloseOwnPopup() {
  QWidget* const popup = QApplication::activePopupWidget();
  for (const QWidget* owner = popup; owner; owner = owner->parentWidget())
    if (owner == this) popup->close();
}

/// An event may delete itself, and so close its editor, while its set is locked: then the settings,
/// which come before sets in the order of locks, wait.
void EventWindow::RememberAsDefault() {
  const auto remember = [&settings = event_->GetOwner()->GetContext().settings,
                         frame = PlainFrameOf(*this)] {
    const AutoLock lock(settings.Protect);
    if (!settings.RememberWindowSetupAsDefault) return;
    settings.EventWindowPosition.SetDefaultFrame(frame);
    settings.Changed();
  };
  if (event_->GetOwner()->IsLocked())
    QMetaObject::invokeMethod(qApp, remember, Qt::QueuedConnection);
  else
    remember();
}

void EventWindow::closeEvent(QCloseEvent*) {
  if (!event_) return;
  event_->SetShouldWindowOpen(false);
  CloseNow();
}

void EventWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape)
    close();
  else
    QWidget::keyPressEvent(event);
}

void EventWindow::moveEvent(QMoveEvent* event) {
  QWidget::moveEvent(event);
  StoreFrame();
}

void EventWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  StoreFrame();
}

void EventWindow::StoreFrame() {
  const bool isPlaced = isVisible() && !isMinimized() && !isMaximized() && !isFullScreen();
  if (!event_ || !isPlaced || geometry() == opened_) return;
  opened_ = QRect();
  const AutoLock lock(event_->GetProtectionSemaphore());
  event_->SetWindowFrame(FrameOf(geometry()));
}

}  // namespace kestrin
