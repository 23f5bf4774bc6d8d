#include "interface/alerts/RemindersWindow.h"

#include <QAccessible>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTreeView>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>
#include <chrono>
#include <utility>

#include "core/events/Context.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/MessageCodes.h"
#include "core/loop/MessageQueue.h"
#include "interface/alerts/AlertPane.h"
#include "interface/alerts/KeyGuard.h"
#include "interface/alerts/LaterMenu.h"
#include "interface/common/HelpKey.h"
#include "interface/common/RoomyRows.h"

namespace kestrin {

namespace {

constexpr std::chrono::seconds TakeBackTime{10};
constexpr QSize UsualSize(680, 540);

template <typename Button = QPushButton>
Button* PlainButton(const char* objectName, const QString& label) {
  auto* button = new Button(label);
  button->setObjectName(objectName);
  button->setAutoDefault(false);
  return button;
}

}  // namespace

RemindersWindow::RemindersWindow(const Context& context, MayOpen mayOpenEvent)
    : context_(context),
      mayOpenEvent_(std::move(mayOpenEvent)),
      model_(new ReminderModel(context, this)),
      pane_(new AlertPane(&context)) {
  setObjectName("reminders");
  setWindowFlags(Qt::Window | Qt::WindowStaysOnTopHint);
  setAttribute(Qt::WA_ShowWithoutActivating);
  new KeyGuard(*this);
  OpenHelpByKey(*this, context, [] { return "alerts"; });
  pane_->KeepButtonsInPlace();
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(12, 12, 12, 12);
  column->setSpacing(10);
  column->addWidget(MakeList(), 3);
  column->addLayout(MakeLine());
  column->addWidget(pane_, 2);
  connect(pane_, &AlertPane::Pressed, this,
          [this](int which) { emit Answered(CurrentId(), which); });
  connect(pane_, &AlertPane::PutOff, this,
          [this](const PutOffMoment& when) { emit PutOff(CurrentId(), when); });
  connect(pane_, &AlertPane::OpenEventWanted, this, [this] {
    StandAbove(false);
    if (const auto* row = Current()) emit OpenEventWanted(row->request.Set, row->request.Event);
  });
  carry_.setSingleShot(true);
  connect(&carry_, &QTimer::timeout, this, &RemindersWindow::Carry);
  refresh_.setSingleShot(true);
  connect(&refresh_, &QTimer::timeout, this, [this] {
    ShowCurrent();
    ShowNumbers();
    ShowNew();
  });
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  resize(UsualSize.boundedTo(screen.size() * 4 / 5));
  move(screen.center() - QPoint(width() / 2, height() / 2 + screen.height() / 16));
}

QWidget* RemindersWindow::MakeList() {
  list_ = new QTreeView;
  list_->setObjectName("reminderList");
  list_->setAccessibleName("Reminders");
  list_->setModel(model_);
  list_->setItemDelegate(new RoomyRows(list_));
  list_->setRootIsDecorated(false);
  list_->setUniformRowHeights(true);
  list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  QHeaderView* header = list_->header();
  header->setStretchLastSection(false);
  header->setSectionResizeMode(ReminderModel::TextColumn, QHeaderView::Stretch);
  header->resizeSection(ReminderModel::NameColumn, 180);
  header->resizeSection(ReminderModel::DueColumn,
                        fontMetrics().horizontalAdvance("Wed, Nov 22 2026, 00:00 AM") + 16);
  connect(list_->selectionModel(), &QItemSelectionModel::currentRowChanged, this, [this] {
    if (CurrentId() != shown_) ShowCurrent();
  });
  connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &RemindersWindow::ShowNumbers);
  connect(list_->verticalScrollBar(), &QScrollBar::valueChanged, this, &RemindersWindow::ShowNew);
  return list_;
}

QLayout* RemindersWindow::MakeLine() {
  new_ = PlainButton("newReminders", "");
  new_->hide();
  line_ = new QLabel;
  line_->setObjectName("whatIsLeft");
  line_->setTextFormat(Qt::PlainText);
  takeBack_ = PlainButton("takeBack", "Take &back");
  takeBack_->hide();
  laterAll_ = PlainButton<LaterButton>("laterAll", "La&ter all");
  okAll_ = PlainButton("okAll", "OK &all");
  connect(new_, &QPushButton::clicked, this, [this] { list_->scrollToBottom(); });
  connect(takeBack_, &QPushButton::clicked, this, &RemindersWindow::TakeBack);
  connect(laterAll_, &QPushButton::clicked, this, &RemindersWindow::OpenLaterMenu);
  connect(okAll_, &QPushButton::clicked, this, [this] { AnswerTogether(std::nullopt); });
  auto* history = PlainButton("history", "Histor&y…");
  connect(history, &QPushButton::clicked, this, [this] {
    StandAbove(false);
    context_.queue.Post(Message(SHOW_HISTORY));
  });
  auto* row = new QHBoxLayout;
  row->addWidget(history);
  row->addWidget(new_);
  row->addWidget(line_, 1);
  row->addWidget(takeBack_);
  row->addWidget(laterAll_);
  row->addWidget(okAll_);
  return row;
}

