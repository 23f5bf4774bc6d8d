// A set with one event, over fakes and the real table of handlers.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "core/AppState.h"
#include "core/EventSet.h"
#include "core/HandlerTable.h"
#include "fakes/MemoryFileDoor.h"
#include "fakes/TestContext.h"
#include "handlers/HandlerActions.h"
#include "handlers/LoadEventHandlers.h"
#include "kestrin/EndianIndependentFile.h"

namespace kestrin {

class HandlerTestBase : public testing::Test {
 protected:
  HandlerTestBase() {
    ResetProcessState();
    Files.PutFolder("/home");
    LoadBuiltInHandlers(World.Core);
    Set = std::make_unique<EventSet>(World.Core, "Untitled event set 1");
    Subject = Set->AddEvent(nullptr);
    Subject->SetName("Tea");
    SaveSet();
  }
  ~HandlerTestBase() override {
    Set.reset();
    ResetProcessState();
  }

  void SaveSet() {
    Set->SetFileName("/home/set");
    ASSERT_TRUE(Set->SaveData());
  }
  /// The event's data after it has selected the handler of that name.
  template <typename Data>
  Data& Select(const char* handler) {
    EXPECT_TRUE(Subject->SetSelectedHandler(FindHandler(handler)));
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

  MemoryFileDoor Files;
  TestContext World{&Files};
  std::unique_ptr<EventSet> Set;
  Event* Subject = nullptr;
};

}  // namespace kestrin
