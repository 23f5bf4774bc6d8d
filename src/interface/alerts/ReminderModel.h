// The rows of the Reminders window.
#pragma once

#include <QAbstractTableModel>
#include <set>
#include <vector>

#include "core/ports/Alert.h"

namespace kestrin {

struct Context;

/// Reminders in the order in which they came, under a heading wherever "Now" and "While you were
/// away" change: so whatever comes stands at the end and moves nothing.
class ReminderModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { NameColumn, TextColumn, DueColumn, ColumnCount };
  struct Row {
    AlertId id = 0;  ///< 0: a heading
    AlertRequest request;
  };

  explicit ReminderModel(const Context& context, QObject* parent = nullptr);

  void Add(AlertId id, const AlertRequest& request);
  /// In their order again.
  void PutBack(std::vector<Row> rows);
  bool Update(AlertId id, const AlertRequest& request);
  bool Remove(AlertId id);
  void RemoveAll(const std::set<AlertId>& ids);

  int RowOf(AlertId id) const;  ///< -1 when there is none
  /// Null for a heading and outside the rows.
  const Row* ReminderAt(int row) const;
  /// The reminder at the row, else the next one, else the one before it; -1 when there is none.
  int ReminderNear(int row) const;
  int CountReminders() const { return reminders_; }
  const std::vector<Row>& Rows() const { return rows_; }
  bool IsHeading(int row) const { return !ReminderAt(row); }

  /// What was answered together, or put off, and what stands here still, in words.
  QString WhatIsLeft(const std::vector<Row>& answered, bool putOff) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  QString CellText(const AlertRequest& request, int column) const;
  static void AppendWithHeading(std::vector<Row>& rows, Row row);
  void Rebuild(std::vector<Row> reminders);

  const Context& context_;
  std::vector<Row> rows_;
  int reminders_ = 0;
};

}  // namespace kestrin
