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

bool IsReminder(const AlertRequest& request) {
  return request.Event != 0 &&
         (request.Role == AlertRole::Prewarning || request.Role == AlertRole::Nag);
}

bool RemindOfTheSame(const AlertRequest& a, const AlertRequest& b) {
  return IsReminder(a) && IsReminder(b) && a.Event == b.Event;
}

bool IsPromptAbout(const AlertRequest& request, uint64 set) {
  return request.Role == AlertRole::Prompt && request.Set == set;
}

bool HoldsSavesBack(const AlertRequest& request, uint64 set) {
  return request.Role != AlertRole::Prompt && request.Set == set;
}

}  // namespace

void AlertDesk::Show(AlertRequest request) {
  AssertNoSetLocked("AlertDesk::Show");
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

void AlertDesk::OpenWaiting() {
  if (!ui_.HasScreen()) {
    for (size_t rest = CountWaiting(); rest > 0; --rest)
      if (auto request = TakeWaiting()) {
        TellWithoutScreen(*request);
        AnswerHarmlessly(*request);
      }
    return;
  }
  BringUpToDate();
  while (MayOpenNext()) {
    auto request = TakeWaiting();
    if (!request) return;
    const AlertId id = nextId_++;
    const int32 place = FreePlace();
    const AlertRequest shown = *request;  // the answer may come before OpenAlert returns
    open_.emplace(id, Open{std::move(*request), place});
    ui_.OpenAlert(id, shown, place);
  }
}

bool AlertDesk::MayOpenNext() const {
  std::lock_guard lock(guard_);
  if (settled_ == 0 || waiting_.empty()) return false;
  return static_cast<int32>(open_.size()) < MaxOpenAlerts ||
         waiting_.front().Role == AlertRole::Prompt;
}

void AlertDesk::BringUpToDate() {
  // What a continuation adds meanwhile is left for the next turn.
  for (size_t rest = CountWaiting() - settled_; rest > 0; --rest) {
    std::optional<AlertRequest> outdated = ReplaceWaiting();
    if (!outdated) outdated = ReplaceOpen();
    if (outdated)
      AnswerHarmlessly(*outdated);
    else
      settled_ = std::min(settled_ + 1, CountWaiting());
  }
}

std::optional<AlertRequest> AlertDesk::ReplaceWaiting() {
  std::lock_guard lock(guard_);
  if (settled_ >= waiting_.size()) return std::nullopt;
  const auto fresh = waiting_.begin() + static_cast<std::ptrdiff_t>(settled_);
  const auto same = std::find_if(waiting_.begin(), fresh, [&fresh](const AlertRequest& earlier) {
    return RemindOfTheSame(earlier, *fresh);
  });
  if (same == fresh) return std::nullopt;
  AlertRequest outdated = std::exchange(*same, std::move(*fresh));
  waiting_.erase(fresh);
  return outdated;
}

std::optional<AlertRequest> AlertDesk::ReplaceOpen() {
  AlertRequest fresh;
  auto same = open_.end();
  {
    std::lock_guard lock(guard_);
    if (settled_ >= waiting_.size()) return std::nullopt;
    const auto waits = waiting_.begin() + static_cast<std::ptrdiff_t>(settled_);
    same = std::find_if(open_.begin(), open_.end(), [&waits](const auto& entry) {
      return RemindOfTheSame(entry.second.request, *waits);
    });
    if (same == open_.end()) return std::nullopt;
    fresh = std::move(*waits);
    waiting_.erase(waits);
  }
  AlertRequest outdated = std::exchange(same->second.request, fresh);
  ui_.UpdateAlert(same->first, fresh);
  return outdated;
}

void AlertDesk::Answered(AlertId id, int which) {
  const auto found = open_.find(id);
  if (found == open_.end()) return;
  AlertRequest request = std::move(found->second.request);
  open_.erase(found);
  if (CountWaiting() > 0) queue_.Post(ALERTS_WAITING);
  const bool isButton = which >= 0 && which < static_cast<int>(request.Buttons.size());
  Answer(request, isButton ? which : request.HarmlessButton);
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

bool AlertDesk::AnyFor(uint64 set) const {
  if (std::any_of(open_.begin(), open_.end(),
                  [set](const auto& entry) { return HoldsSavesBack(entry.second.request, set); }))
    return true;
  std::lock_guard lock(guard_);
  return std::any_of(waiting_.begin(), waiting_.end(),
                     [set](const AlertRequest& request) { return HoldsSavesBack(request, set); });
}

bool AlertDesk::Empty() const { return open_.empty() && CountWaiting() == 0; }

std::vector<AlertRequest> AlertDesk::EndByForce() {
  BringUpToDate();
  const std::map<AlertId, Open> open = std::exchange(open_, {});
  std::vector<AlertRequest> ended;
  for (const auto& [id, alert] : open) {
    ui_.CloseAlert(id);
    ended.push_back(alert.request);
  }
  {
    std::lock_guard lock(guard_);
    ended_ = true;
    settled_ = 0;
    std::move(waiting_.begin(), waiting_.end(), std::back_inserter(ended));
    waiting_.clear();
  }
  for (AlertRequest& request : ended) AnswerHarmlessly(request);
  return ended;
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

std::optional<AlertRequest> AlertDesk::TakeWaiting() {
  std::lock_guard lock(guard_);
  if (waiting_.empty()) return std::nullopt;
  AlertRequest request = std::move(waiting_.front());
  waiting_.pop_front();
  if (settled_ > 0) --settled_;
  return request;
}

}  // namespace kestrin
