#include "core/loop/AlertDesk.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "support/Locker.h"

namespace kestrin {

namespace {

void Answer(AlertRequest& request, int which) {
  const auto done = std::exchange(request.Done, nullptr);
  if (done) done(which);
}

void AnswerHarmlessly(AlertRequest& request) { Answer(request, request.HarmlessButton); }

void TellWithoutScreen(const AlertRequest& request) {
  const std::string title = request.Title.empty() ? "Kestrin" : request.Title;
  std::fprintf(stderr, "%s: %s\n", title.c_str(), request.Text.c_str());
}

bool Recurs(const AlertRequest& request) {
  return request.Event != 0 &&
         (request.Role == AlertRole::Prewarning || request.Role == AlertRole::Nag);
}

bool RemindOfTheSame(const AlertRequest& a, const AlertRequest& b) {
  return Recurs(a) && Recurs(b) && a.Event == b.Event;
}

bool IsQuestionAbout(const AlertRequest& request, uint64 event) {
  return event != 0 && request.Role == AlertRole::Question && request.Event == event;
}

/// Whether `fresh` comes into the unread `base` as lines instead of joining it.
bool StandsIn(const AlertRequest& base, const AlertRequest& fresh) {
  if (!Recurs(fresh) || base.Event != fresh.Event) return false;
  return base.Role == AlertRole::Question ||
         (base.Role == AlertRole::Delivery && fresh.Role == AlertRole::Nag);
}

/// A message that nags has the nag's buttons, a question keeps its own.
AlertRequest Together(const AlertRequest& base, const AlertRequest& added) {
  AlertRequest shown = base;
  shown.Text += "\n\n" + added.Text;
  if (base.Role == AlertRole::Question) return shown;
  shown.Role = added.Role;
  shown.Buttons = added.Buttons;
  shown.HarmlessButton = added.HarmlessButton;
  shown.DefaultButton = added.DefaultButton;
  shown.ComesAgain = added.ComesAgain;
  return shown;
}

bool IsPromptAbout(const AlertRequest& request, uint64 set) {
  return request.Role == AlertRole::Prompt && request.Set == set;
}

}  // namespace

void AlertDesk::Show(AlertRequest request) {
  AssertNoSetLocked("AlertDesk::Show");
  if (std::this_thread::get_id() == mainThread_) Record(request);
  std::unique_lock lock(guard_);
  const bool ended = ended_;
  if (!ended && request.Role == AlertRole::Prompt) {
    waiting_.push_front(std::move(request));
    ++settled_;
  } else if (!ended) {
    waiting_.push_back(std::move(request));
  }
  lock.unlock();
  if (ended)
    AnswerHarmlessly(request);
  else
    queue_.Post(ALERTS_WAITING);
}

AlertRequest AlertDesk::Open::Shown() const { return added ? Together(request, *added) : request; }

int AlertDesk::Open::ButtonOfRequest(int which) const {
  return request.Role == AlertRole::Question || !added ? which : request.HarmlessButton;
}

int AlertDesk::Open::ButtonOfAdded(int which) const {
  return request.Role == AlertRole::Question ? added->HarmlessButton : which;
}

void AlertDesk::Open::AnswerAll(int which) {
  const int ofAdded = added ? ButtonOfAdded(which) : 0;
  Answer(request, ButtonOfRequest(which));
  if (added) Answer(*added, ofAdded);
}

void AlertDesk::OpenWaiting() {
  RecordShown();
  if (!ui_.HasScreen()) {
    for (size_t rest = CountWaiting(); rest > 0; --rest)
      if (auto request = TakeWaiting(0)) {
        TellWithoutScreen(*request);
        AnswerHarmlessly(*request);
      }
    return;
  }
  BringUpToDate();
  if (WaitsForTheHeap()) return queue_.Post(ALERTS_WAITING);
  if (recorder_) recorder_->Opening();
  while (auto request = TakeNext()) {
    if (TakeIntoOpen(*request)) continue;
    if (keeper_) keeper_->Opening(*request);
    const AlertId id = nextId_++;
    if (GoesToWindow(*request)) MoveBoxes();
    const int32 place = asWindow_ && request->IsReminder() ? RowPlace : FreePlace();
    const AlertRequest shown = *request;  // the answer may come before OpenAlert returns
    open_.emplace(id, Open{std::move(*request), {}, place});
    ui_.OpenAlert(id, shown, place);
  }
}

/// What else comes due in the same moment is shown together with this.
bool AlertDesk::WaitsForTheHeap() {
  const bool waits =
      !open_.empty() && queue_.Holds(EVENT_DEALT_WITH) && turnsWaited_ < MostTurnsWaited;
  turnsWaited_ = waits ? turnsWaited_ + 1 : 0;
  return waits;
}

bool AlertDesk::GoesToWindow(const AlertRequest& request) const {
  if (!request.IsReminder() || asWindow_) return false;
  const auto boxes = std::count_if(open_.begin(), open_.end(), [](const auto& entry) {
    return entry.second.request.IsReminder();
  });
  return boxes + 1 > ui_.MostReminderBoxes();
}

void AlertDesk::MoveBoxes() {
  asWindow_ = true;
  for (auto& [id, open] : open_)
    if (open.request.IsReminder() && ui_.MoveToWindow(id, open.Shown())) open.place = RowPlace;
}

int32 AlertDesk::CountBoxes() const {
  return static_cast<int32>(std::count_if(open_.begin(), open_.end(), [](const auto& entry) {
    return entry.second.place != RowPlace;
  }));
}

/// The first in order that need not wait: for a place among the boxes, or for the answer to another
/// question about its event.
std::optional<AlertRequest> AlertDesk::TakeNext() {
  std::optional<bool> boxIsFree;  // counted once, and not for a heap of rows
  std::unique_lock lock(guard_);
  for (size_t at = 0; at < settled_; ++at) {
    const AlertRequest& next = waiting_[at];
    bool fits =
        next.Role == AlertRole::Prompt || (next.IsReminder() && (asWindow_ || GoesToWindow(next)));
    if (!fits) {
      if (!boxIsFree) boxIsFree = CountBoxes() < MaxOpenAlerts;
      fits = *boxIsFree;
    }
    const bool asked = next.Role == AlertRole::Question &&
                       std::any_of(open_.begin(), open_.end(), [&next](const auto& entry) {
                         return IsQuestionAbout(entry.second.request, next.Event);
                       });
    if (!fits || asked) continue;
    lock.unlock();
    return TakeWaiting(at);
  }
  return std::nullopt;
}

void AlertDesk::Record(AlertRequest& request) {
  if (keeper_) keeper_->Asked(request);
  if (recorder_) recorder_->Shown(request);
  request.IsRecorded = true;
}

/// What other threads have asked for. The recorder may have something to say itself: not under the
/// guard.
void AlertDesk::RecordShown() {
  std::unique_lock lock(guard_);
  for (size_t at = settled_; at < waiting_.size(); ++at) {
    if (waiting_[at].IsRecorded) continue;
    AlertRequest request = waiting_[at];
    lock.unlock();
    Record(request);
    lock.lock();
    waiting_[at] = std::move(request);
  }
}

void AlertDesk::BringUpToDate() {
  // What a continuation adds meanwhile is left for the next turn.
  for (size_t rest = CountWaiting() - settled_; rest > 0; --rest) {
    if (ReplaceWaiting()) continue;
    std::optional<AlertRequest> fresh = TakeWaiting(settled_);
    if (!fresh) return;
    if (TakeIntoOpen(*fresh)) continue;
    std::lock_guard lock(guard_);
    waiting_.insert(waiting_.begin() + static_cast<std::ptrdiff_t>(settled_++), std::move(*fresh));
  }
}

bool AlertDesk::ReplaceWaiting() {
  AlertRequest outdated;
  {
    std::lock_guard lock(guard_);
    if (settled_ >= waiting_.size()) return false;
    const auto fresh = waiting_.begin() + static_cast<std::ptrdiff_t>(settled_);
    if (!Recurs(*fresh)) return false;  // ten thousand may wait
    const auto same = std::find_if(waiting_.begin(), fresh, [&fresh](const AlertRequest& earlier) {
      return RemindOfTheSame(earlier, *fresh);
    });
    if (same == fresh) return false;
    outdated = std::exchange(*same, std::move(*fresh));
    waiting_.erase(fresh);
  }
  Outdated(outdated);
  return true;
}

void AlertDesk::Outdated(AlertRequest& request) {
  if (recorder_) recorder_->Answered(request, request.HarmlessButton);
  if (keeper_) keeper_->Ended(request);
  AnswerHarmlessly(request);
}

/// Brings the open alert of the same event up to date, or adds to it; false when there is none.
bool AlertDesk::TakeIntoOpen(AlertRequest& fresh) {
  if (!Recurs(fresh)) return false;
  const auto same = std::find_if(open_.begin(), open_.end(), [&fresh](const auto& entry) {
    return RemindOfTheSame(entry.second.request, fresh) || StandsIn(entry.second.request, fresh);
  });
  if (same == open_.end()) return false;
  Open& open = same->second;
  std::optional<AlertRequest> outdated;
  if (StandsIn(open.request, fresh))
    outdated = std::exchange(open.added, std::move(fresh));
  else
    outdated = std::exchange(open.request, std::move(fresh));
  ui_.UpdateAlert(same->first, open.Shown());
  if (outdated) Outdated(*outdated);
  return true;
}

void AlertDesk::Answered(AlertId id, int which) {
  const auto found = open_.find(id);
  if (found == open_.end()) return;
  const Open& open = found->second;
  const AlertRequest shown = open.Shown();
  const bool isButton = which >= 0 && which < static_cast<int>(shown.Buttons.size());
  const int pressed = isButton ? which : shown.HarmlessButton;
  if (recorder_) {
    recorder_->Answered(open.request, open.ButtonOfRequest(pressed));
    if (open.added) recorder_->Answered(*open.added, open.ButtonOfAdded(pressed));
  }
  if (keeper_) {
    keeper_->Ended(open.request);
    if (open.added) keeper_->Ended(*open.added);
  }
  Finish(id, pressed);
}

/// Closed and answered; what is kept of it is another matter.
void AlertDesk::Finish(AlertId id, int which) {
  const auto found = open_.find(id);
  Open open = std::move(found->second);
  open_.erase(found);
  ui_.CloseAlert(id);
  asWindow_ = asWindow_ && std::any_of(open_.begin(), open_.end(), [](const auto& entry) {
                return entry.second.place == RowPlace;
              });
  if (CountWaiting() > 0) queue_.Post(ALERTS_WAITING);
  open.AnswerAll(which);
}

std::string AlertDesk::PutOff(AlertId id, const PutOffMoment& when) {
  const auto found = open_.find(id);
  if (found == open_.end()) return "";
  const AlertRequest shown = found->second.Shown();
  std::string why = keeper_->Keep(shown, when);
  if (!why.empty()) return why;
  if (found->second.added) keeper_->Ended(*found->second.added);
  if (recorder_) {
    recorder_->PutOff(found->second.request);
    if (found->second.added) recorder_->PutOff(*found->second.added);
  }
  Finish(id, shown.HarmlessButton);
  return "";
}

std::string AlertDesk::ShowAt(const AlertRequest& request, const PutOffMoment& when) {
  return keeper_ ? keeper_->Keep(request, when) : "Nobody here keeps reminders.";
}

bool AlertDesk::Asks(uint64 event) const {
  if (std::any_of(open_.begin(), open_.end(), [event](const auto& entry) {
        return IsQuestionAbout(entry.second.request, event);
      }))
    return true;
  std::lock_guard lock(guard_);
  return std::any_of(waiting_.begin(), waiting_.end(), [event](const AlertRequest& request) {
    return IsQuestionAbout(request, event);
  });
}

void AlertDesk::EventDeleted(uint64 set, uint64 event) {
  if (keeper_) keeper_->EventDeleted(set, event);
}

void AlertDesk::SetSaved(uint64 set) {
  if (keeper_) keeper_->SetSaved(set);
}

bool AlertDesk::RaisePrompt(uint64 set) {
  for (const auto& [id, alert] : open_)
    if (IsPromptAbout(alert.request, set)) {
      ui_.RaiseAlert(id);
      return true;
    }
  std::lock_guard lock(guard_);
  return std::any_of(waiting_.begin(), waiting_.end(),
                     [set](const AlertRequest& request) { return IsPromptAbout(request, set); });
}

void AlertDesk::DismissPrompts() {
  std::vector<AlertRequest> dismissed;
  for (auto each = open_.begin(); each != open_.end();) {
    if (each->second.request.Role != AlertRole::Prompt) {
      ++each;
      continue;
    }
    ui_.CloseAlert(each->first);
    dismissed.push_back(std::move(each->second.request));
    each = open_.erase(each);
  }
  {
    std::lock_guard lock(guard_);
    // They wait in front of everything else.
    while (!waiting_.empty() && waiting_.front().Role == AlertRole::Prompt) {
      dismissed.push_back(std::move(waiting_.front()));
      waiting_.pop_front();
      --settled_;
    }
  }
  if (CountWaiting() > 0) queue_.Post(ALERTS_WAITING);
  for (AlertRequest& request : dismissed) AnswerHarmlessly(request);
}

bool AlertDesk::Empty() const { return open_.empty() && CountWaiting() == 0; }

void AlertDesk::EndByForce() {
  RecordShown();
  BringUpToDate();
  std::map<AlertId, Open> open = std::exchange(open_, {});
  for (const auto& [id, alert] : open) ui_.CloseAlert(id);
  std::deque<AlertRequest> waiting;
  {
    std::lock_guard lock(guard_);
    ended_ = true;
    settled_ = 0;
    waiting.swap(waiting_);
  }
  for (auto& [id, alert] : open) alert.AnswerAll(alert.Shown().HarmlessButton);
  for (AlertRequest& request : waiting) AnswerHarmlessly(request);
}

int32 AlertDesk::FreePlace() const {
  int32 place = 0;
  const auto isTaken = [this](int32 candidate) {
    return std::any_of(open_.begin(), open_.end(),
                       [candidate](const auto& entry) { return entry.second.place == candidate; });
  };
  while (isTaken(place)) ++place;
  return place;
}

size_t AlertDesk::CountWaiting() const {
  std::lock_guard lock(guard_);
  return waiting_.size();
}

std::optional<AlertRequest> AlertDesk::TakeWaiting(size_t at) {
  std::lock_guard lock(guard_);
  if (at >= waiting_.size()) return std::nullopt;
  AlertRequest request = std::move(waiting_[at]);
  waiting_.erase(waiting_.begin() + static_cast<std::ptrdiff_t>(at));
  if (at < settled_) --settled_;
  return request;
}

}  // namespace kestrin
