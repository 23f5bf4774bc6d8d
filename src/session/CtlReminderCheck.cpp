#include "session/CtlReminderCheck.h"

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QTimer>
#include <memory>
#include <utility>

namespace kestrin {

namespace {

std::vector<ReminderLink> LinksOf(const QByteArray& json) {
  std::vector<ReminderLink> links;
  const QJsonArray list = QJsonDocument::fromJson(json).array();
  for (const QJsonValueConstRef each : list) {
    const auto text = [&each](const char* key) {
      return each.toObject()[key].toString().toStdString();
    };
    links.push_back({text("link"), text("found"), text("mend")});
  }
  return links;
}

}  // namespace

void CtlReminderCheck::Look(Done done) {
  auto* const process = new QProcess(this);
  process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
  const auto end = [this, process, done = std::make_shared<Done>(std::move(done))] {
    const Done once = std::exchange(*done, nullptr);
    if (!once) return;
    process->disconnect();
    process->deleteLater();
    const std::vector<ReminderLink> links = LinksOf(process->readAllStandardOutput());
    once(links, links.empty() ? program_ + " does not say what it sees." : "");
  };
  connect(process, &QProcess::finished, this, end);
  // Not from within Look, where a program that is not there is noticed already.
  connect(process, &QProcess::errorOccurred, this, end, Qt::QueuedConnection);
  QTimer::singleShot(patience_, process, [process] { process->kill(); });
  process->start(QFile::decodeName(program_.c_str()), {"status", "--json"}, QIODevice::ReadOnly);
}

}  // namespace kestrin
