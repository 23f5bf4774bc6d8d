#include "session/BusMessages.h"

#include <QtDBus/QDBusArgument>

#include "core/loop/AppMessages.h"
#include "session/BusNames.h"
#include "session/FileUri.h"

namespace kestrin {

const char ApplicationInterfaces[] = R"(
  <interface name="vnd.ZR.Kestrin.Messages">
    <method name="Post">
      <arg name="what" type="u" direction="in"/>
      <arg name="fields" type="a{sv}" direction="in"/>
    </method>
  </interface>
  <interface name="org.freedesktop.Application">
    <method name="Activate">
      <arg name="platform_data" type="a{sv}" direction="in"/>
    </method>
    <method name="Open">
      <arg name="uris" type="as" direction="in"/>
      <arg name="platform_data" type="a{sv}" direction="in"/>
    </method>
    <method name="ActivateAction">
      <arg name="action_name" type="s" direction="in"/>
      <arg name="parameter" type="av" direction="in"/>
      <arg name="platform_data" type="a{sv}" direction="in"/>
    </method>
  </interface>
)";

namespace {

constexpr const char* TokenKeys[] = {"activation-token", "desktop-startup-id"};

ReadCall Taken(Message message) { return {std::move(message), {}, {}}; }

ReadCall Refused(const char* errorName, const QString& text) {
  return {std::nullopt, errorName, text};
}

QVariantMap FieldsAt(const QDBusMessage& call, qsizetype index) {
  return qdbus_cast<QVariantMap>(call.arguments().at(index));
}

ReadCall ReadDelivery(const QVariantMap& fields) {
  Message message(DELIVER_EVENTS);
  const auto late = fields.find("Late");
  if (late == fields.end()) return Taken(std::move(message));
  if (late->typeId() != QMetaType::Int)
    return Refused(BadFieldError, "The field \"Late\" must be of type int32");
  message.Set("Late", int32{late->toInt()});
  return Taken(std::move(message));
}

ReadCall ReadPost(const QDBusMessage& call) {
  const uint32 what = call.arguments().at(0).toUInt();
  if (what == DELIVER_EVENTS) return ReadDelivery(FieldsAt(call, 1));
  if (what != QUIT_REQUESTED)
    return Refused(
        UnknownMessageError,
        QString("Kestrin takes no message 0x%1 from the bus").arg(what, 8, 16, QChar('0')));
  const QVariantMap fields = FieldsAt(call, 1);
  const auto full = fields.find("Full");
  if (full == fields.end()) return Taken(Message(QUIT_REQUESTED));
  if (full->typeId() != QMetaType::Bool)
    return Refused(BadFieldError, "The field \"Full\" must be of type bool");
  return Taken(Message(full->toBool() ? FULL_QUIT_REQUESTED : QUIT_REQUESTED));
}

void HandTokenOn(const QVariantMap& platformData, Message& message) {
  for (const char* key : TokenKeys) {
    const std::string token = platformData.value(key).toString().toStdString();
    if (token.empty()) continue;
    message.Set("token", token);
    return;
  }
}

ReadCall ReadOpen(const QDBusMessage& call) {
  const QStringList uris = call.arguments().at(0).toStringList();
  const QVariantMap platformData = FieldsAt(call, 1);
  if (uris.isEmpty()) return {};
  std::vector<std::string> paths;
  for (const QString& uri : uris) {
    const std::optional<std::string> path = PathOfFileUri(uri.toStdString());
    if (!path) return Refused(InvalidArgumentsError, "Not the URI of a file: " + uri);
    paths.push_back(*path);
  }
  Message message = OpenFiles(paths, !platformData.value(BackgroundKey).toBool());
  HandTokenOn(platformData, message);
  return Taken(std::move(message));
}

ReadCall ReadActivate(const QDBusMessage& call) {
  Message message(ACTIVATE);
  HandTokenOn(FieldsAt(call, 0), message);
  return Taken(std::move(message));
}

// An action that is not known is answered all the same: callers are not to be troubled by it.
ReadCall ReadActivateAction(const QDBusMessage& call) {
  if (call.arguments().at(0).toString() != NewEventSetAction) return {};
  Message message(NEW_EVENT_SET);
  HandTokenOn(FieldsAt(call, 2), message);
  return Taken(std::move(message));
}

struct Method {
  const char* interface;
  const char* member;
  const char* signature;
  ReadCall (*read)(const QDBusMessage& call);
};

constexpr Method Methods[] = {
    {MessagesInterface, "Post", "ua{sv}", ReadPost},
    {ApplicationInterface, "Activate", "a{sv}", ReadActivate},
    {ApplicationInterface, "Open", "asa{sv}", ReadOpen},
    {ApplicationInterface, "ActivateAction", "sava{sv}", ReadActivateAction},
};

QDBusMessage MakePost(const QString& destination, const char* object, uint32 what,
                      const QVariantMap& fields) {
  return QDBusMessage::createMethodCall(destination, object, MessagesInterface, "Post")
         << QVariant::fromValue(what) << fields;
}

QVariant VariantOf(const Message::Value& value) {
  if (const bool* truth = std::get_if<bool>(&value)) return *truth;
  if (const int32* number = std::get_if<int32>(&value)) return *number;
  if (const std::string* text = std::get_if<std::string>(&value))
    return QString::fromStdString(*text);
  return {};
}

QVariantMap FieldsOf(const Message& message) {
  QVariantMap fields;
  for (const auto& [name, value] : message.Fields())
    if (const QVariant variant = VariantOf(value); variant.isValid())
      fields[QString::fromStdString(name)] = variant;
  return fields;
}

}  // namespace

