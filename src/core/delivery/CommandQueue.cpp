#include "core/delivery/CommandQueue.h"

#include <utility>

#include "core/journal/Journal.h"
#include "core/loop/Holds.h"
#include "core/loop/MessageQueue.h"
#include "core/ports/Desktop.h"
#include "core/ports/Timers.h"
#include "core/ports/Workers.h"

namespace kestrin {

namespace {

constexpr int64 Second = 1000000;

}  // namespace

bool CommandQueue::HasRoom() {
  const int64 now = context_.clock.SteadyMicroseconds();
  while (!started_.empty() && now - started_.front() >= Second) started_.pop_front();
  return started_.size() < MostInASecond;
}

void CommandQueue::Stage(const Command& command, ActStage act, const std::string& why) {
  if (context_.journal && !command.Record.empty())
    context_.journal->Stage(command.Record, act, why);
}

void CommandQueue::Run(Command command) {
  context_.holds.ProcessHold();
  if (waiting_.empty() && HasRoom()) {
    Start(command);
    return;
  }
  Stage(command, ActStage::Queued);
  waiting_.push_back(std::move(command));
  WaitForTurn();
}

void CommandQueue::WaitForTurn() {
  if (timed_ || waiting_.empty() || !context_.timers) return;
  timed_ = true;
  const int64 passed = context_.clock.SteadyMicroseconds() - started_.front();
  context_.timers->PostAfter(static_cast<int32>((Second - passed) / 1000 + 1),
                             Message(START_COMMANDS));
}

/// What has waited may have been begun by another session meanwhile.
void CommandQueue::GoOn() {
  timed_ = false;
  while (!waiting_.empty() && HasRoom()) {
    const Command command = std::move(waiting_.front());
    waiting_.pop_front();
    Journal* const journal = context_.journal;
    if (!journal || command.Record.empty() || journal->ClaimAgain(command.Record))
      Start(command);
    else
      context_.holds.ProcessDone();
  }
  WaitForTurn();
}

/// Once the shell runs, nothing that happens to this process takes the command back. Without a
/// thread nobody learns how it ends.
void CommandQueue::Start(const Command& command) {
  started_.push_back(context_.clock.SteadyMicroseconds());
  const int32 shell = context_.desktop.StartCommand(command.Line);
  if (shell <= 0) {
    if (command.Failed) command.Failed();  // whoever dies now has told it
    Stage(command, ActStage::Failed, "the shell could not be started");
    context_.holds.ProcessDone();
    return;
  }
  Stage(command, ActStage::Acted);
  const auto wait = [&context = context_, record = command.Record, shell] {
    const int32 exit = context.desktop.WaitForCommand(shell);
    if (context.journal && !record.empty()) context.journal->Ended(record, exit);
    context.queue.Post(PROCESS_HOLD_DONE);
  };
  if (!context_.workers.Start("ExecuteCommand", wait)) context_.holds.ProcessDone();
}

}  // namespace kestrin
