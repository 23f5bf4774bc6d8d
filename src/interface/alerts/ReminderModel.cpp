#include "interface/alerts/ReminderModel.h"

#include <QFont>
#include <algorithm>

#include "core/events/Context.h"
#include "core/timing/DateTimeText.h"
#include "interface/alerts/AlertIcon.h"
#include "interface/alerts/LaterMenu.h"
#include "interface/common/ShownText.h"

namespace kestrin {

namespace {

QString Heading(bool away) { return away ? "While you were away" : "Now"; }

/// What the alert says beyond the event's name and time, on one line.
QString Summary(const std::string& text) {
  const size_t blank = text.find("\n\n");
  const std::string own = blank == std::string::npos ? "" : text.substr(blank + 2);
  const QString line = ShownLine(own).simplified();
  return line.isEmpty() ? ShownLine(text.substr(0, blank)).simplified() : line;
}

/// "3 questions are left", "1 nag goes on".
QString Counted(int count, const QString& what, const QString& one, const QString& many) {
  return QString("%1 %2 %3")
      .arg(count)
      .arg(count == 1 ? what : what + "s", count == 1 ? one : many);
}

}  // namespace

ReminderModel::ReminderModel(const Context& context, QObject* parent)
    : QAbstractTableModel(parent), context_(context) {}

void ReminderModel::AppendWithHeading(std::vector<Row>& rows, Row row) {
  if (rows.empty() || rows.back().request.Away != row.request.Away) {
    Row heading;
    heading.request.Away = row.request.Away;
    rows.push_back(std::move(heading));
  }
  rows.push_back(std::move(row));
}

void ReminderModel::Add(AlertId id, const AlertRequest& request) {
  const int count = static_cast<int>(rows_.size());
  const bool withHeading = rows_.empty() || rows_.back().request.Away != request.Away;
  beginInsertRows({}, count, count + (withHeading ? 1 : 0));
  AppendWithHeading(rows_, {id, request});
  ++reminders_;
  endInsertRows();
}

void ReminderModel::Rebuild(std::vector<Row> reminders) {
  beginResetModel();
  rows_.clear();
  reminders_ = static_cast<int>(reminders.size());
  for (Row& row : reminders) AppendWithHeading(rows_, std::move(row));
  endResetModel();
}

void ReminderModel::PutBack(std::vector<Row> rows) {
  std::copy_if(rows_.begin(), rows_.end(), std::back_inserter(rows),
               [](const Row& row) { return row.id != 0; });
  std::sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) { return a.id < b.id; });
  Rebuild(std::move(rows));
}

void ReminderModel::RemoveAll(const std::set<AlertId>& ids) {
  std::vector<Row> left;
  for (Row& row : rows_)
    if (row.id != 0 && !ids.contains(row.id)) left.push_back(std::move(row));
  Rebuild(std::move(left));
}

bool ReminderModel::Update(AlertId id, const AlertRequest& request) {
  const int row = RowOf(id);
  if (row < 0) return false;
  const bool away = rows_[static_cast<size_t>(row)].request.Away;
  rows_[static_cast<size_t>(row)].request = request;
  rows_[static_cast<size_t>(row)].request.Away = away;  // it stays where it stands
  emit dataChanged(index(row, 0), index(row, ColumnCount - 1));
  return true;
}

bool ReminderModel::Remove(AlertId id) {
  const int row = RowOf(id);
  if (row < 0) return false;
  const bool wasLastOfItsHeading = IsHeading(row - 1) && IsHeading(row + 1);
  const int first = wasLastOfItsHeading ? row - 1 : row;
  beginRemoveRows({}, first, row);
  rows_.erase(rows_.begin() + first, rows_.begin() + row + 1);
  --reminders_;
  endRemoveRows();
  return true;
}

int ReminderModel::RowOf(AlertId id) const {
  const auto found =
      std::find_if(rows_.begin(), rows_.end(), [id](const Row& row) { return row.id == id; });
  return id == 0 || found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

const ReminderModel::Row* ReminderModel::ReminderAt(int row) const {
  if (row < 0 || row >= static_cast<int>(rows_.size())) return nullptr;
  const Row& found = rows_[static_cast<size_t>(row)];
  return found.id == 0 ? nullptr : &found;
}

int ReminderModel::ReminderNear(int row) const {
  const int count = static_cast<int>(rows_.size());
  for (int next = std::max(row, 0); next < count; ++next)
    if (ReminderAt(next)) return next;
  for (int before = std::min(row, count) - 1; before >= 0; --before)
    if (ReminderAt(before)) return before;
  return -1;
}

QString ReminderModel::WhatIsLeft(const std::vector<Row>& answered, bool putOff) const {
  int questions = 0, others = 0, nags = 0;
  for (const auto& row : rows_) {
    if (row.id == 0) continue;
    ++(row.request.Role == AlertRole::Question ? questions : others);
  }
  for (const auto& row : answered) nags += row.request.ComesAgain != 0 ? 1 : 0;
  QStringList parts = {QString("%1 %2").arg(answered.size()).arg(putOff ? "put off" : "answered")};
  if (questions > 0) parts += Counted(questions, "question", "is left", "are left");
  if (others > 0) parts += Counted(others, "reminder", "is left", "are left");
  if (nags > 0 && !putOff) parts += Counted(nags, "nag", "goes on", "go on");
  return parts.join(", ");
}

int ReminderModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int ReminderModel::columnCount(const QModelIndex&) const { return ColumnCount; }

QString ReminderModel::CellText(const AlertRequest& request, int column) const {
  if (column == TextColumn) return Summary(request.Text);
  if (column == NameColumn) {
    const QString name = ShownLine(request.Face.EventName);
    return name.isEmpty() ? QStringLiteral("Kestrin") : name;
  }
  if (request.Occurrence <= 0) return "";
  const bool use24 = LaterTermsNow(context_, 0).use24Hours;
  const std::string day = GetDateTimeString(request.Occurrence, false, context_.zone, use24);
  if (!request.OccursAtTime) return QString::fromStdString(day);
  const std::string words =
      MomentInWords(request.Occurrence, context_.clock.Now(), context_.zone, use24);
  const std::string today = "today, ";
  return QString::fromStdString(words.starts_with(today) ? words.substr(today.size()) : words);
}

QVariant ReminderModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Row& row = rows_[static_cast<size_t>(index.row())];
  if (row.id == 0) {
    if (role == Qt::DisplayRole && index.column() == NameColumn) return Heading(row.request.Away);
    if (role == Qt::FontRole) {
      QFont font;
      font.setBold(true);
      return font;
    }
    return {};
  }
  switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
      return CellText(row.request, index.column());
    case Qt::AccessibleTextRole:
      return CellText(row.request, index.column());
    case Qt::DecorationRole:
      return index.column() == NameColumn ? QVariant(IconOfFace(row.request.Face)) : QVariant();
    default:
      return {};
  }
}

QVariant ReminderModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return section == NameColumn ? "Event" : section == TextColumn ? "Message" : "Due";
}

Qt::ItemFlags ReminderModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  return IsHeading(index.row()) ? Qt::ItemIsEnabled : Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

}  // namespace kestrin
