#include "session/ApplicationBus.h"

#include <QtDBus/QDBusMetaType>
#include <algorithm>
#include <optional>

#include "core/loop/AppMessages.h"
#include "core/ports/BackgroundArgument.h"
#include "session/BusMessages.h"
#include "session/BusNames.h"
#include "session/FileUri.h"
#include "session/ProcessInfo.h"
#include "session/ToldDisplay.h"
#include "support/WholeFile.h"

namespace kestrin {

namespace {

constexpr char ConnectionName[] = "kestrin";

constexpr uint32 DoNotQueue = 4;                      // a flag of RequestName
constexpr uint32 PrimaryOwner = 1, AlreadyOwner = 4;  // answers of RequestName

constexpr int ArrivalTries = 3;

// The library's own connection to the session bus holds calls back until an event loop runs.
QDBusConnection ConnectToSessionBus() {
  const QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
  if (!address.isEmpty()) return QDBusConnection::connectToBus(address, ConnectionName);
  return QDBusConnection::connectToBus(QDBusConnection::SessionBus, ConnectionName);
}

bool IsError(const QDBusMessage& reply) { return reply.type() != QDBusMessage::ReplyMessage; }

std::string OneLine(const QString& text) { return text.simplified().toStdString(); }

// What the arguments ask the running application for. Nothing when they ask for nothing; the
// argument that names no file in `nameless`.
std::optional<Message> MessageOf(const Start& start, std::optional<std::string>& nameless) {
  std::vector<std::string> files;
  bool background = false;
  for (const std::string& argument : start.arguments) {
    if (argument == BackgroundArgument) {
      background = true;
    } else if (const std::optional<std::string> path = AbsolutePath(argument)) {
      files.push_back(*path);
    } else {
      nameless = argument;
      return std::nullopt;
    }
  }
  // What made the bus start this process reaches the name's owner without us.
  if (files.empty() && (background || start.byBus)) return std::nullopt;
  Message message = files.empty() ? Message(ACTIVATE) : OpenFiles(files, !background);
  if (!start.activationToken.empty()) message.Set("token", start.activationToken);
  return message;
}

}  // namespace

ApplicationBus::ApplicationBus(MessageQueue& queue, std::chrono::milliseconds patience)
    : queue_(queue), patience_(patience), receiver_(queue), connection_(QString()) {}

ApplicationBus::~ApplicationBus() {
  if (!connection_.name().isEmpty()) QDBusConnection::disconnectFromBus(ConnectionName);
}

Arrival ApplicationBus::Arrive(const Start& start) {
  connection_ = ConnectToSessionBus();
  if (!connection_.isConnected()) {
    reason_ = OneLine(connection_.lastError().message());
    return Arrival::NoBus;
  }
  if (!start.environment.empty()) TellEnvironment(start.environment);
  connection_.connect(QString(), "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local",
                      "Disconnected", &receiver_, SLOT(BusEnded()));
  connection_.registerVirtualObject(ApplicationObject, &receiver_);
  Arrival arrival = Arrival::NoAnswer;
  for (int tries = 0; tries < ArrivalTries; ++tries) {
    if (TakeName()) {
      reason_.clear();
      return Arrival::First;
    }
    bool ownerIsGone = false;
    arrival = HandOver(start, ownerIsGone);
    if (!ownerIsGone) break;
  }
  connection_.unregisterObject(ApplicationObject);
  return arrival;
}

// No answer is waited for: the bus deals with it before it deals with anything we send later. The
// system's manager of services, where there is one, starts some of them with variables of its own.
void ApplicationBus::TellEnvironment(const std::map<std::string, std::string>& told) {
  QMap<QString, QString> environment;
  QStringList lines;
  for (const auto& [name, value] : told) {
    environment[QString::fromStdString(name)] = QString::fromStdString(value);
    lines << QString::fromStdString(name + "=" + value);
  }
  qDBusRegisterMetaType<QMap<QString, QString>>();
  connection_.send(MakeBusCall("UpdateActivationEnvironment") << QVariant::fromValue(environment));
  QDBusMessage manager =
      QDBusMessage::createMethodCall("org.freedesktop.systemd1", "/org/freedesktop/systemd1",
                                     "org.freedesktop.systemd1.Manager", "SetEnvironment");
  manager.setAutoStartService(false);
  connection_.send(manager << lines);
  RememberTold(told);
}

// For whoever asks whether a reminder would come. A bus that was started anew knows nothing of it.
void ApplicationBus::RememberTold(const std::map<std::string, std::string>& told) {
  const std::string folder = RuntimeFolder();
  const QDBusMessage id = Call(MakeBusCall("GetId"));
  if (folder.empty() || IsError(id)) return;
  std::string text = id.arguments().value(0).toString().toStdString() + "\n";
  for (const char* name : DisplayVariables)
    if (const auto found = told.find(name); found != told.end())
      text.append(name).append("=").append(found->second).append("\n");
  SystemFileDoor files;
  const std::string file = folder + ToldDisplayFile;
  if (files.MakeFolders(file.substr(0, file.rfind('/')), 0700) == StatusOk)
    WriteWholeFile(files, file, text);
}

bool ApplicationBus::TakeName() {
  const QDBusMessage reply = Call(MakeBusCall("RequestName") << ApplicationBusName << DoNotQueue);
  const uint32 answer = IsError(reply) ? 0 : reply.arguments().value(0).toUInt();
  hasName_ = answer == PrimaryOwner || answer == AlreadyOwner;
  return hasName_;
}

bool ApplicationBus::NameHasOwner() {
  const QDBusMessage reply = Call(MakeBusCall("NameHasOwner") << ApplicationBusName);
  return !IsError(reply) && reply.arguments().value(0).toBool();
}

Arrival ApplicationBus::HandOver(const Start& start, bool& ownerIsGone) {
  std::optional<std::string> nameless;
  const std::optional<Message> message = MessageOf(start, nameless);
  if (nameless) {
    reason_ = "the working folder is gone, so nobody can tell where " + *nameless + " is";
    return Arrival::NoAnswer;
  }
  if (!message) return Arrival::HandedOver;
  QDBusMessage call = MakeApplicationCall(*message, ApplicationBusName);
  call.setAutoStartService(false);
  const QDBusMessage reply = Call(call, patience_);
  if (!IsError(reply)) return Arrival::HandedOver;
  // It may have ended under the call and left the name to us.
  ownerIsGone = !NameHasOwner();
  reason_ = "the running application does not answer: " + OneLine(reply.errorMessage());
  return Arrival::NoAnswer;
}

void ApplicationBus::Dispatch() {
  if (!hasName_) return;
  // The answer comes after everything that the bus has sent us before.
  Call(MakeBusCall("GetId"));
  receiver_.HandleWaiting();
}

bool ApplicationBus::Leave() {
  if (!hasName_) return true;
  hasName_ = false;
  leaveBy_ = std::chrono::steady_clock::now() + LeavingPatience;
  // The same is true of this answer: nothing else is sent to the name from here on.
  LastCall(MakeBusCall("ReleaseName") << ApplicationBusName);
  const std::vector<BusReceiver::Held> held = receiver_.HoldBackWaiting();
  if (held.empty()) return true;
  if (!TakeName()) {
    Forward(held);
    return true;
  }
  for (const auto& [message, call] : held) {
    queue_.Post(message);
    if (call.isReplyRequired()) connection_.send(call.createReply());
  }
  return false;
}

void ApplicationBus::Forward(const std::vector<BusReceiver::Held>& held) {
  // By the owner's unique name, if it is still there; else the bus starts another.
  const QDBusMessage owner = LastCall(MakeBusCall("GetNameOwner") << ApplicationBusName);
  const QString destination =
      IsError(owner) ? ApplicationBusName : owner.arguments().value(0).toString();
  for (const auto& [message, call] : held) {
    const QDBusMessage reply = LastCall(MakeApplicationCall(message, destination));
    if (!call.isReplyRequired()) continue;
    connection_.send(IsError(reply) ? call.createErrorReply(QDBusError(reply))
                                    : call.createReply());
  }
}

// Blocks without an event loop: no message of ours is handled meanwhile.
QDBusMessage ApplicationBus::Call(const QDBusMessage& call, std::chrono::milliseconds patience) {
  return connection_.call(call, QDBus::Block, static_cast<int>(patience.count()));
}

// While leaving: all of them together within a bound.
QDBusMessage ApplicationBus::LastCall(const QDBusMessage& call) {
  const auto left =
      std::chrono::ceil<std::chrono::milliseconds>(leaveBy_ - std::chrono::steady_clock::now());
  return Call(call, std::max(left, std::chrono::milliseconds(1)));
}

}  // namespace kestrin
