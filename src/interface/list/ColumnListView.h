// A list with several columns that are sorted by, hidden, resized and reordered.
#pragma once

#include <QElapsedTimer>
#include <QTreeView>
#include <vector>

#include "interface/list/EventOrder.h"
#include "interface/list/SortHeader.h"

namespace kestrin {

/// A column as it is created. Of the flags, Sortable and Hidden mean something here.
struct CLVColumn {
  static constexpr uint32 Sortable = 0x1, Hidden = 0x20;

  int width;
  uint32 flags;
};

/// Shows a flat model. It scrolls sideways only when the person asks for it.
class ColumnListView : public QTreeView {
  Q_OBJECT

 public:
  explicit ColumnListView(QWidget* parent = nullptr);

  /// The model has a column for each of `columns`; it outlives the view or is its child. `order`
  /// lists the columns from left to right.
  void Build(QAbstractItemModel& model, const std::vector<CLVColumn>& columns,
             const std::vector<int>& order, std::vector<SortKey> keys);

  std::vector<int> DisplayOrder() const;
  void ShowColumn(int column, bool shown);
  const std::vector<SortKey>& SortKeys() const { return header_->Keys(); }

 signals:
  void Invoked(const QModelIndex& index);
  void DeleteRequested();
  /// By Space, which belongs to a name that is being typed to search for it.
  void ToggleRequested();

 public:
  void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
  /// Lets the person type over the name of the current row.
  void Rename();
  /// Takes over the name that is being typed over.
  void CommitRename();

 protected:
  // What the person does to the columns.
  virtual void DisplayOrderChanged() = 0;
  virtual void ColumnWidthChanged(int column, int width) = 0;
  virtual void SortingChanged() = 0;

  void dataChanged(const QModelIndex& first, const QModelIndex& last,
                   const QList<int>& roles) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void keyboardSearch(const QString& search) override;

 private:
  void BuildList();
  void WatchHeader();
  void ScrollToColumn(int column);
  bool IsSearching() const;

  SortHeader* header_;
  std::vector<CLVColumn> columns_;
  QElapsedTimer searched_;  ///< since a name was typed into last
};

}  // namespace kestrin
