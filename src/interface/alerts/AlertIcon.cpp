#include "interface/alerts/AlertIcon.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QWidget>

#include "core/timing/EventTypes.h"
#include "interface/icons/StandardIcons.h"

namespace kestrin {

namespace {

const QColor InformationColour(0x2f, 0x74, 0xc8), WarningColour(0xf2, 0xb2, 0x1c);
constexpr QRgb WarningMark = 0xff3a2a00;

/// An "i" or "!" of a bar and a dot, in the middle of a picture that is 1 wide.
void DrawMark(QPainter& painter, const QColor& colour, qreal bar, qreal barEnd, qreal dot) {
  painter.setPen(QPen(colour, 0.12, Qt::SolidLine, Qt::RoundCap));
  painter.drawLine(QPointF(0.5, bar), QPointF(0.5, barEnd));
  painter.drawPoint(QPointF(0.5, dot));
}

void DrawInformation(QPainter& painter) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(InformationColour);
  painter.drawEllipse(QRectF(0.02, 0.02, 0.96, 0.96));
  DrawMark(painter, Qt::white, 0.47, 0.74, 0.27);
}

void DrawWarning(QPainter& painter) {
  QPainterPath triangle(QPointF(0.5, 0.1));
  triangle.lineTo(0.93, 0.88);
  triangle.lineTo(0.07, 0.88);
  triangle.closeSubpath();
  // The wide pen of the same colour rounds the corners.
  painter.setPen(QPen(WarningColour, 0.12, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(WarningColour);
  painter.drawPath(triangle);
  DrawMark(painter, QColor::fromRgba(WarningMark), 0.38, 0.58, 0.77);
}

void DrawQuestion(QPainter& painter) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(InformationColour);
  painter.drawEllipse(QRectF(0.02, 0.02, 0.96, 0.96));
  QPainterPath hook(QPointF(0.36, 0.38));
  hook.arcTo(QRectF(0.36, 0.22, 0.28, 0.28), 170, -215);
  hook.quadTo(0.5, 0.52, 0.5, 0.61);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(Qt::white, 0.1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(hook);
  painter.drawPoint(QPointF(0.5, 0.77));
}

QStyle::StandardPixmap StandardOf(AlertKind kind) {
  switch (kind) {
    case AlertKind::Warning:
      return QStyle::SP_MessageBoxWarning;
    case AlertKind::Question:
      return QStyle::SP_MessageBoxQuestion;
    default:
      return QStyle::SP_MessageBoxInformation;
  }
}

}  // namespace

QPixmap AlertIcon(AlertKind kind, int size, const QWidget& alert) {
  const qreal ratio = alert.devicePixelRatioF();
  if (QIcon::themeName() != QIcon::fallbackThemeName()) {
    const QIcon standard = alert.style()->standardIcon(StandardOf(kind), nullptr, &alert);
    return standard.pixmap(QSize(size, size), ratio);
  }
  QPixmap picture(QSize(size, size) * ratio);
  picture.setDevicePixelRatio(ratio);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(size, size);
  if (kind == AlertKind::Warning)
    DrawWarning(painter);
  else if (kind == AlertKind::Question)
    DrawQuestion(painter);
  else
    DrawInformation(painter);
  return picture;
}

QIcon IconOfFace(const AlertFace& face) {
  return face.IconNumber == OwnIconNumber ? OwnIcon(face.OwnIcon) : StandardIcon(face.IconNumber);
}

QPixmap AlertPicture(const AlertRequest& request, const QWidget& alert) {
  const int size = alert.style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
  const QIcon icon = IconOfFace(request.Face);
  if (icon.isNull()) return AlertIcon(request.Kind, size, alert);
  const qreal ratio = alert.devicePixelRatioF();
  QPixmap picture(QSize(size, size) * ratio);
  picture.setDevicePixelRatio(ratio);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  // The badge covers the corner, so that the icon keeps most of the room.
  const int badge = size * 2 / 5, large = size - badge / 4;
  painter.drawPixmap(QRect(0, 0, large, large), icon.pixmap(QSize(large, large), ratio));
  painter.drawPixmap(QRect(size - badge, size - badge, badge, badge),
                     AlertIcon(request.Kind, badge, alert));
  return picture;
}

}  // namespace kestrin
