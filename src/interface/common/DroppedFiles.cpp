#include "interface/common/DroppedFiles.h"

#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

namespace kestrin {

std::vector<std::string> LocalFiles(const QMimeData& data) {
  std::vector<std::string> files;
  for (const QUrl& url : data.urls())
    if (url.isLocalFile())
      files.push_back(
          QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()).toStdString());
  return files;
}

void AcceptAsCopy(QDropEvent& event) {
  event.setDropAction(Qt::CopyAction);
  event.accept();
}

}  // namespace kestrin
