// All icons there are to choose from: the standard ones, then the user's.
#pragma once

#include <QListWidget>
#include <vector>

#include "core/timing/EventTypes.h"
#include "support/Bitmap.h"

namespace kestrin {

/// An icon number, and the bitmaps that OwnIconNumber needs.
struct IconChoice {
  int32 index = NoIconNumber;
  IconPair own;
  bool operator==(const IconChoice&) const = default;
};

/// The type under which an icon is dragged, and what a drag brings; nothing for anything else.
inline constexpr const char* DraggedIconType = "application/x-vnd.ZR-KestrinIcon";
std::optional<IconChoice> DraggedIcon(const QMimeData& data);

class KestrinSettings;

class IconGrid final : public QListWidget {
  Q_OBJECT

 public:
  explicit IconGrid(KestrinSettings& settings, QWidget* parent = nullptr);

  /// Reads the settings. The one that is there now becomes the current one.
  void ShowIcons(const IconChoice& now);
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 signals:
  void Chosen(const IconChoice& choice);
  /// One of the user's own is wanted no more.
  void RemovalWanted(const IconPair& icon);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  QStringList mimeTypes() const override { return {DraggedIconType}; }
  QMimeData* mimeData(const QList<QListWidgetItem*>& items) const override;

 private:
  void Add(const IconChoice& choice, const QIcon& icon, const QString& name);
  void Choose(int row);
  bool IsUsers(int row) const;

  KestrinSettings& settings_;
  std::vector<IconChoice> choices_;  ///< by row
};

}  // namespace kestrin
