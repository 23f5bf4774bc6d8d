// A background deliverer and a session bus that write down what they were asked.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/loop/MessageQueue.h"
#include "core/ports/BackgroundMessenger.h"
#include "core/ports/BusPresence.h"

namespace kestrin {

class FakeBackground final : public BackgroundMessenger {
 public:
  bool ByName = true, ByFile = false, InTrash = false;  ///< how it can be reached
  std::vector<std::string> Calls;                       ///< "launch", "file PATH", "quit"
  MessageQueue* Queue = nullptr;                        ///< gets the outcome, once it is known
  /// The "When" of every NextEventMessage that arrived; 0 stands for nothing pending.
  std::vector<int64> Times;

  void Launch(const Message* message, const std::string& file) override {
    Calls.emplace_back("launch");
    const bool spawns = !ByName && !file.empty();
    if (spawns) Calls.push_back("file " + file);
    const bool runs = ByName || (spawns && ByFile);
    if (message && runs) Times.push_back(message->Get<int32>("When").value_or(0));
    if (file.empty()) return;
    Message outcome(BACKGROUND_LAUNCHED);
    outcome.Set("runs", runs);
    outcome.Set("inTrash", InTrash);
    if (Queue) Queue->Post(std::move(outcome));
  }
  void AskToQuit() override { Calls.emplace_back("quit"); }
  std::optional<Message> Finish() override { return std::nullopt; }
};

class FakeBus final : public BusPresence {
 public:
  /// May be null: something that arrives while the application leaves. Called once.
  std::function<void()> Arriving;
  int Left = 0;

  bool Leave() override {
    ++Left;
    if (const auto arrive = std::exchange(Arriving, nullptr)) return arrive(), false;
    return true;
  }
};

}  // namespace kestrin
