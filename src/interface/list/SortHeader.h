// The header of a multi-column list: click to sort, drag to reorder or resize.
#pragma once

#include <QHeaderView>
#include <vector>

#include "interface/list/EventOrder.h"

namespace kestrin {

/// A click makes a column the only sort key; a click on the only key turns it round. With Shift, it
/// adds a key after the others, or turns it round where it stands. Each key's column shows an
/// arrow, and its rank when there are several. With the focus, the arrow keys choose a column,
/// Space clicks it, and the arrow keys move it with Control and resize it with Shift.
class SortHeader final : public QHeaderView {
  Q_OBJECT

 public:
  explicit SortHeader(QWidget* parent = nullptr);

  /// A click on any other column does nothing.
  void SetSortable(int column) { sortable_.push_back(column); }

  const std::vector<SortKey>& Keys() const { return keys_; }
  void SetKeys(std::vector<SortKey> keys);

 signals:
  /// By the person, not by SetKeys.
  void SortingChanged();
  /// By the arrow keys: this column should be in sight.
  void ColumnReached(int column);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void paintSection(QPainter* painter, const QRect& rect, int column) const override;
  QSize sectionSizeFromContents(int column) const override;

 private:
  void Clicked(int column);
  void Reach(int column);
  void StepTo(int direction, Qt::KeyboardModifiers modifiers);
  int NextShown(int column, int direction) const;
  int RankOf(int column) const;
  int MarkWidth(int column) const;
  void PaintMark(QPainter* painter, const QRect& rect, int column) const;
  void PaintFocus(QPainter* painter, const QRect& rect) const;

  std::vector<int> sortable_;
  std::vector<SortKey> keys_;
  bool withShift_ = false;
  int reached_ = -1;  ///< the column that keys work on
};

}  // namespace kestrin
