// Writes event sets for the programs to find.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "core/EventSet.h"
#include "core/VirtualEngine.h"

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

/// A set with one daily message.
void WriteMessageSet(const std::string& path, const std::string& name, const std::string& text,
                     int64 when, int64 savedAt);

/// What `kestrinctl dump` prints of the file; discarded when it prints nothing.
nlohmann::json Dump(const std::string& path);
/// The event of that name in a dump; throws when there is none.
nlohmann::json EventIn(const nlohmann::json& dump, const std::string& name);

}  // namespace kestrin