std::optional<ReadCall> ReadApplicationCall(const QDBusMessage& call) {
  for (const Method& method : Methods) {
    if (call.member() != method.member) continue;
    if (!call.interface().isEmpty() && call.interface() != method.interface) continue;
    if (call.signature() == method.signature) return method.read(call);
    return Refused(InvalidArgumentsError,
                   QString("%1 takes \"%2\"").arg(method.member, method.signature));
  }
  if (call.interface() != MessagesInterface && call.interface() != ApplicationInterface)
    return std::nullopt;
  return Refused(UnknownMethodError, "No method " + call.member() + " in " + call.interface());
}

QDBusMessage MakeApplicationCall(const Message& message, const QString& destination) {
  if (message.what == DELIVER_EVENTS || message.what == QUIT_REQUESTED)
    return MakePost(destination, ApplicationObject, message.what, FieldsOf(message));
  if (message.what == FULL_QUIT_REQUESTED)
    return MakePost(destination, ApplicationObject, QUIT_REQUESTED, {{"Full", true}});

  QVariantMap platformData;
  if (const auto token = message.Get<std::string>("token"))
    for (const char* key : TokenKeys) platformData[key] = QString::fromStdString(*token);
  const auto makeCall = [&](const char* member) {
    return QDBusMessage::createMethodCall(destination, ApplicationObject, ApplicationInterface,
                                          member);
  };
  if (message.what == ACTIVATE) return makeCall("Activate") << platformData;
  if (message.what == NEW_EVENT_SET)
    return makeCall("ActivateAction") << NewEventSetAction << QVariantList() << platformData;

  if (!message.Get<bool>("window").value_or(true)) platformData[BackgroundKey] = true;
  QStringList uris;
  while (const auto path = message.Get<std::string>(std::to_string(uris.size())))
    uris << QString::fromStdString(FileUriOf(*path));
  return makeCall("Open") << uris << platformData;
}

QDBusMessage MakeBackgroundCall(const Message& message) {
  return MakePost(BackgroundBusName, BackgroundObject, message.what, FieldsOf(message));
}

QDBusMessage MakeBusCall(const char* member) {
  return QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                        "org.freedesktop.DBus", member);
}

}  // namespace kestrin
