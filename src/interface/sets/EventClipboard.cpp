#include "interface/sets/EventClipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <optional>
#include <string>

#include "core/events/EventSet.h"
#include "core/files/EventMessage.h"
#include "core/loop/Notices.h"
#include "interface/common/ShownText.h"

namespace kestrin {

bool CopyEvent(Event& event) {
  Message message;
  if (!GenerateMessageForEvent(event, &message)) {
    QGuiApplication::clipboard()->clear();
    return false;
  }
  auto* content = new QMimeData;
  content->setText(ShownText(event.GetName()));
  content->setData(EventClipboardType, QByteArray::fromStdString(message.Flatten()));
  QGuiApplication::clipboard()->setMimeData(content);
  return true;
}

std::unique_ptr<Event> EventFromClipboard(EventSet& set) {
  const QMimeData* content = QGuiApplication::clipboard()->mimeData();
  if (!content) return nullptr;
  const QByteArray bytes = content->data(EventClipboardType);
  const auto message = Message::Unflatten({bytes.data(), static_cast<size_t>(bytes.size())});
  if (!message) return nullptr;
  EventFromMessageResult result = EventFromMessage(set, *message);
  Notices& notices = set.GetContext().notices;
  if (!result.Complaint.empty()) notices.ReportError(result.Complaint);
  if (!result.TextsCut.empty()) notices.InformUser(result.TextsCut);
  return std::move(result.NewEvent);
}

bool ClipboardHasEvent() {
  const QMimeData* content = QGuiApplication::clipboard()->mimeData();
  return content && content->hasFormat(EventClipboardType);
}

}  // namespace kestrin
