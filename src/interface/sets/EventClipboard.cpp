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

namespace {

/// Null when the bytes are no whole event.
std::unique_ptr<Event> EventFromBytes(EventSet& set, std::string_view bytes) {
  const auto message = Message::Unflatten(bytes);
  if (!message) return nullptr;
  EventFromMessageResult result = EventFromMessage(set, *message);
  Notices& notices = set.GetContext().notices;
  if (!result.Complaint.empty()) notices.ReportError(result.Complaint);
  if (!result.TextsCut.empty()) notices.InformUser(result.TextsCut);
  return std::move(result.NewEvent);
}

std::string_view View(const QByteArray& bytes) {
  return {bytes.data(), static_cast<size_t>(bytes.size())};
}

/// The messages of several events, or of one.
std::vector<std::string> MessagesOf(const QMimeData& content) {
  const QByteArray all = content.data(EventsClipboardType);
  const auto list = Message::Unflatten(View(all));
  std::vector<std::string> messages;
  if (!list) return {std::string(View(content.data(EventClipboardType)))};
  while (const auto each = list->Get<std::string>(std::to_string(messages.size())))
    messages.push_back(*each);
  return messages;
}

}  // namespace

bool CopyEvents(Event& current, const std::vector<Event*>& events) {
  Message all;
  QString names;
  QByteArray one;
  for (size_t i = 0; i < events.size(); ++i) {
    Message message;
    if (!GenerateMessageForEvent(*events[i], &message)) {
      QGuiApplication::clipboard()->clear();
      return false;
    }
    const std::string bytes = message.Flatten();
    if (events[i] == &current) one = QByteArray::fromStdString(bytes);
    all.Set(std::to_string(i), bytes);
    if (i > 0) names += u'\n';
    names += ShownText(events[i]->GetName());
  }
  auto* content = new QMimeData;
  content->setText(names);
  content->setData(EventClipboardType, one);
  if (events.size() > 1)
    content->setData(EventsClipboardType, QByteArray::fromStdString(all.Flatten()));
  QGuiApplication::clipboard()->setMimeData(content);
  return true;
}

std::vector<std::unique_ptr<Event>> EventsFromClipboard(EventSet& set) {
  std::vector<std::unique_ptr<Event>> events;
  const QMimeData* content = QGuiApplication::clipboard()->mimeData();
  if (!content) return events;
  for (const std::string& message : MessagesOf(*content))
    if (auto event = EventFromBytes(set, message)) events.push_back(std::move(event));
  return events;
}

}  // namespace kestrin
