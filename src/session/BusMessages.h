// Between calls on the application's bus object and messages of its queue.
#pragma once

#include <QtDBus/QDBusMessage>
#include <optional>

#include "support/Message.h"

namespace kestrin {

/// What a call to the application asks for.
struct ReadCall {
  std::optional<Message> message;  ///< nothing: answered without effect
  QString errorName;               ///< not empty: refused
  QString errorText;
};

/// Reads a call to the interfaces below. Nothing when it is for another interface. An activation
/// token is handed on as string "token".
std::optional<ReadCall> ReadApplicationCall(const QDBusMessage& call);

/// The call that asks the application, reached by the bus name `destination`, for what `message`
/// (DELIVER_EVENTS, QUIT_REQUESTED, FULL_QUIT_REQUESTED, OPEN_FILES, ACTIVATE or NEW_EVENT_SET)
/// says.
QDBusMessage MakeApplicationCall(const Message& message, const QString& destination);

/// A call of Post on the background deliverer, with the message's bool, int32 and string fields.
QDBusMessage MakeBackgroundCall(const Message& message);

/// A call of the bus itself.
QDBusMessage MakeBusCall(const char* member);

/// The interfaces of the application's object, as introspection shows them.
extern const char ApplicationInterfaces[];

}  // namespace kestrin
