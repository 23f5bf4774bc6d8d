#include "interface/settings/SelectedSetsView.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <algorithm>

#include "core/settings/KestrinSettings.h"
#include "interface/common/ShownText.h"

namespace kestrin {

namespace {

constexpr int RowPadding = 6;

/// Rows are as wide as the view, so that long paths are cut rather than scrolled.
struct RowDelegate : QStyledItemDelegate {
  using QStyledItemDelegate::QStyledItemDelegate;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    return {0, QStyledItemDelegate::sizeHint(option, index).height() + RowPadding};
  }
};

QString EmptyText() {
  return SelectedSetsView::tr(
      "No event set is remembered.\nUse \"Remember for delivery\" in the menu of its window.");
}

}  // namespace

SelectedSetsView::SelectedSetsView(KestrinSettings& settings, QAbstractButton& forgetButton,
                                   QWidget* parent)
    : QListWidget(parent), settings_(settings), forgetButton_(forgetButton) {
  setItemDelegate(new RowDelegate(this));
  setSelectionMode(ExtendedSelection);
  setTextElideMode(Qt::ElideMiddle);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  ShowPaths({});
}

std::vector<std::string> SelectedSetsView::SelectedPaths() const {
  std::vector<std::string> paths;
  for (size_t row = 0; row < shown_.size(); ++row)
    if (item(static_cast<int>(row))->isSelected()) paths.push_back(shown_[row]);
  return paths;
}

void SelectedSetsView::AddPath(const std::string& path) {
  auto* row = new QListWidgetItem(ShownLine(path), this);
  row->setToolTip(row->text());
}

void SelectedSetsView::ShowPaths(const std::vector<std::string>& paths) {
  const std::vector<std::string> selected = SelectedPaths();
  const int current = currentRow();
  const int scrolled = verticalScrollBar()->value();
  clear();
  shown_ = paths;
  for (const std::string& path : paths) AddPath(path);
  setCurrentRow(std::min(current, count() - 1), QItemSelectionModel::NoUpdate);
  for (size_t row = 0; row < paths.size(); ++row)
    if (std::find(selected.begin(), selected.end(), paths[row]) != selected.end())
      item(static_cast<int>(row))->setSelected(true);
  verticalScrollBar()->setValue(scrolled);
  setAccessibleDescription(paths.empty() ? EmptyText() : QString());
  forgetButton_.setEnabled(!paths.empty());
}

void SelectedSetsView::UpdateListContents() {
  if (shown_ != settings_.SetFileNames) ShowPaths(settings_.SetFileNames);
}

void SelectedSetsView::ForgetSelected() {
  const std::vector<std::string> selected = SelectedPaths();
  if (selected.empty()) return;
  std::vector<std::string>& names = settings_.SetFileNames;
  for (const std::string& path : selected)
    if (const auto found = std::find(names.begin(), names.end(), path); found != names.end())
      names.erase(found);
  UpdateListContents();
  settings_.Changed();
}

void SelectedSetsView::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Delete) || event->key() == Qt::Key_Backspace)
    emit ForgetAsked();
  else
    QListWidget::keyPressEvent(event);
}

void SelectedSetsView::paintEvent(QPaintEvent* event) {
  QListWidget::paintEvent(event);
  if (count() > 0) return;
  QPainter painter(viewport());
  painter.setPen(palette().color(QPalette::PlaceholderText));
  const QRect room = viewport()->rect().adjusted(8, 8, -8, -8);
  painter.drawText(room, Qt::AlignCenter | Qt::TextWordWrap, EmptyText());
}

}  // namespace kestrin
