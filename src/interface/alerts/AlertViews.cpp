#include "interface/alerts/AlertViews.h"

#include <QEventLoop>
#include <algorithm>
#include <chrono>
#include <utility>

#include "core/events/Context.h"
#include "core/events/EventHandles.h"
#include "core/loop/AlertDesk.h"
#include "core/settings/KestrinSettings.h"
#include "interface/alerts/AlertCascade.h"
#include "interface/alerts/AlertWindow.h"
#include "interface/alerts/RemindersWindow.h"
#include "interface/common/Wayland.h"

namespace kestrin {

namespace {

constexpr std::chrono::seconds BetweenSounds{12};
constexpr qint64 HeapTime = 1000;  // milliseconds; a heap's first alert opens before the others

}  // namespace

AlertViews::AlertViews(AlertSound sound) : sound_(std::move(sound)) {
  repeat_.setInterval(BetweenSounds);
  connect(&repeat_, &QTimer::timeout, this, [this] {
    if (GoesOnSounding())
      sound_.Play();
    else
      repeat_.stop();
  });
}
AlertViews::~AlertViews() { delete reminders_; }

/// What opens together, or within a second, is heard once.
void AlertViews::Sound() {
  if (std::exchange(soundIsComing_, true)) return;
  QTimer::singleShot(0, this, [this] {
    soundIsComing_ = false;
    if (!sounded_.isValid() || sounded_.hasExpired(HeapTime)) {
      sounded_.start();
      sound_.Play();
    }
    if (GoesOnSounding()) repeat_.start();
  });
}

bool AlertViews::GoesOnSounding() const {
  if (!context_) return false;
  return std::any_of(heard_.begin(), heard_.end(), [this](const auto& entry) {
    if (entry.second == AlertRole::Notice || entry.second == AlertRole::Prompt) return false;
    return entry.second == AlertRole::Nag ? context_->settings.NagSoundUntilAnswered
                                          : context_->settings.SoundUntilAnswered;
  });
}

void AlertViews::Silence(AlertId id) {
  const bool wentOn = GoesOnSounding();
  heard_.erase(id);
  if (!wentOn || GoesOnSounding()) return;
  repeat_.stop();
  if (sound_.Stop) sound_.Stop();
}

int32 AlertViews::MostReminderBoxes() const {
  const int32 wanted = context_->settings.ReminderBoxes;
  if (wanted <= 0) return INT32_MAX;
  if (wanted == 1) return 0;
  // There every window opens in the middle of the screen, over the one before.
  return IsOnWayland() ? 1 : wanted;
}

void AlertViews::Open(AlertId id, const AlertRequest& request, int32 place) {
  const bool isNew = heard_.emplace(id, request.Role).second;
  if (place == RowPlace)
    AddRow(id, request);
  else if (place != NoPlace)
    OpenBox(id, request, place);
  if (isNew) Sound();
}

bool AlertViews::MoveToWindow(AlertId id, const AlertRequest& request) {
  const auto found = boxes_.find(id);
  if (found == boxes_.end() || found->second->IsBusy()) return false;
  Close(id);
  heard_[id] = request.Role;
  AddRow(id, request);
  return true;
}

void AlertViews::AddRow(AlertId id, const AlertRequest& request) {
  if (!reminders_) OpenReminders();
  reminders_->Add(id, request);
  if (!std::exchange(announcementIsComing_, true))
    QTimer::singleShot(0, this, [this] {
      announcementIsComing_ = false;
      if (reminders_) reminders_->Announce();
    });
}

void AlertViews::OpenReminders() {
  reminders_ = new RemindersWindow(
      *context_, [this](const AlertRequest& request) { return MayOpenEvent(request); });
  connect(reminders_, &RemindersWindow::Answered, this, &AlertViews::Answer);
  connect(reminders_, &RemindersWindow::PutOff, this, &AlertViews::PutOff);
  connect(reminders_, &RemindersWindow::OpenEventWanted, this, [this](uint64 set, uint64 event) {
    OpenWindowsOf(*context_, {set, event});
  });
  connect(reminders_, &RemindersWindow::Emptied, this, [this] {
    RemindersWindow* const window = std::exchange(reminders_, nullptr);
    if (!window) return;
    window->hide();
    window->deleteLater();
  });
}

void AlertViews::OpenBox(AlertId id, const AlertRequest& request, int32 place) {
  auto& box = boxes_[id] =
      std::make_unique<AlertWindow>(context_, request, place, MayOpenEvent(request));
  connect(box.get(), &AlertWindow::Pressed, this, [this, id](int which) { Answer(id, which); });
  connect(box.get(), &AlertWindow::PutOff, this,
          [this, id](const PutOffMoment& when) { PutOff(id, when); });
  connect(box.get(), &AlertWindow::OpenEventWanted, this,
          [this, about = EventHandles{request.Set, request.Event}] {
            OpenWindowsOf(*context_, about);
          });
  box->Announce();
}

void AlertViews::Update(AlertId id, const AlertRequest& request) {
  heard_[id] = request.Role;
  if (reminders_ && reminders_->Update(id, request)) return Sound();
  if (const auto found = boxes_.find(id); found != boxes_.end()) {
    found->second->Update(request, MayOpenEvent(request));
    found->second->Announce();
  }
  Sound();
}

void AlertViews::Raise(AlertId id) {
  const auto found = boxes_.find(id);
  if (found != boxes_.end())
    found->second->Raise();
  else if (reminders_)
    reminders_->Raise(id);
}

void AlertViews::Close(AlertId id) {
  Silence(id);
  if (reminders_ && reminders_->Remove(id)) return;
  const auto found = boxes_.find(id);
  if (found == boxes_.end()) return;
  // One of the window's own buttons may be what calls this.
  AlertWindow* window = found->second.release();
  boxes_.erase(found);
  window->hide();
  window->deleteLater();
}

void AlertViews::KeepOnScreen() {
  for (auto& [id, box] : boxes_) box->KeepOnScreen();
}

void AlertViews::Answer(AlertId id, int which) {
  Close(id);
  context_->alerts.Answered(id, which);
}

void AlertViews::PutOff(AlertId id, const PutOffMoment& when) {
  const std::string why = context_->alerts.PutOff(id, when);
  if (why.empty()) {
    Close(id);
    return;
  }
  const auto found = boxes_.find(id);
  if (found != boxes_.end())
    found->second->Complain(why);
  else if (reminders_)
    reminders_->Complain(id, why);
}

bool AlertViews::MayOpenEvent(const AlertRequest& request) const {
  return context_ && request.IsReminder() && HasEvent(*context_, {request.Set, request.Event});
}

void AlertViews::WaitForFatalError(const AlertRequest& request) {
  AlertWindow window(nullptr, request, AlertCascade::Places - 1, false);
  window.setAttribute(Qt::WA_ShowWithoutActivating, false);
  QEventLoop loop;
  connect(&window, &AlertWindow::Pressed, &loop, &QEventLoop::quit);
  window.Announce();
  loop.exec();
}

}  // namespace kestrin