// Rows.

const ReminderModel::Row* RemindersWindow::Current() const {
  return model_->ReminderAt(list_->currentIndex().row());
}

AlertId RemindersWindow::CurrentId() const {
  const auto* row = Current();
  return row ? row->id : 0;
}

void RemindersWindow::MakeCurrent(int row) {
  if (row < 0) return;
  list_->selectionModel()->setCurrentIndex(
      model_->index(row, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void RemindersWindow::Add(AlertId id, const AlertRequest& request) {
  model_->Add(id, request);
  const int last = model_->rowCount() - 1;
  if (model_->IsHeading(last - 1)) list_->setFirstColumnSpanned(last - 1, {}, true);
  if (!Current()) MakeCurrent(last);
  if (!settled_) newest_ = id;
  refresh_.start(0);
}

bool RemindersWindow::Update(AlertId id, const AlertRequest& request) {
  const auto waits = std::find_if(bulk_.rows.begin(), bulk_.rows.end(),
                                  [id](const auto& row) { return row.id == id; });
  if (waits != bulk_.rows.end()) {
    waits->request = request;
    std::vector<ReminderModel::Row> back = {std::move(*waits)};
    bulk_.rows.erase(waits);
    const AlertId current = CurrentId();
    model_->PutBack(std::move(back));
    SpanHeadings();
    MakeCurrent(model_->ReminderNear(model_->RowOf(current)));
  } else if (!model_->Update(id, request)) {
    return false;
  }
  if (id == CurrentId()) shown_ = 0;
  refresh_.start(0);
  return true;
}

bool RemindersWindow::Remove(AlertId id) {
  if (std::erase_if(bulk_.rows, [id](const auto& row) { return row.id == id; }) > 0) {
    EndIfEmpty();
    return true;
  }
  const int row = model_->RowOf(id);
  if (row < 0) return false;
  const bool wasCurrent = id == CurrentId();
  model_->Remove(id);
  if (wasCurrent) AfterRemoval(row);
  refresh_.start(0);
  EndIfEmpty();
  return true;
}

/// The next row is current, and what had the focus has it still.
void RemindersWindow::AfterRemoval(int row) {
  MakeCurrent(model_->ReminderNear(row));
  ShowCurrent();
}

void RemindersWindow::ShowCurrent() {
  const auto* row = Current();
  if (!row || row->id == shown_) return;
  shown_ = row->id;
  const QString focused = pane_->FocusedLabel();
  pane_->ShowRequest(row->request, mayOpenEvent_(row->request));
  pane_->FocusLabel(focused);
  setAccessibleDescription(pane_->Text());
}

void RemindersWindow::SpanHeadings() {
  for (int row = 0; row < model_->rowCount(); ++row)
    if (model_->IsHeading(row)) list_->setFirstColumnSpanned(row, {}, true);
}

void RemindersWindow::Raise(AlertId id) {
  MakeCurrent(model_->RowOf(id));
  raise();
  activateWindow();
}

void RemindersWindow::Complain(AlertId id, const std::string& why) {
  MakeCurrent(model_->RowOf(id));
  ShowCurrent();
  pane_->Complain(why);
}

/// What is opened from here is not to lie under it; whatever comes next brings it up again.
void RemindersWindow::StandAbove(bool above) {
  if (windowHandle()) windowHandle()->setFlag(Qt::WindowStaysOnTopHint, above);
}

void RemindersWindow::Announce() {
  ShowCurrent();
  ShowNumbers();
  StandAbove(true);
  if (!isVisible()) {
    show();
    pane_->FocusLabel("OK");
    QTimer::singleShot(0, this, [this] { settled_ = true; });
  }
  QAccessibleEvent event(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&event);
}

// Numbers.

void RemindersWindow::ShowNumbers() {
  const int count = model_->CountReminders();
  const QString title = QString("Kestrin reminders (%1)").arg(count);
  setWindowTitle(title);
  setAccessibleName(title);
  const bool some = list_->selectionModel()->selectedRows().size() > 1;
  const auto together = static_cast<int>(Together(std::nullopt).size());
  const QString number = together > 0 ? QString(" (%1)").arg(together) : QString();
  okAll_->setText((some ? "OK sele&cted" : "OK &all") + number);
  laterAll_->setText(some ? "La&ter selected" : "La&ter all");
  okAll_->setEnabled(together > 0);
  laterAll_->setVisible(context_.alerts.CanPutOff());
  laterAll_->setEnabled(together > 0);
  pane_->setVisible(count > 0);
}

/// What came since and lies below the lowest row that can be seen.
void RemindersWindow::ShowNew() {
  if (!settled_) return;
  const QModelIndex lowest =
      list_->indexAt(QPoint(4, list_->viewport()->height() - list_->sizeHintForRow(0)));
  const int seen = lowest.isValid() ? lowest.row() : model_->rowCount() - 1;
  int count = 0;
  for (int row = 0; row < model_->rowCount(); ++row) {
    const auto* reminder = model_->ReminderAt(row);
    if (!reminder) continue;
    if (row <= seen)
      newest_ = std::max(newest_, reminder->id);
    else if (reminder->id > newest_)
      ++count;
  }
  new_->setVisible(count > 0);
  new_->setText(QString("%1 ne&w").arg(count));
}

// All together.

/// Only alerts whose OK does nothing but close; a prewarning only to a moment before its event.
std::vector<ReminderModel::Row> RemindersWindow::Together(
    const std::optional<PutOffMoment>& when) const {
  const QModelIndexList selected = list_->selectionModel()->selectedRows();
  std::vector<ReminderModel::Row> rows;
  const auto take = [&](const ReminderModel::Row* row) {
    if (!row || row->request.Role == AlertRole::Question) return;
    const int32 begins = row->request.Begins;
    if (!when || begins == 0 || when->moment <= begins) rows.push_back(*row);
  };
  if (selected.size() > 1)
    for (const QModelIndex& index : selected) take(model_->ReminderAt(index.row()));
  else
    for (int row = 0; row < model_->rowCount(); ++row) take(model_->ReminderAt(row));
  return rows;
}

void RemindersWindow::OpenLaterMenu() {
  menu_ = new LaterMenu(context_, 0, false, laterAll_);
  connect(menu_, &LaterMenu::Chosen, this,
          [this](const PutOffMoment& when) { AnswerTogether(when); });
  menu_->OpenAt(*laterAll_);
}

void RemindersWindow::AnswerTogether(const std::optional<PutOffMoment>& when) {
  Carry();
  bulk_ = {Together(when), when};
  if (bulk_.rows.empty()) return;
  std::set<AlertId> ids;
  for (const auto& row : bulk_.rows) ids.insert(row.id);
  model_->RemoveAll(ids);
  SpanHeadings();
  MakeCurrent(model_->ReminderNear(0));
  ShowCurrent();
  line_->setText(model_->WhatIsLeft(bulk_.rows, when.has_value()));
  takeBack_->show();
  takeBack_->setFocus();
  refresh_.start(0);
  carry_.start(TakeBackTime);
}

void RemindersWindow::TakeBack() {
  carry_.stop();
  model_->PutBack(std::exchange(bulk_, {}).rows);
  SpanHeadings();
  takeBack_->hide();
  line_->clear();
  shown_ = 0;
  MakeCurrent(model_->ReminderNear(0));
  pane_->DefaultButton()->setFocus();
  refresh_.start(0);
}

void RemindersWindow::Carry() {
  carry_.stop();
  if (takeBack_->hasFocus()) pane_->DefaultButton()->setFocus();
  takeBack_->hide();
  line_->clear();
  // Each is removed in answer to its signal; one that cannot be put off stands in the list again.
  const Bulk bulk = bulk_;
  for (const auto& row : bulk.rows) {
    if (bulk.when)
      emit PutOff(row.id, *bulk.when);
    else
      emit Answered(row.id, row.request.HarmlessButton);
  }
  if (!bulk_.rows.empty()) TakeBack();
  EndIfEmpty();
}

void RemindersWindow::EndIfEmpty() {
  if (model_->CountReminders() == 0 && bulk_.rows.empty()) emit Emptied();
}

// Closing.

void RemindersWindow::keyPressEvent(QKeyEvent* event) {
  if (event->isAutoRepeat()) return;
  const auto* row = Current();
  if (event->key() == Qt::Key_Escape && row) {
    emit Answered(row->id, row->request.HarmlessButton);
    return;
  }
  QDialog::keyPressEvent(event);
}

void RemindersWindow::reject() { close(); }

/// First what OK closes, which can be taken back; a second time the harmless answer to the rest.
void RemindersWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  if (bulk_.rows.empty() && !Together(std::nullopt).empty()) {
    list_->selectionModel()->clearSelection();
    AnswerTogether(std::nullopt);
    return;
  }
  const std::vector<ReminderModel::Row> left = model_->Rows();
  Carry();
  for (const auto& row : left)
    if (row.id != 0) emit Answered(row.id, row.request.HarmlessButton);
}

}  // namespace kestrin
