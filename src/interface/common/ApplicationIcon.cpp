#include "interface/common/ApplicationIcon.h"

#include <QPainter>
#include <QPainterPath>

namespace kestrin {

namespace {

const QColor Ink(0x3b, 0x4a, 0x5a), Paper(0xf4, 0xf1, 0xea), Head(0xb5, 0x48, 0x2f),
    Brass(0xe0, 0xa6, 0x3a);
constexpr int Grid = 64;

void DrawCalendar(QPainter& painter) {
  painter.setBrush(Paper);
  painter.drawRoundedRect(QRectF(4, 8, 56, 52), 7, 7);
  QPainterPath head(QPointF(4, 22));
  head.lineTo(4, 15);
  head.arcTo(QRectF(4, 8, 14, 14), 180, -90);
  head.lineTo(53, 8);
  head.arcTo(QRectF(46, 8, 14, 14), 90, -90);
  head.lineTo(60, 22);
  head.closeSubpath();
  painter.setBrush(Head);
  painter.drawPath(head);
}

void DrawRings(QPainter& painter) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(Ink);
  for (const int left : {16, 43}) painter.drawRoundedRect(QRectF(left, 4, 5, 10), 2.5, 2.5);
}

void DrawBell(QPainter& painter) {
  QPainterPath bell(QPointF(32, 27));
  bell.cubicTo(25.5, 27, 23, 32, 23, 37);
  bell.cubicTo(23, 43, 21, 45, 19.5, 47);
  bell.lineTo(44.5, 47);
  bell.cubicTo(43, 45, 41, 43, 41, 37);
  bell.cubicTo(41, 32, 38.5, 27, 32, 27);
  painter.setBrush(Brass);
  painter.drawPath(bell);
  QPainterPath clapper(QPointF(28, 49));
  clapper.arcTo(QRectF(28, 45, 8, 8), 180, 180);
  clapper.closeSubpath();
  painter.fillPath(clapper, Ink);
}

}  // namespace

QPixmap ApplicationPicture(int size, qreal ratio) {
  QPixmap picture(QSize(size, size) * ratio);
  picture.setDevicePixelRatio(ratio);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(qreal(size) / Grid, qreal(size) / Grid);
  const QPen outline(Ink, 2, Qt::SolidLine, Qt::SquareCap, Qt::RoundJoin);
  painter.setPen(outline);
  DrawCalendar(painter);
  DrawRings(painter);
  painter.setPen(outline);
  DrawBell(painter);
  return picture;
}

QIcon ApplicationIcon() {
  QIcon icon;
  for (const int size : {16, 24, 32, 48, 64, 128}) icon.addPixmap(ApplicationPicture(size, 1));
  return icon;
}

}  // namespace kestrin
