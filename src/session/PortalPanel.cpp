#include "session/PortalPanel.h"

#include <QtCore/QFile>
#include <QtCore/QUrl>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusPendingCallWatcher>
#include <utility>

namespace kestrin {

namespace {

constexpr char PortalName[] = "org.freedesktop.portal.Desktop";
constexpr char PortalPath[] = "/org/freedesktop/portal/desktop";
constexpr char ChooserInterface[] = "org.freedesktop.portal.FileChooser";
constexpr char RequestInterface[] = "org.freedesktop.portal.Request";
constexpr char BoxId[] = "box";
enum Outcome : uint { PersonChose = 0, PersonCancelled = 1 };

}  // namespace

// The signatures that the portal's page gives: a filter is (sa(us)), a choice (ssa(ss)s).

struct PortalPattern {
  uint Kind = 0;  ///< 0: a glob
  QString Text;
};
struct PortalFilter {
  QString Label;
  QList<PortalPattern> Patterns;
};
struct PortalOption {
  QString Id, Label;
};
/// Without options it is a box to tick, "true" or "false".
struct PortalChoice {
  QString Id, Label;
  QList<PortalOption> Options;
  QString Value;
};
struct PortalPicked {
  QString Id, Value;
};

QDBusArgument& operator<<(QDBusArgument& to, const PortalPattern& value) {
  to.beginStructure();
  to << value.Kind << value.Text;
  to.endStructure();
  return to;
}
QDBusArgument& operator<<(QDBusArgument& to, const PortalFilter& value) {
  to.beginStructure();
  to << value.Label << value.Patterns;
  to.endStructure();
  return to;
}
QDBusArgument& operator<<(QDBusArgument& to, const PortalOption& value) {
  to.beginStructure();
  to << value.Id << value.Label;
  to.endStructure();
  return to;
}
QDBusArgument& operator<<(QDBusArgument& to, const PortalChoice& value) {
  to.beginStructure();
  to << value.Id << value.Label << value.Options << value.Value;
  to.endStructure();
  return to;
}
QDBusArgument& operator<<(QDBusArgument& to, const PortalPicked& value) {
  to.beginStructure();
  to << value.Id << value.Value;
  to.endStructure();
  return to;
}
const QDBusArgument& operator>>(const QDBusArgument& from, PortalPicked& value) {
  from.beginStructure();
  from >> value.Id >> value.Value;
  from.endStructure();
  return from;
}
// Registering a type asks for both directions; these are only ever sent.
const QDBusArgument& operator>>(const QDBusArgument& from, PortalPattern&) { return from; }
const QDBusArgument& operator>>(const QDBusArgument& from, PortalFilter&) { return from; }
const QDBusArgument& operator>>(const QDBusArgument& from, PortalOption&) { return from; }
const QDBusArgument& operator>>(const QDBusArgument& from, PortalChoice&) { return from; }

}  // namespace kestrin

Q_DECLARE_METATYPE(kestrin::PortalPattern)
Q_DECLARE_METATYPE(kestrin::PortalFilter)
Q_DECLARE_METATYPE(kestrin::PortalOption)
Q_DECLARE_METATYPE(kestrin::PortalChoice)
Q_DECLARE_METATYPE(kestrin::PortalPicked)

