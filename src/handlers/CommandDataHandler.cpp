#include "handlers/CommandDataHandler.h"

#include <memory>
#include <utility>

#include "core/events/Event.h"
#include "core/ports/Desktop.h"
#include "handlers/DeliveryWork.h"

namespace kestrin {

void CommandDataHandler::SetCommand(const char* command) {
  content_.SetText(command);
  Changed();
}

bool CommandDataHandler::MustAsk() const { return GetVerify() || IsDownloaded(*GetAttachedTo()); }

bool CommandDataHandler::NeedsScreen() const { return !content_.Text.Empty() && MustAsk(); }

void CommandDataHandler::DealWithEvent(bool missed) {
  if (content_.Text.Empty()) return;
  const Event& event = *GetAttachedTo();
  DeliveryWork work;
  work.ThreadName = "ExecuteCommand";
  if (MustAsk())
    work.Question = MessageAlertText(event, missed,
                                     {"\n\nKestrin is about to execute a shell command: \"",
                                      GetCommand(), "\".  Should the command be executed?"});
  work.FailureText = MessageAlertText(event, missed,
                                      {"\n\nKestrin attempted to execute a shell command: \"",
                                       GetCommand(), "\".  The command failed to execute."});
  work.Command = GetCommand();
  work.Run = [command = std::string(GetCommand())](Desktop& desktop) {
    desktop.RunCommand(command);
    return true;
  };
  AskThenWork(DeliveredEvent(event, missed), std::move(work));
}

EventAddOnData* DefHandCommand_NewAddOnData(Event* event, EndianIndependentFile* file, bool* ok) {
  auto data = std::make_unique<CommandDataHandler>(event);
  *ok = !file || data->ReadData(*file);
  return data.release();
}

}  // namespace kestrin
