#include "core/delivery/ReminderFaces.h"

#include <algorithm>
#include <utility>

#include "core/events/Context.h"
#include "core/events/EventHandles.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/Notices.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/LaterMoments.h"

namespace kestrin {

namespace {

constexpr char AnswerOk[] = "ok", AnswerLater[] = "later", OpenEvent[] = "open",
               Clicked[] = "default";

std::string TitleOf(const AlertRequest& request) {
  const std::string& name = request.Face.EventName;
  if (name.empty()) return request.Title.empty() ? "Kestrin" : request.Title;
  return request.Title.empty() ? name : name + " – " + request.Title;
}

EventHandles About(const AlertRequest& request) { return {request.Set, request.Event}; }

/// An hour from now, unless what is reminded of begins before.
std::optional<PutOffMoment> InAnHour(const Context& context, const AlertRequest& request) {
  if (!context.alerts.CanPutOff()) return std::nullopt;
  LaterTerms terms;
  terms.begins = request.Begins;
  for (const LaterOffer& offer : LaterOffers(context.clock.Now(), context.zone, terms, InOneHour))
    if (offer.choice == InOneHour) return offer.when;
  return std::nullopt;
}

Notification NotificationOf(const Context& context, const AlertRequest& request) {
  Notification shown{TitleOf(request), request.Text, request.Notify.value_or(UrgencyNormal), {}};
  shown.Actions = {{Clicked, "Show"}, {AnswerOk, "OK"}};
  if (InAnHour(context, request)) shown.Actions.emplace_back(AnswerLater, "Later (in an hour)");
  if (HasEvent(context, About(request))) shown.Actions.emplace_back(OpenEvent, "Open event");
  return shown;
}

}  // namespace

int32 ReminderFaces::FacesOf(const AlertRequest& request) const {
  if (!request.IsReminder() || request.Role == AlertRole::Question) return AsWindows;
  const int32 chosen = FacesChosen(context_->settings.ShowRemindersAs, KeepsAbove());
  return request.Notify && chosen == AsWindows ? AsNotifications : chosen;
}

void ReminderFaces::OpenAlert(AlertId id, const AlertRequest& request, int32 place) {
  const int32 faces = FacesOf(request);
  if (faces == AsWindows) return windows_.OpenAlert(id, request, place);
  const bool hasWindow = faces == AsBoth;
  Face& face = faces_[id] = {request, place, hasWindow, 0};
  face.request.Done = nullptr;
  Notify(id);
  windows_.OpenAlert(id, request, hasWindow ? place : NoPlace);
}

void ReminderFaces::UpdateAlert(AlertId id, const AlertRequest& request) {
  if (const auto found = faces_.find(id); found != faces_.end()) {
    found->second.request = request;
    found->second.request.Done = nullptr;
    Withdraw(found->second);
    Notify(id);
  }
  windows_.UpdateAlert(id, request);
}

bool ReminderFaces::MoveToWindow(AlertId id, const AlertRequest& request) {
  const auto found = faces_.find(id);
  const bool isHidden = found != faces_.end() && !found->second.hasWindow;
  if (!isHidden && !windows_.MoveToWindow(id, request)) return false;
  if (found != faces_.end()) found->second.place = RowPlace;
  return true;
}

void ReminderFaces::CloseAlert(AlertId id) {
  if (const auto found = faces_.find(id); found != faces_.end()) {
    Withdraw(found->second);
    faces_.erase(found);
  }
  windows_.CloseAlert(id);
}

void ReminderFaces::Notify(AlertId id) {
  Face& face = faces_.at(id);
  face.notification =
      service_.Show(NotificationOf(*context_, face.request),
                    [this, id](const NotificationReply& reply) { Replied(id, reply); });
}

void ReminderFaces::Withdraw(Face& face) {
  if (face.notification != 0) service_.Close(std::exchange(face.notification, 0));
}

/// Whatever the person pressed in it, the service takes the notification away.
void ReminderFaces::Replied(AlertId id, const NotificationReply& reply) {
  const auto found = faces_.find(id);
  if (found == faces_.end()) return;
  const AlertRequest request = found->second.request;
  const bool pressed = reply.What == NotificationReply::Kind::Action;
  if (reply.What == NotificationReply::Kind::Dismissed || (pressed && reply.Key == AnswerOk))
    return context_->alerts.Answered(id, request.HarmlessButton);
  if (pressed && reply.Key == AnswerLater) return PutOff(id);
  ShowWindow(id);
  if (pressed && reply.Key == OpenEvent) return OpenWindowsOf(*context_, About(request));
  if (pressed) windows_.RaiseAlert(id);
}

void ReminderFaces::PutOff(AlertId id) {
  const auto when = InAnHour(*context_, faces_.at(id).request);
  if (!when) return ShowWindow(id);  // what else it can be put off to, stands there
  const std::string why = context_->alerts.PutOff(id, *when);
  if (why.empty()) return;
  ShowWindow(id);
  context_->notices.ReportError(why);
}

void ReminderFaces::ShowWindow(AlertId id) {
  Face& face = faces_.at(id);
  if (std::exchange(face.hasWindow, true)) return;
  const AlertRequest request = face.request;
  windows_.OpenAlert(id, request, face.place);
}

}  // namespace kestrin