namespace kestrin {

namespace {

void RegisterTypes() {
  qDBusRegisterMetaType<PortalPattern>();
  qDBusRegisterMetaType<QList<PortalPattern>>();
  qDBusRegisterMetaType<PortalFilter>();
  qDBusRegisterMetaType<QList<PortalFilter>>();
  qDBusRegisterMetaType<PortalOption>();
  qDBusRegisterMetaType<QList<PortalOption>>();
  qDBusRegisterMetaType<PortalChoice>();
  qDBusRegisterMetaType<QList<PortalChoice>>();
  qDBusRegisterMetaType<PortalPicked>();
  qDBusRegisterMetaType<QList<PortalPicked>>();
}

QVariantMap OptionsOf(const FilePanelRequest& request, const QString& token) {
  QVariantMap options{{"handle_token", token}, {"modal", true}};
  if (request.What == FilePanelRequest::Kind::OpenSeveral) options["multiple"] = true;
  if (!request.Folder.empty())  // a path's bytes, with the NUL that ends them
    options["current_folder"] =
        QByteArray(request.Folder.c_str(), qsizetype(request.Folder.size()) + 1);
  if (request.What == FilePanelRequest::Kind::Save)
    options["current_name"] = QString::fromStdString(request.Name);
  QList<PortalFilter> filters;
  for (const auto& [label, globs] : request.Filters) {
    filters.append({QString::fromStdString(label), {}});
    for (const QString& glob : QString::fromStdString(globs).split(' '))
      filters.last().Patterns.append({0, glob});
  }
  if (!filters.isEmpty()) options["filters"] = QVariant::fromValue(filters);
  if (!request.BoxLabel.empty())
    options["choices"] =
        QVariant::fromValue(QList<PortalChoice>{{BoxId,
                                                 QString::fromStdString(request.BoxLabel),
                                                 {},
                                                 request.BoxTicked ? "true" : "false"}});
  return options;
}

/// Files on this machine; what the portal names otherwise is left out.
std::vector<std::string> FilesOf(const QStringList& uris) {
  std::vector<std::string> files;
  for (const QString& uri : uris) {
    const QByteArray path =
        uri.startsWith("file:///") ? QByteArray::fromPercentEncoding(uri.mid(7).toLatin1()) : "";
    if (!path.isEmpty() && !path.contains('\0')) files.push_back(path.toStdString());
  }
  return files;
}

}  // namespace

PortalPanel::PortalPanel(QDBusConnection bus, const FilePanelRequest& request, uint64 number,
                         std::chrono::milliseconds patience, Answered answered)
    : bus_(std::move(bus)),
      answered_(std::move(answered)),
      watcher_(PortalName, bus_, QDBusServiceWatcher::WatchForUnregistration) {
  RegisterTypes();
  const QString token = "kestrin" + QString::number(number);
  const QString sender = bus_.baseService().mid(1).replace(u'.', u'_');
  Listen(QString(PortalPath) + "/request/" + sender + '/' + token);
  connect(&watcher_, &QDBusServiceWatcher::serviceUnregistered, this,
          [this] { Finish(FilePanelAnswer::Kind::Cancelled); });
  patience_.setSingleShot(true);
  connect(&patience_, &QTimer::timeout, this, [this] {
    Close();
    Finish(FilePanelAnswer::Kind::Unavailable);
  });
  const bool saves = request.What == FilePanelRequest::Kind::Save;
  QDBusMessage call = QDBusMessage::createMethodCall(PortalName, PortalPath, ChooserInterface,
                                                     saves ? "SaveFile" : "OpenFile");
  call << QString::fromStdString(request.ParentWindow) << QString::fromStdString(request.Title)
       << OptionsOf(request, token);
  auto* const pending = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
  connect(pending, &QDBusPendingCallWatcher::finished, this, [this, pending] {
    Shown(pending->reply());
    pending->deleteLater();
  });
  patience_.start(patience);
}

void PortalPanel::Withdraw() {
  if (!std::exchange(finished_, true)) Close();
}

void PortalPanel::Listen(const QString& path) {
  path_ = path;
  bus_.connect(PortalName, path, RequestInterface, "Response", this, SLOT(Response(QDBusMessage)));
}

/// Early portals choose another object than the one that was asked for.
void PortalPanel::Shown(const QDBusMessage& reply) {
  patience_.stop();
  if (reply.type() != QDBusMessage::ReplyMessage) {
    Finish(FilePanelAnswer::Kind::Unavailable);
    return;
  }
  const QString path = reply.arguments().value(0).value<QDBusObjectPath>().path();
  if (!path.isEmpty() && path != path_) Listen(path);
}

void PortalPanel::Response(const QDBusMessage& signal) {
  const uint outcome = signal.arguments().value(0).toUInt();
  const QVariantMap results = qdbus_cast<QVariantMap>(signal.arguments().value(1));
  if (outcome != PersonChose) {
    Finish(FilePanelAnswer::Kind::Cancelled);
    return;
  }
  FilePanelAnswer answer;
  answer.Files = FilesOf(results.value("uris").toStringList());
  answer.What =
      answer.Files.empty() ? FilePanelAnswer::Kind::Cancelled : FilePanelAnswer::Kind::Chosen;
  for (const PortalPicked& picked : qdbus_cast<QList<PortalPicked>>(results.value("choices")))
    if (picked.Id == BoxId) answer.BoxTicked = picked.Value == "true";
  Finish(answer);
}

void PortalPanel::Finish(FilePanelAnswer::Kind kind) {
  FilePanelAnswer answer;
  answer.What = kind;
  Finish(answer);
}

void PortalPanel::Finish(const FilePanelAnswer& answer) {
  if (std::exchange(finished_, true)) return;
  patience_.stop();
  answered_(answer);
}

void PortalPanel::Close() {
  QDBusMessage close = QDBusMessage::createMethodCall(PortalName, path_, RequestInterface, "Close");
  close.setAutoStartService(false);
  bus_.send(close);
}

}  // namespace kestrin
