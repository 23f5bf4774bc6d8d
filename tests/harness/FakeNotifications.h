// A notification service that keeps what it shows and replies when the test says so.
#pragma once

#include <utility>
#include <vector>

#include "core/ports/NotificationService.h"

namespace kestrin {

class FakeNotifications final : public NotificationService {
 public:
  struct Standing {
    uint64 Number;
    Notification Shown;
    Replied Reply;
  };
  std::vector<Standing> Open;  ///< in the order of coming

  uint64 Show(const Notification& notification, Replied replied) override {
    Open.push_back({++last_, notification, std::move(replied)});
    return last_;
  }
  void Close(uint64 number) override {
    std::erase_if(Open, [number](const Standing& each) { return each.Number == number; });
  }
  /// The first one goes with that reply.
  void Answer(NotificationReply::Kind what, const std::string& label = "") {
    const Standing first = Open.at(0);
    Open.erase(Open.begin());
    std::string key;
    for (const auto& [name, text] : first.Shown.Actions)
      if (text.starts_with(label)) key = name;
    first.Reply({what, key});
  }

 private:
  uint64 last_ = 0;
};

}  // namespace kestrin
