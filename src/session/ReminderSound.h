// The sound of a reminder, played off the main thread.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace kestrin {

struct SoundChoice {
  std::string File;  ///< empty: the sound of the desktop's theme
  int Percent = 100;
};

/// Main thread. Every call returns at once, whatever becomes of the sound device.
class ReminderSound {
 public:
  /// `bell` is called, in the thread that plays, for a sound that cannot be played.
  explicit ReminderSound(std::function<void()> bell);
  /// A sound that still plays ends with the process, not with this.
  ~ReminderSound();
  ReminderSound(const ReminderSound&) = delete;
  ReminderSound& operator=(const ReminderSound&) = delete;

  /// From its beginning, instead of one that plays still.
  void Play(const SoundChoice& choice);
  void Stop();

 private:
  struct Player;
  std::shared_ptr<Player> player_;
};

}  // namespace kestrin
