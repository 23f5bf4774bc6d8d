// Writes event sets for the programs to find.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "core/delivery/VirtualEngine.h"
#include "core/events/EventSet.h"

namespace kestrin {

/// One at a time.
class SetMaker {
 public:
  /// The set is as if it had been saved at `now`.
  explicit SetMaker(int64 now);
  ~SetMaker();

  /// Comes at `when` and at that time of every day after it.
  Event& AddDaily(const std::string& name, int64 when);
  void Say(Event& event, const std::string& text);
  void Run(Event& event, const std::string& command, bool verify);
  void ActOn(Event& event, const std::string& path, bool verify);
  void Save(const std::string& path);

 private:
  VirtualEngine engine_;
  std::unique_ptr<EventSet> set_;
};

/// A set with the daily message "Tea".
void WriteTea(const std::string& path, int64 when, int64 savedAt);

/// The "events" that `kestrinctl dump` prints; throws when it prints none.
nlohmann::json SavedEvents(const std::string& path);
/// The one of that name; throws when there is none.
nlohmann::json SavedEvent(const std::string& path, const std::string& name);
/// Its NextEventTime.
int64 SavedTime(const std::string& path, const std::string& name = "Tea");

}  // namespace kestrin
