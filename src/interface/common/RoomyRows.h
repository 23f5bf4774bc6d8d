// Rows of a list that are easy to hit.
#pragma once

#include <QStyledItemDelegate>

namespace kestrin {

class RoomyRows final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    return QStyledItemDelegate::sizeHint(option, index) + QSize(0, 6);
  }
};

}  // namespace kestrin
