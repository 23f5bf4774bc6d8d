// A background deliverer and a session bus that write down what they were asked.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/ports/BackgroundMessenger.h"
#include "core/ports/BusPresence.h"

namespace kestrin {

class FakeBackground final : public BackgroundMessenger {
 public:
  LaunchResult OfName = LaunchResult::AlreadyRunning, OfFile = LaunchResult::Failed;
  std::vector<std::string> Calls;  ///< "launch", "file PATH", "register PATH", "quit"
  /// The "When" of every NextEventMessage that arrived; 0 stands for nothing pending.
  std::vector<int64> Times;

  LaunchResult Launch(const Message* message) override {
    Calls.emplace_back("launch");
    return Take(OfName, message);
  }
  LaunchResult LaunchFile(const std::string& path, const Message* message) override {
    Calls.push_back("file " + path);
    return Take(OfFile, message);
  }
  void RegisterFile(const std::string& path) override { Calls.push_back("register " + path); }
  void AskToQuit() override { Calls.emplace_back("quit"); }

 private:
  LaunchResult Take(LaunchResult result, const Message* message) {
    const bool arrived = result == LaunchResult::Started || result == LaunchResult::AlreadyRunning;
    if (message && arrived) Times.push_back(message->Get<int32>("When").value_or(0));
    return result;
  }
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
