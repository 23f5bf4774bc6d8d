#include "interface/icons/ColourMapped.h"

#include <QPainter>

namespace kestrin {

QImage ImageOfBitmap(const std::string& bytes, int side) {
  if (bytes.size() != static_cast<size_t>(side) * static_cast<size_t>(side)) return {};
  QImage image(side, side, QImage::Format_ARGB32);
  size_t at = 0;
  for (int y = 0; y < side; ++y)
    for (int x = 0; x < side; ++x) {
      const Colour pixel = ColourOfIndex(static_cast<uint8>(bytes[at++]));
      image.setPixel(x, y, qRgba(pixel.red, pixel.green, pixel.blue, pixel.alpha));
    }
  return image;
}

std::string BitmapOfImage(const QImage& image) {
  std::string bytes;
  bytes.reserve(static_cast<size_t>(image.width()) * static_cast<size_t>(image.height()));
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) {
      const QRgb pixel = image.pixel(x, y);
      bytes += static_cast<char>(
          IndexOfColour({static_cast<uint8>(qRed(pixel)), static_cast<uint8>(qGreen(pixel)),
                         static_cast<uint8>(qBlue(pixel)), static_cast<uint8>(qAlpha(pixel))}));
    }
  return bytes;
}

IconPair IconOfImage(const QImage& image) {
  const auto bitmap = [&image](int side) {
    QImage square(side, side, QImage::Format_ARGB32_Premultiplied);
    square.fill(Qt::transparent);
    const QImage fitted = image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QPainter(&square).drawImage((side - fitted.width()) / 2, (side - fitted.height()) / 2, fitted);
    return BitmapOfImage(square);
  };
  return {bitmap(LargeIconSize), bitmap(MiniIconSize)};
}

}  // namespace kestrin
