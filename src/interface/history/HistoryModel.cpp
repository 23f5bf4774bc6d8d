#include "interface/history/HistoryModel.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/events/Context.h"
#include "core/journal/RecordWords.h"
#include "core/settings/KestrinSettings.h"
#include "interface/common/ShownText.h"

namespace kestrin {

HistoryModel::HistoryModel(const Context& context, QObject* parent)
    : QAbstractTableModel(parent), context_(context) {}

void HistoryModel::Show(std::vector<PastDelivery> past) {
  beginResetModel();
  past_ = std::move(past);
  endResetModel();
}

int HistoryModel::RowOf(const std::string& id) const {
  const auto found = std::find_if(past_.begin(), past_.end(),
                                  [&id](const auto& each) { return each.Record.Id == id; });
  return found == past_.end() ? -1 : static_cast<int>(found - past_.begin());
}

int HistoryModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(past_.size());
}

int HistoryModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : int{ColumnCount};
}

QVariant HistoryModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole)) return {};
  const PastDelivery& past = At(index.row());
  const RecordWords words = WordsOf(past, context_.zone, context_.settings.Time24Hour);
  if (role == Qt::ToolTipRole)
    return ShownLine(past.Record.Set + "\n" + words.Outcome).toHtmlEscaped();
  switch (index.column()) {
    case DueColumn:
      return ShownLine(words.Due);
    case NameColumn:
      return ShownLine(past.Record.Event.Name);
    case KindColumn:
      return ShownLine(words.Kind);
    case OutcomeColumn:
      return ShownLine(words.Outcome);
    case SetColumn:
      return ShownLine(words.Set);
    default:
      return ShownLine(words.Delivered);
  }
}

QVariant HistoryModel::headerData(int section, Qt::Orientation orientation, int role) const {
  constexpr std::array<const char*, ColumnCount> titles = {
      "Due", "Event", "Reminder", "What became of it", "Set", "Delivered"};
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return QString(titles.at(static_cast<size_t>(section)));
}

}  // namespace kestrin
