// Shell commands of events: started in the main thread, a few at a time, waited for in workers.
#pragma once

#include <deque>
#include <functional>
#include <string>

#include "core/events/Context.h"
#include "core/journal/JournalRecord.h"

namespace kestrin {

/// Main thread. A command that runs delays none; many that come due together are spread over
/// seconds.
class CommandQueue {
 public:
  static constexpr size_t MostInASecond = 16;

  struct Command {
    std::string Line;
    std::string Record;            ///< the journal's, of the delivery; may be empty
    std::function<void()> Failed;  ///< called when the shell cannot be started
  };

  explicit CommandQueue(Context& context) : context_(context) {}

  /// Starts it at once, or lets it wait for its turn: then the record says that it is queued, and a
  /// later process carries it out if this one ends. Holds the application until it has ended.
  void Run(Command command);
  /// START_COMMANDS: a second has passed.
  void GoOn();

 private:
  bool HasRoom();
  void Start(const Command& command);
  void Stage(const Command& command, ActStage act, const std::string& why = "");
  void WaitForTurn();

  Context& context_;
  std::deque<int64> started_;  ///< when, in the last second, by the steady clock
  std::deque<Command> waiting_;
  bool timed_ = false;
};

}  // namespace kestrin
