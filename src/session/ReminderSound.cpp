#include "session/ReminderSound.h"

#include <canberra.h>

#include <algorithm>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace kestrin {

namespace {

constexpr uint32_t SoundId = 1;
// Names of the sound theme's standard, from the one that is meant to what every theme has.
constexpr const char* ThemeSounds[] = {"alarm-clock-elapsed", "message-new-instant", "bell"};

std::string Decibels(int percent) {
  const double part = std::clamp(percent, 1, 100) / 100.0;
  return std::to_string(20 * std::log10(part));
}

int PlayOne(ca_context* context, const char* key, const std::string& value,
            const std::string& volume) {
  return ca_context_play(context, SoundId, key, value.c_str(), CA_PROP_CANBERRA_VOLUME,
                         volume.c_str(), CA_PROP_MEDIA_ROLE, "event", CA_PROP_EVENT_DESCRIPTION,
                         "Reminder", nullptr);
}

bool PlayChoice(ca_context* context, const SoundChoice& choice) {
  const std::string volume = Decibels(choice.Percent);
  if (!choice.File.empty() &&
      PlayOne(context, CA_PROP_MEDIA_FILENAME, choice.File, volume) == CA_SUCCESS)
    return true;
  int result = CA_ERROR_NOTFOUND;
  for (const char* sound : ThemeSounds)
    if (result == CA_ERROR_NOTFOUND) result = PlayOne(context, CA_PROP_EVENT_ID, sound, volume);
  return result == CA_SUCCESS;
}

}  // namespace

/// Shared with its thread, which may hang in a sound server for as long as that likes.
struct ReminderSound::Player {
  std::function<void()> bell;
  std::mutex guard;
  std::condition_variable wake;
  bool started = false;
  bool ended = false;
  bool stop = false;
  std::optional<SoundChoice> next;

  void Run();
};

void ReminderSound::Player::Run() {
  ca_context* context = nullptr;
  if (ca_context_create(&context) == CA_SUCCESS)
    ca_context_change_props(context, CA_PROP_APPLICATION_NAME, "Kestrin", nullptr);
  std::unique_lock lock(guard);
  while (true) {
    wake.wait(lock, [this] { return ended || stop || next; });
    if (ended) break;
    const bool wasStopped = std::exchange(stop, false);
    const std::optional<SoundChoice> choice = std::exchange(next, std::nullopt);
    lock.unlock();
    if (context && (wasStopped || choice)) ca_context_cancel(context, SoundId);
    const bool played = !choice || (context && PlayChoice(context, *choice));
    lock.lock();
    if (!played && !ended) bell();
  }
  lock.unlock();
  if (context) ca_context_destroy(context);
}

ReminderSound::ReminderSound(std::function<void()> bell) : player_(std::make_shared<Player>()) {
  player_->bell = std::move(bell);
}

ReminderSound::~ReminderSound() {
  const std::lock_guard lock(player_->guard);
  player_->ended = true;
  player_->wake.notify_one();
}

void ReminderSound::Play(const SoundChoice& choice) {
  const std::lock_guard lock(player_->guard);
  player_->next = choice;
  player_->wake.notify_one();
  if (std::exchange(player_->started, true)) return;
  try {
    std::thread([player = player_] { player->Run(); }).detach();
  } catch (const std::system_error&) {
    player_->started = false;
    player_->bell();
  }
}

void ReminderSound::Stop() {
  const std::lock_guard lock(player_->guard);
  player_->next.reset();
  player_->stop = true;
  player_->wake.notify_one();
}

}  // namespace kestrin
