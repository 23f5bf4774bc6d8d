// What handlers tell the user about an event: the text and the alert around it.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

#include "core/events/Context.h"
#include "core/ports/Alert.h"

namespace kestrin {

class Event;

/// Which event a delivery was for; outlives the event.
struct DeliveredEvent {
  DeliveredEvent(const Event& event, bool missed);
  /// One that is known from the journal alone.
  DeliveredEvent(Context& contextOfRecord, std::string record)
      : context(&contextOfRecord), Record(std::move(record)) {}

  Context* context;
  uint64 Set = 0, Event = 0;
  int32 Occurrence = 0;
  bool AtTime = false;  ///< Occurrence is more than a bare day
  bool Missed = false;
  AlertFace Face;
  std::string Record;  ///< the journal's, of the delivery under way
};

/// "Kestrin event:  ", the event's name, the missed line when `missed`, and the parts; null parts
/// are passed over.
std::string MessageAlertText(const Event& event, bool missed,
                             std::initializer_list<const char*> parts);

/// An alert about the event, with what it is about filled in.
AlertRequest AlertAbout(const DeliveredEvent& delivered, AlertRole role, std::string text);

/// Shows the text with the button "Ok", with an urgency as a notification. The caller has taken a
/// hold, which the alert's end releases. Any thread.
void ShowDeliveryAlert(const DeliveredEvent& delivered, std::string text,
                       std::optional<NotificationUrgency> notify = std::nullopt);

/// Takes that hold, and says in the parts what happened to the event.
void TellOfDelivery(const Event& event, bool missed, std::initializer_list<const char*> parts);

}  // namespace kestrin
