#include "interface/editor/EventActionView.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>
#include <utility>

#include "core/delivery/EventDelivery.h"
#include "core/events/AddOnReading.h"
#include "core/events/EditRecorder.h"
#include "core/events/EventIdentity.h"
#include "core/events/EventSet.h"
#include "core/events/HandlerTable.h"
#include "core/loop/Notices.h"
#include "interface/common/CommitsEdits.h"
#include "interface/common/Frames.h"
#include "interface/common/ShownText.h"
#include "interface/fields/ChoiceMenu.h"
#include "interface/fields/PassUndoOn.h"
#include "interface/fields/TypedField.h"
#include "interface/fields/WrappingTextView.h"

namespace kestrin {

namespace {

/// The handler that there is nothing to try of.
constexpr int32 DoNothingRow = 1;

QString HandlerLabel(const Event& event, int32 row) {
  const HandlerTable& handlers = event.GetOwner()->GetContext().handlers;
  return handlers.Has(row) ? ShownLine(handlers.NameOf(row)) : "Unknown";
}

/// An add-on's view knows no better moment to store its texts than when they lose the focus.
void TakeFocusAndGiveItBack(const QWidget& view) {
  QWidget* typing = view.focusWidget();
  if (!typing || !typing->hasFocus()) return;
  typing->clearFocus();
  typing->setFocus();
}

/// Puts what takes the focus in the view, which came last, after `before` in the order of tabs.
void PutInTabOrder(QWidget* before, QWidget* view) {
  std::vector<QWidget*> widgets;
  QWidget* each = view;
  do {
    const bool isPart = each == view || view->isAncestorOf(each);
    if (isPart && each->focusPolicy() & Qt::TabFocus) widgets.push_back(each);
    each = each->nextInFocusChain();
  } while (each != view);
  for (QWidget* next : widgets) {
    QWidget::setTabOrder(before, next);
    before = next;
  }
}

/// Fields of our own see to that themselves.
void PassUndoKeysOn(const QWidget& view) {
  for (QWidget* field : view.findChildren<QWidget*>()) {
    const bool isText = field->inherits("QLineEdit") || field->inherits("QPlainTextEdit") ||
                        field->inherits("QTextEdit");
    const bool isOwn = qobject_cast<TypedField*>(field) || qobject_cast<WrappingTextView*>(field);
    if (isText && !isOwn) PassUndoOn(*field);
  }
}

}  // namespace

EventActionView::EventActionView(Event& event) : EditorPage(event) {
  auto* column = new QVBoxLayout(this);
  BuildMenu(*column);
  frame_ = new QScrollArea;
  frame_->setObjectName("editViewFrame");
  frame_->setFrameShape(QFrame::NoFrame);
  frame_->setWidgetResizable(true);
  frame_->setFocusPolicy(Qt::NoFocus);
  frame_->viewport()->setAutoFillBackground(false);
  column->addWidget(frame_, 1);
  deleteOnce_ =
      AddBox("deleteOnceDelivered", "Delete event once &delivered", &Event::SetDeleteOnceDelivered);
  ifMissed_ =
      AddBox("deliverIfMissed", "Deliver event later &if missed", &Event::SetDeliverIfMissed);
}

void EventActionView::showEvent(QShowEvent* event) {
  EditorPage::showEvent(event);
  if (std::exchange(isShownOnce_, true)) return;
  // The window gives its pages their sizes after it has shown them; by then it may be closed.
  const auto add = [this] {
    isShownOnce_ = hasFrame_ = isVisible();
    AddEditView();
  };
  QMetaObject::invokeMethod(this, add, Qt::QueuedConnection);
}

void EventActionView::BuildMenu(QVBoxLayout& column) {
  handler_ = new ChoiceMenu("handler", "Event handler", [this](int32 row) { Select(row); });
  const HandlerTable& handlers = GetEvent().GetOwner()->GetContext().handlers;
  for (int32 row = 0; row < handlers.NumberOfEventHandlers(); ++row)
    handler_->Add(row, HandlerLabel(GetEvent(), row));
  handler_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  auto* caption = new QLabel("Event &handler:");
  caption->setBuddy(handler_);
  auto* row = new QHBoxLayout;
  row->addWidget(caption);
  row->addWidget(handler_, 1);
  try_ = new QPushButton("&Try now");
  try_->setObjectName("tryNow");
  try_->setToolTip("Does at once what the event will do. Its times stay as they are.");
  connect(try_, &QPushButton::clicked, this, &EventActionView::TryNow);
  row->addWidget(try_);
  column.addLayout(row);
}

QCheckBox* EventActionView::AddBox(const char* objectName, const QString& label,
                                   void (Event::*set)(bool)) {
  auto* box = new QCheckBox(label);
  box->setObjectName(objectName);
  connect(box, &QCheckBox::clicked, this,
          [this, set](bool on) { Write([set, on](Event& event) { (event.*set)(on); }); });
  layout()->addWidget(box);
  return box;
}

void EventActionView::Select(int32 row) {
  bool selected = false;
  Write([&](Event& event) { selected = event.SetSelectedHandler(row); });
  if (!selected)
    Report("Kestrin: The handler \"" + HandlerLabel(GetEvent(), row) +
           "\" could not make its data for the event.  The event keeps the handler it had.");
}

void EventActionView::TryNow() {
  CommitEdits();
  ActAgain(GetEvent(), RecordKind::Event);
}

void EventActionView::ShowEvent() {
  const int32 row = GetEvent().GetSelectedHandler();
  handler_->SetOffered(UnknownHandler, GetEvent().GetAddOnData(UnknownHandler) != nullptr);
  handler_->ShowValue(row, HandlerLabel(GetEvent(), row));
  const QString hint = row == UnknownHandler
                           ? "Missing handler: " + ShownLine(GetEvent().GetHandlerName())
                           : QString();
  handler_->setAccessibleDescription(hint.isEmpty() ? handler_->accessibleName() : hint);
  handler_->setToolTip(hint.toHtmlEscaped());
  try_->setEnabled(row != DoNothingRow);
  deleteOnce_->setChecked(GetEvent().Record().DeleteOnceDelivered);
  ifMissed_->setChecked(GetEvent().Record().DeliverIfMissed);
}

void EventActionView::CommitEdits() {
  if (!editView_) return;
  if (auto* view = dynamic_cast<CommitsEdits*>(editView_.data()))
    view->CommitEdits();
  else
    TakeFocusAndGiveItBack(*editView_);
}

void EventActionView::DropEdits() {
  if (auto* view = dynamic_cast<CommitsEdits*>(editView_.data())) view->DropEdits();
}

Rect EventActionView::GetEditViewRect() const { return FrameOf(frame_->geometry()); }

void EventActionView::AddEditView() {
  if (!hasFrame_) return;
  viewed_ = GetEvent().GetAddOnData();
  if (!viewed_) return;
  if (EditRecorder* const recorder = GetEvent().GetOwner()->Recorder())
    recorder->HandlerShown(GetEvent());
  EventSet& set = *GetEvent().GetOwner();
  AddOnReading reading(set.GetContext(), JournalPath(set));
  if (GetEvent().GetSelectedHandler() >= NumberOfBuiltInHandlers)
    reading.Begin(set.FileNames().Of(set, GetEvent()));
  QWidget* view = nullptr;
  try {
    view = viewed_->CreateEditView(GetEditViewRect());
  } catch (...) {
    Report("Kestrin: The handler \"" + HandlerLabel(GetEvent(), GetEvent().GetSelectedHandler()) +
           "\" failed to make its edit view.");
  }
  if (!view) return;
  viewed_->RecordEditView(view);
  Place(view);
}

void EventActionView::Place(QWidget* view) {
  editView_ = view;
  if (view->objectName().isEmpty()) view->setObjectName("editView");
  if (view->metaObject()->indexOfSignal("Complained(QString)") >= 0)
    connect(view, SIGNAL(Complained(QString)), this, SLOT(PassOn(QString)));
  const bool fillsItself = view->autoFillBackground();
  frame_->setWidget(view);
  view->setAutoFillBackground(fillsItself);  // the page is behind it
  PutInTabOrder(try_, view);
  PassUndoKeysOn(*view);
  view->show();
}

void EventActionView::RemoveEditView() {
  if (!viewed_) return;
  CommitEdits();
  if (editView_) {
    TakeComplaint(editView_, {});
    editView_->disconnect(this);
  }
  frame_->takeWidget();
  EventAddOnData* const viewed = std::exchange(viewed_, nullptr);
  try {
    viewed->DestroyEditView();
  } catch (...) {
    Report("Kestrin: The handler \"" + HandlerLabel(GetEvent(), GetEvent().GetSelectedHandler()) +
           "\" failed to remove its edit view.");
  }
  viewed->RecordEditView(nullptr);
  delete editView_;
}

void EventActionView::Report(const QString& what) {
  Notices& notices = GetEvent().GetOwner()->GetContext().notices;
  const auto report = [&notices, text = what.toStdString()] { notices.ReportError(text); };
  QMetaObject::invokeMethod(this, report, Qt::QueuedConnection);
}

}  // namespace kestrin
