// The rows of the History window.
#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "core/journal/LookBack.h"

namespace kestrin {

struct Context;

/// In the order in which they are given. A row's tool tip is its whole outcome.
class HistoryModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column {
    DueColumn,
    NameColumn,
    KindColumn,
    OutcomeColumn,
    SetColumn,
    DeliveredColumn,
    ColumnCount
  };

  explicit HistoryModel(const Context& context, QObject* parent = nullptr);

  void Show(std::vector<PastDelivery> past);
  const PastDelivery& At(int row) const { return past_[static_cast<size_t>(row)]; }
  /// The row of that record, or -1.
  int RowOf(const std::string& id) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  const Context& context_;
  std::vector<PastDelivery> past_;
};

}  // namespace kestrin
