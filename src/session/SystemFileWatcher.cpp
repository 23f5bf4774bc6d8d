#include "session/SystemFileWatcher.h"

#include <QtCore/QFile>
#include <chrono>

#include "core/loop/MessageCodes.h"

namespace kestrin {

namespace {

/// Who does not replace a file but writes into it is not done with the first byte.
constexpr std::chrono::milliseconds UntilWhole{200};

}  // namespace

SystemFileWatcher::SystemFileWatcher(MessageQueue& queue) : queue_(queue) {
  quiet_.setSingleShot(true);
  quiet_.setInterval(UntilWhole);
  QObject::connect(&quiet_, &QTimer::timeout, [this] { queue_.Post(FILES_CHANGED); });
  QObject::connect(&watcher_, &QFileSystemWatcher::fileChanged,
                   [this](const QString& file) { Changed(file); });
}

void SystemFileWatcher::Watch(const std::set<std::string>& files) {
  for (const QString& file : watcher_.files())
    if (!files.contains(QFile::encodeName(file).toStdString())) watcher_.removePath(file);
  const QStringList watched = watcher_.files();
  for (const std::string& file : files)
    if (const QString name = QFile::decodeName(file.c_str()); !watched.contains(name))
      watcher_.addPath(name);
}

/// A file that was replaced is another one, under the name that counts.
void SystemFileWatcher::Changed(const QString& file) {
  watcher_.removePath(file);
  watcher_.addPath(file);
  quiet_.start();
}

}  // namespace kestrin
