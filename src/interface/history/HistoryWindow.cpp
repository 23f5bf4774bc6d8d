#include "interface/history/HistoryWindow.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSortFilterProxyModel>
#include <QTreeView>
#include <QVBoxLayout>
#include <cerrno>
#include <cstring>

#include "core/delivery/RemindAgain.h"
#include "core/events/Context.h"
#include "interface/common/HelpKey.h"
#include "interface/common/RoomyRows.h"
#include "interface/history/HistoryModel.h"

namespace kestrin {

namespace {

constexpr QSize UsualSize(1080, 480);
constexpr int NameWidth = 160, SetWidth = 110, RoomAround = 14;

}  // namespace

HistoryWindow::HistoryWindow(Context& context, const std::string& stateFolder,
                             DocumentApp& application)
    : SideWindow(application),
      context_(context),
      stateFolder_(stateFolder),
      model_(new HistoryModel(context, this)),
      shown_(new QSortFilterProxyModel(this)),
      filter_(new QLineEdit),
      list_(new QTreeView) {
  setObjectName("historyWindow");
  setWindowTitle("Kestrin history");
  OpenHelpByKey(*this, context, [] { return "alerts"; });
  auto* label = new QLabel("&Show only:");
  label->setBuddy(filter_);
  filter_->setObjectName("historyFilter");
  filter_->setPlaceholderText("a name, a set, a date, “missed”…");
  filter_->setClearButtonEnabled(true);
  filter_->installEventFilter(this);
  auto* head = new QHBoxLayout;
  head->addWidget(label);
  head->addWidget(filter_, 1);
  BuildList();
  auto* column = new QVBoxLayout(this);
  column->addLayout(head);
  column->addWidget(list_, 1);
  column->addLayout(MakeFoot());
  connect(filter_, &QLineEdit::textChanged, this, [this](const QString& text) {
    shown_->setFilterFixedString(text.trimmed());
    ShowState();
  });
  Refresh();
  list_->setFocus();
  resize(UsualSize.boundedTo(screen()->availableGeometry().size() * 9 / 10));
}

void HistoryWindow::BuildList() {
  shown_->setSourceModel(model_);
  shown_->setFilterKeyColumn(-1);
  shown_->setFilterCaseSensitivity(Qt::CaseInsensitive);
  list_->setObjectName("history");
  list_->setAccessibleName("History");
  list_->setModel(shown_);
  list_->setRootIsDecorated(false);
  list_->setUniformRowHeights(true);
  list_->setItemDelegate(new RoomyRows(list_));
  list_->setAlternatingRowColors(true);
  QHeaderView& header = *list_->header();
  const auto widthOf = [this](const char* text) {
    return fontMetrics().horizontalAdvance(text) + RoomAround;
  };
  header.setStretchLastSection(false);
  header.setSectionResizeMode(HistoryModel::OutcomeColumn, QHeaderView::Stretch);
  header.resizeSection(HistoryModel::DueColumn, widthOf("Wed, Nov 22 2026, 00:00:00 AM"));
  header.resizeSection(HistoryModel::NameColumn, NameWidth);
  header.resizeSection(HistoryModel::KindColumn, widthOf("Prewarning"));
  header.resizeSection(HistoryModel::SetColumn, SetWidth);
  header.resizeSection(HistoryModel::DeliveredColumn, widthOf("Wed, Nov 22 2026, 00:00:00 AM"));
  connect(list_, &QTreeView::activated, this, &HistoryWindow::RemindAgain);
  connect(list_->selectionModel(), &QItemSelectionModel::currentChanged, this,
          &HistoryWindow::ShowState);
}

QLayout* HistoryWindow::MakeFoot() {
  count_ = new QLabel;
  count_->setObjectName("historyCount");
  count_->setTextFormat(Qt::PlainText);
  again_ = new QPushButton("&Remind again");
  again_->setObjectName("remindAgain");
  again_->setToolTip("Shows it once more. Nothing is carried out again.");
  connect(again_, &QPushButton::clicked, this, &HistoryWindow::RemindAgain);
  auto* foot = new QHBoxLayout;
  foot->addWidget(count_, 1);
  foot->addWidget(again_);
  return foot;
}

/// The current row stays the same delivery, else the newest is.
void HistoryWindow::Refresh() {
  const QModelIndex current = shown_->mapToSource(list_->currentIndex());
  const std::string id = current.isValid() ? model_->At(current.row()).Record.Id : std::string();
  status_t status = StatusOk;
  model_->Show(LookBack(context_.files, stateFolder_, status));
  fault_ = status == StatusOk   ? QString()
           : status == -EBADMSG ? QString("Some lines are damaged and were left out.")
                                : QString("Not all of it can be read: %1.")
                                      .arg(QString::fromLocal8Bit(std::strerror(-status)));
  const int row = std::max(0, model_->RowOf(id));
  list_->setCurrentIndex(shown_->mapFromSource(model_->index(row, 0)));
  ShowState();
}

void HistoryWindow::ShowState() {
  const int all = model_->rowCount(), seen = shown_->rowCount();
  QString text = seen == all ? QString("%1 reminders").arg(all)
                             : QString("%1 of %2 reminders").arg(seen).arg(all);
  if (all == 0) text = "No reminder has come yet.";
  if (all == 1 && seen == 1) text = "1 reminder";
  count_->setText(fault_.isEmpty() ? text : text + ". " + fault_);
  again_->setEnabled(list_->currentIndex().isValid());
}

void HistoryWindow::RemindAgain() {
  const QModelIndex current = shown_->mapToSource(list_->currentIndex());
  if (current.isValid()) kestrin::RemindAgain(context_, model_->At(current.row()));
}

void HistoryWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ActivationChange && isActiveWindow() && !IsClosed()) Refresh();
  SideWindow::changeEvent(event);
}

/// The arrow leads from the filter into the list.
bool HistoryWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Down) {
      list_->setFocus();
      return true;
    }
  }
  return SideWindow::eventFilter(watched, event);
}

}  // namespace kestrin
