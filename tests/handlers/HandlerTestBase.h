// A set with one event, over fakes and the real table of handlers; the whole application with it.
#pragma once

#include <memory>
#include <string>

#include "core/events/HandlerTable.h"
#include "core/files/StoredSetFile.h"
#include "handlers/ActOnFileDataHandler.h"
#include "handlers/CommandDataHandler.h"
#include "handlers/HandlerActions.h"
#include "handlers/LoadEventHandlers.h"
#include "handlers/MessageDataHandler.h"
#include "harness/AppTestBase.h"
#include "harness/SetTestBase.h"

namespace kestrin {

class HandlerTestBase : public SetTestBase {
 protected:
  HandlerTestBase() {
    LoadBuiltInHandlers(World.Core);
    Set = kestrin::NewSet(World.Core, "/sets/set");
    Subject = Set->AddEvent(nullptr);
    Subject->SetName("Tea");
    EXPECT_TRUE(Set->SaveData());
  }

  /// The event's data after it has selected the handler of that name.
  template <typename Data>
  Data& Select(const char* handler) {
    EXPECT_TRUE(Subject->SetSelectedHandler(World.Handlers.Find(handler)));
    return dynamic_cast<Data&>(*Subject->GetAddOnData());
  }
  void Deliver(bool missed = false) {
    HandlerActions().DeliverEvent(*Subject, missed);
    World.RunMessages();
  }
  /// The text of the only alert on the screen.
  std::string OnlyText() const {
    return World.Ui.Alerts.size() == 1 ? World.Ui.Alerts[0].Request.Text
                                       : std::to_string(World.Ui.Alerts.size()) + " alerts";
  }
  void Answer(int which) {
    ASSERT_TRUE(World.Ui.AnswerFirst(which));
    World.RunMessages();
  }

  std::unique_ptr<EventSet> Set;
  Event* Subject = nullptr;
};

class TrueHandlersTest : public AppTestBase {
 protected:
  TrueHandlersTest() { OwnActions = &real_; }
  void LoadHandlers(Context& context) override { LoadBuiltInHandlers(context); }

  /// A command that asks first.
  CommandDataHandler& MakeQuestion(Event& event, const char* text) {
    event.SetSelectedHandler(It->World.Handlers.Find("Command"));
    auto& command = dynamic_cast<CommandDataHandler&>(*event.GetAddOnData());
    command.SetCommand(text);
    command.SetVerify(true);
    return command;
  }

 private:
  HandlerActions real_;
};

}  // namespace kestrin
