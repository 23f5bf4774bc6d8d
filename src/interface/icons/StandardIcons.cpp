#include "interface/icons/StandardIcons.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QStyle>
#include <QStyleOption>

#include "core/events/Event.h"
#include "core/timing/EventTypes.h"
#include "interface/icons/ColourMapped.h"
#include "interface/icons/IconDrawing.h"

namespace kestrin {

namespace {

constexpr std::array<const char*, NumberOfStandardIcons> Names = {
    "Bell",  "Birthday cake", "Money", "Disk",  "Telephone", "Clock",
    "Heart", "Envelope",      "Star",  "House", "Aeroplane"};

bool IsStandard(int32 index) { return index >= 0 && index < NumberOfStandardIcons; }

/// Keeps its pictures in the toolkit's cache, where all icons that look alike share them.
class CachedEngine : public QIconEngine {
 public:
  QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State, qreal scale) override {
    const int pixels = std::min(size.width(), size.height());
    if (pixels <= 0) return {};
    const QString key = QString("kestrin/%1/%2/%3/").arg(pixels).arg(scale).arg(mode) + Key(pixels);
    QPixmap picture;
    if (QPixmapCache::find(key, &picture)) return picture;
    picture = QPixmap::fromImage(Paint(pixels, scale));
    if (mode == QIcon::Disabled) {
      QStyleOption option;
      option.palette = QApplication::palette();
      picture = QApplication::style()->generatedIconPixmap(mode, picture, &option);
    }
    QPixmapCache::insert(key, picture);
    return picture;
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    return scaledPixmap(size, mode, state, 1);
  }

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
    const qreal ratio = painter->device()->devicePixelRatioF();
    QPixmap picture = scaledPixmap(rect.size() * ratio, mode, state, ratio);
    picture.setDevicePixelRatio(ratio);
    QRectF place(QPointF(), picture.deviceIndependentSize());
    place.moveCenter(QRectF(rect).center());
    painter->drawPixmap(place.topLeft(), picture);
  }

 private:
  virtual QString Key(int pixels) const = 0;
  virtual QImage Paint(int pixels, qreal scale) const = 0;
};

class StandardEngine final : public CachedEngine {
 public:
  explicit StandardEngine(int32 index) : index_(index) {}
  QIconEngine* clone() const override { return new StandardEngine(index_); }

 private:
  QString Key(int) const override { return QString::number(index_); }
  QImage Paint(int pixels, qreal scale) const override {
    return PaintStandardIcon(index_, qRound(pixels / scale), scale)
        .scaled(pixels, pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  }

  int32 index_;
};

/// Takes the bitmap that comes nearest to the pixels that are there.
class BitmapEngine final : public CachedEngine {
 public:
  explicit BitmapEngine(const IconPair& icon) : icon_(icon) {}
  QIconEngine* clone() const override { return new BitmapEngine(icon_); }

 private:
  const std::string& Bytes(int pixels) const {
    return pixels <= MiniIconSize ? icon_.mini : icon_.large;
  }
  QString Key(int pixels) const override { return QString::fromLatin1(Bytes(pixels)); }
  QImage Paint(int pixels, qreal) const override {
    const QImage image =
        ImageOfBitmap(Bytes(pixels), pixels <= MiniIconSize ? MiniIconSize : LargeIconSize);
    return image.scaled(pixels, pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  }

  IconPair icon_;
};

std::array<std::string, NumberOfStandardIcons> StandardBitmaps(int size) {
  std::array<std::string, NumberOfStandardIcons> all;
  for (int32 i = 0; i < NumberOfStandardIcons; ++i)
    all[static_cast<size_t>(i)] = BitmapOfImage(PaintStandardIcon(i, size, 1));
  return all;
}

}  // namespace

QIcon StandardIcon(int32 index) {
  return IsStandard(index) ? QIcon(new StandardEngine(index)) : QIcon();
}

QIcon OwnIcon(const IconPair& icon) {
  const bool isWhole =
      icon.large.size() == size_t{LargeIconBytes} && icon.mini.size() == size_t{MiniIconBytes};
  return isWhole ? QIcon(new BitmapEngine(icon)) : QIcon();
}

QIcon EventIcon(const Event& event) {
  const IconPair* own = event.GetOwnIcon();
  if (event.Record().IconNumber != OwnIconNumber) return StandardIcon(event.Record().IconNumber);
  return own ? OwnIcon(*own) : QIcon();
}

QString IconName(int32 index) {
  if (IsStandard(index)) return Names[static_cast<size_t>(index)];
  if (index == OwnIconNumber) return "Own image";
  return index == NoIconNumber ? "No icon" : "Unknown icon";
}

const std::string& StandardLargeIconData(int32 index) {
  static const auto all = StandardBitmaps(LargeIconSize);
  return all[static_cast<size_t>(index)];
}

const std::string& StandardMiniIconData(int32 index) {
  static const auto all = StandardBitmaps(MiniIconSize);
  return all[static_cast<size_t>(index)];
}

int32 WhichStandardIcon(const IconPair& icon) {
  for (int32 i = 0; i < NumberOfStandardIcons; ++i)
    if (icon.large == StandardLargeIconData(i) && icon.mini == StandardMiniIconData(i)) return i;
  return NoIconNumber;
}

}  // namespace kestrin
