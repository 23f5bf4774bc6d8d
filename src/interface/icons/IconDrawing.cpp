#include "interface/icons/IconDrawing.h"

#include <QPainter>
#include <QPainterPath>
#include <QTransform>
#include <charconv>
#include <string_view>

namespace kestrin {

namespace {

constexpr int LargeGrid = 32, MiniGrid = 16, FirstLargeSize = 24;

/// Reads the commands of one layer.
class PathReader {
 public:
  PathReader(std::string_view commands, int grid) : rest_(commands), grid_(grid) {}

  QPainterPath Read() {
    for (char command = Command(); command; command = Command()) Draw(command);
    return path_;
  }

 private:
  void SkipBlanks() {
    while (!rest_.empty() && rest_.front() == ' ') rest_.remove_prefix(1);
  }

  char Command() {
    SkipBlanks();
    if (rest_.empty()) return '\0';
    const char command = rest_.front();
    rest_.remove_prefix(1);
    return command;
  }

  double Number() {
    SkipBlanks();
    double number = 0;
    const auto read = std::from_chars(rest_.data(), rest_.data() + rest_.size(), number);
    rest_.remove_prefix(static_cast<size_t>(read.ptr - rest_.data()));
    return number;
  }

  QPointF Place() {
    const double x = Number();
    return {x, Number()};
  }

  void Draw(char command) {
    switch (command) {
      case 'M':
        return path_.moveTo(Place());
      case 'L':
        return path_.lineTo(Place());
      case 'H':
        return path_.lineTo(Number(), path_.currentPosition().y());
      case 'V':
        return path_.lineTo(path_.currentPosition().x(), Number());
      case 'Z':
        return path_.closeSubpath();
      case 'T':
        return Turn(Number());
      default:
        return DrawCurve(command);
    }
  }

  void DrawCurve(char command) {
    const QPointF first = Place(), second = Place();
    switch (command) {
      case 'Q':
        return path_.quadTo(first, second);
      case 'C':
        return path_.cubicTo(first, second, Place());
      case 'E':
        return path_.addEllipse(first, second.x(), second.y());
      default: {
        const double radius = Number();
        return path_.addRoundedRect(QRectF(first, QSizeF(second.x(), second.y())), radius, radius);
      }
    }
  }

  void Turn(double degrees) {
    const double middle = grid_ / 2.0;
    path_ = QTransform()
                .translate(middle, middle)
                .rotate(degrees)
                .translate(-middle, -middle)
                .map(path_);
  }

  std::string_view rest_;
  int grid_;
  QPainterPath path_;
};

void PaintLayer(QPainter& painter, const IconLayer& layer, int grid) {
  painter.setBrush(layer.fill ? QBrush(QColor::fromRgba(layer.fill)) : QBrush());
  painter.setPen(layer.line ? QPen(QColor::fromRgba(layer.line), layer.width, Qt::SolidLine,
                                   Qt::FlatCap, Qt::RoundJoin)
                            : QPen(Qt::NoPen));
  painter.drawPath(PathReader(layer.path, grid).Read());
}

}  // namespace

QImage PaintStandardIcon(int32 index, int size, double ratio) {
  const bool isLarge = size >= FirstLargeSize;
  const int grid = isLarge ? LargeGrid : MiniGrid;
  const auto& drawings = isLarge ? LargeIconDrawings : MiniIconDrawings;
  const int pixels = qRound(size * ratio);
  QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(1.0 * pixels / grid, 1.0 * pixels / grid);
  for (const IconLayer& layer : drawings[static_cast<size_t>(index)])
    PaintLayer(painter, layer, grid);
  return image;
}

}  // namespace kestrin
