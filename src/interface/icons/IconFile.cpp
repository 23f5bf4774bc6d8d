#include "interface/icons/IconFile.h"

#include <QFileInfo>
#include <QImageReader>

#include "interface/icons/ColourMapped.h"

namespace kestrin {

namespace {

constexpr int LargestSide = 16384;
constexpr int LargestPictureInMegabytes = 64;
constexpr qint64 LargestFile = 64 << 20;

bool IsInvisible(const IconPair& icon) {
  return icon.large.find_first_not_of(static_cast<char>(TransparentPixel)) == std::string::npos;
}

QString FaultOf(QImageReader& reader) {
  switch (reader.error()) {
    case QImageReader::UnsupportedFormatError:
      return "it holds no image of a kind that is known";
    case QImageReader::DeviceError:
      return "it cannot be opened";
    default:
      return "it is damaged, or too large";
  }
}

}  // namespace

std::optional<IconPair> ReadIconFile(const QString& path, QString& fault) {
  const QFileInfo file(path);
  if (!file.exists() || !file.isFile()) {  // a pipe would never end
    fault = file.exists() ? "it is not a file" : "it does not exist";
    return {};
  }
  QImageReader::setAllocationLimit(LargestPictureInMegabytes);
  QImageReader reader(path);
  reader.setDecideFormatFromContent(true);
  reader.setAutoTransform(true);
  const QSize size = reader.size();
  if (file.size() > LargestFile || std::max(size.width(), size.height()) > LargestSide) {
    fault = "it is too large";
    return {};
  }
  const QImage image = reader.read();
  if (image.isNull()) {
    fault = FaultOf(reader);
    return {};
  }
  const IconPair icon = IconOfImage(image);
  if (!IsInvisible(icon)) return icon;
  fault = "nothing of it can be seen at the size of an icon";
  return {};
}

}  // namespace kestrin
