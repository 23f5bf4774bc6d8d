#include "SetMaker.h"

#include <stdexcept>

#include "core/app/AppState.h"
#include "core/events/HandlerTable.h"
#include "handlers/ActOnFileDataHandler.h"
#include "handlers/CommandDataHandler.h"
#include "handlers/LoadEventHandlers.h"
#include "handlers/MessageDataHandler.h"
#include "harness/bus/Processes.h"

namespace kestrin {

namespace {

template <typename Data>
Data& Select(Event& event, const char* handler) {
  event.SetSelectedHandler(FindHandler(handler));
  return dynamic_cast<Data&>(*event.GetAddOnData());
}

}  // namespace

SetMaker::SetMaker(int64 now) {
  engine_.clock.Time = now;
  engine_.context.zone = Zone::System();
  LoadBuiltInHandlers(engine_.context);
  set_ = std::make_unique<EventSet>(engine_.context, "set");
  set_->Layout().WindowFrame = {400, 300, 900, 600};
}

SetMaker::~SetMaker() {
  set_.reset();
  ResetProcessState();
}

Event& SetMaker::AddDaily(const std::string& name, int64 when) {
  Event& event = *set_->AddEvent(nullptr);
  event.SetName(name);
  event.SetShouldWindowOpen(false);
  event.SetPeriodType(Daily);
  event.SetApplyTime(true);
  event.SetTimeToApply(SecondsIntoDay(engine_.context.zone.AtMoment(when)));
  if (event.GetActualEventTime() != when) throw std::logic_error("a daily event at another time");
  return event;
}

void SetMaker::Say(Event& event, const std::string& text) {
  Select<MessageDataHandler>(event, DefHandMessageName).SetMessage(text.c_str());
}

void SetMaker::Run(Event& event, const std::string& command, bool verify) {
  auto& data = Select<CommandDataHandler>(event, DefHandCommandName);
  data.SetCommand(command.c_str());
  data.SetVerify(verify);
}

void SetMaker::ActOn(Event& event, const std::string& path, bool verify) {
  auto& data = Select<ActOnFileDataHandler>(event, DefHandActOnFileName);
  data.SetFileName(path.c_str());
  data.SetVerify(verify);
}

void SetMaker::Save(const std::string& path) {
  if (!set_->SaveCopy(path)) throw std::runtime_error("cannot write " + path);
}

void WriteTea(const std::string& path, int64 when, int64 savedAt) {
  SetMaker set(savedAt);
  set.Say(set.AddDaily("Tea", when), "Put the kettle on.");
  set.Save(path);
}

nlohmann::json SavedEvents(const std::string& path) {
  const TemporaryFolder folder;
  const std::string out = folder.path + "/dump";
  Child({"/bin/sh", "-c", "exec \"$0\" dump \"$1\" >\"$2\"", KESTRINCTL, path, out}).Wait();
  return nlohmann::json::parse(ReadFile(out), nullptr, false).at("events");
}

nlohmann::json SavedEvent(const std::string& path, const std::string& name) {
  const nlohmann::json events = SavedEvents(path);
  for (const nlohmann::json& event : events)
    if (event.at("Name") == name) return event;
  throw std::runtime_error(path + " has no event " + name);
}

int64 SavedTime(const std::string& path, const std::string& name) {
  return SavedEvent(path, name).at("NextEventTime");
}

}  // namespace kestrin
