// How the application ends: by itself, by the user's wish, or by force; what puts a quit off, and
// that nothing is lost on the way.
#include "core/loop/AppMessages.h"
#include "harness/AppTestBase.h"

namespace kestrin {
namespace {

using testing::Contains, testing::HasSubstr, testing::Not;

class KestrinAppQuitTest : public AppTestBase {
 protected:
  const std::string Unsaved = "Kestrin was unable to save the event set " + std::string(Work) + ".";

  /// An editor that shows one set, which the user has changed.
  void StartEditing() {
    StartWith({DailyAt(Sunday + Day)});
    FirstEvent(Work).SetName("changed");
    Run();
    It->Background.Times.clear();
    It->Background.Calls.clear();
  }
  void LetWrite(bool may) {
    Disk.Put("/sets/mode", "", may ? 0644 : 0444);
    Disk.CopyAttributes("/sets/mode", Work);
  }
  /// The name of the first event in the file.
  std::string NameIn(const std::string& path) {
    const std::string bytes = Disk.Bytes(path).value_or("");
    const size_t name = 1 + sizeof "1.2" + 4;
    return bytes.size() > name ? bytes.c_str() + name : "";
  }
};

TEST_F(KestrinAppQuitTest, AnOpenAlertLetsAQuitWaitAndWhatItIsStays) {
  for (const bool full : {false, true}) {
    StartEditing();
    It->World.Notes.InformUser("read me");
    Post(Message(full ? FULL_QUIT_REQUESTED : QUIT_REQUESTED));
    EXPECT_FALSE(It->Ended);
    Answer(0);
    EXPECT_TRUE(It->Ended);
    EXPECT_EQ(It->Background.Calls.back(), full ? "quit" : "launch");
  }
}

TEST_F(KestrinAppQuitTest, AWindowThatAsksDecides) {
  for (const bool cancels : {true, false}) {
    StartEditing();
    FakeSetWindow& window = *Ui().SetWindows[0];
    window.RefuseToClose = true;
    Post(Message(FULL_QUIT_REQUESTED));
    EXPECT_EQ(window.CloseRequests, 1);
    EXPECT_EQ(window.Commits, 1) << "before it is asked";
    EXPECT_TRUE(It->App.Ending().IsQuitInProgress());
    EXPECT_TRUE(It->App.Ending().QuitProcess && It->App.Ending().FullQuitProcess);
    if (cancels) {
      It->App.Ending().CancelQuitProcess();
      EXPECT_FALSE(It->App.Ending().QuitProcess || It->App.Ending().FullQuitProcess);
    }
    CloseWindow();
    EXPECT_TRUE(It->Ended);
    EXPECT_EQ(NameIn(Work), "changed") << "saved without another question";
    EXPECT_EQ(It->Background.Times.empty(), !cancels);
    EXPECT_EQ(It->Background.Calls.back(), cancels ? "launch" : "quit");
    EXPECT_EQ(It->World.Handlers.NumberOfEventHandlers(), 0) << "unloaded";
  }
}

TEST_F(KestrinAppQuitTest, AWindowThatIsNoSetsHoldsTheApplicationAndGoesWhenAQuitIsSure) {
  for (const bool byForce : {false, true}) {
    StartEditing();
    bool open = true;
    It->App.Ending().RegisterWindow();
    Ui().WhenClosingOthers = [this, &open] {
      if (std::exchange(open, false)) It->App.Ending().UnregisterWindow();
    };
    Ui().SetWindows.at(0)->RefuseToClose = true;
    Post(Message(QUIT_REQUESTED));
    EXPECT_TRUE(open) << "the user may still say Cancel";
    Ui().SetWindows.at(0)->RefuseToClose = false;
    CloseWindow();
    EXPECT_TRUE(open);
    EXPECT_FALSE(It->Ended) << "it is in use";
    Post(Message(byForce ? FORCED_QUIT : QUIT_REQUESTED));
    EXPECT_FALSE(open);
    EXPECT_TRUE(It->Ended);
    Crash();
  }
}

TEST_F(KestrinAppQuitTest, WhatWaitsIsHandledBeforeAQuitIsDecided) {
  const std::pair<uint32, bool> rows[] = {
      {DELIVER_EVENTS, true}, {OPEN_FILES, false}, {NEW_EVENT_SET, false}, {ACTIVATE, true}};
  for (const auto& [code, ends] : rows) {
    SCOPED_TRACE(code);
    WriteSet(Home, {});
    StartEditing();
    It->World.Time.JumpTo(Sunday + Day);
    It->App.Ending().FullQuitProcess = true;
    It->World.Queue.Post(QUIT_REQUESTED);
    Message waiting(code);
    waiting.Set("0", std::string(Home));
    It->World.Queue.Post(waiting);
    Run();
    EXPECT_EQ(It->Ended, ends);
    EXPECT_EQ(It->App.Ending().FullQuitProcess, ends) << "a window that opens cancels";
    EXPECT_EQ(Shown().size(), ends ? 0u : 2u);
  }
  for (const uint32 code : {uint32{0}, uint32{DELIVER_EVENTS}, uint32{SETS_OPENED}}) {
    StartEditing();
    It->World.Time.JumpTo(Sunday + Day);
    It->World.Queue.Post(QUIT_REQUESTED);
    if (code != 0) It->World.Queue.Post(Message(code));
    Run();
    EXPECT_EQ(Delivered().size(), code == 0 ? 0u : 1u) << "leaving alone delivers nothing";
    EXPECT_EQ(It->Background.Times.back(), code == 0 ? Sunday + Day : Sunday + 2 * Day);
    EXPECT_TRUE(It->Ended);
  }
}

TEST_F(KestrinAppQuitTest, OnlyAnIdleApplicationEndsByItself) {
  StartEditing();
  It->World.Queue.Post(QUIT_REQUESTED);
  Message launched(BACKGROUND_LAUNCHED);
  launched.Set("runs", false);
  Post(launched);
  EXPECT_FALSE(It->Ended) << "that nobody will wake it is told first";
  StartEditing();
  Post(QuitIfIdle());
  EXPECT_FALSE(It->Ended) << "a window holds it";
  Start({}, {Message(ACTIVATE), QuitIfIdle()});
  EXPECT_THAT(Shown(), ElementsAre(Work)) << "before its role is known it does not leave";
  Wake();
  EXPECT_TRUE(It->Ended);
}

TEST_F(KestrinAppQuitTest, WhatArrivesWhileItLeavesIsServedAndThenItLeavesAgain) {
  for (const bool opens : {false, true}) {
    StartEditing();
    It->World.Time.JumpTo(Sunday + Day);
    It->Bus.Arriving = [this, opens] {
      It->World.Queue.Post(opens ? NEW_EVENT_SET : DELIVER_EVENTS);
    };
    Post(Message(FULL_QUIT_REQUESTED));
    EXPECT_EQ(It->Ended, !opens);
    EXPECT_EQ(It->Bus.Left, opens ? 1 : 2);
    EXPECT_EQ(Delivered().size(), 1u);
    EXPECT_FALSE(It->App.Ending().FullQuitProcess);
    EXPECT_EQ(It->Background.Times.back(), Sunday + Day + Day) << "the deliverer is asked again";
  }
}

TEST_F(KestrinAppQuitTest, ASetThatCannotBeSavedIsToldOnceAndCopied) {
  for (const bool worksLater : {false, true}) {
    Disk.Remove("/state/recovered/Work.kestrin");
    StartEditing();
    LetWrite(false);
    testing::internal::CaptureStderr();
    Post(Message(FULL_QUIT_REQUESTED));
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("not saved: Permission denied."));
    EXPECT_FALSE(It->Ended);
    EXPECT_THAT(Alerts(), ElementsAre(testing::StartsWith(Unsaved + "\n\n")));
    EXPECT_EQ(NameIn("/state/recovered/Work.kestrin"), "changed");
    FirstEvent(Work).SetName("changed again");
    LetWrite(worksLater);
    Answer(0);
    EXPECT_TRUE(It->Ended);
    EXPECT_EQ(It->Background.Calls.back(), "quit") << "a full quit stays one";
    EXPECT_EQ(NameIn("/state/recovered/Work.kestrin"), worksLater ? "" : "changed again");
    EXPECT_EQ(NameIn(Work), worksLater ? "changed again" : "Tea");
    LetWrite(true);
    Start();
    EXPECT_THAT(Shown(), ElementsAre(Work)) << "the copy is this set, not one more";
    EXPECT_EQ(FirstEvent(Work).GetName(), "changed again");
    EXPECT_EQ(Set(Work)->HasBeenModified(), !worksLater);
  }
}

TEST_F(KestrinAppQuitTest, UnsavedEditsAreKeptApartOnlyFromWhatOthersWrote) {
  for (const bool byOthers : {false, true}) {
    Now = Sunday + 8 * Hour;
    StartWith({DailyAt(Sunday + 9 * Hour)});
    FirstEvent(Work).SetComment("mine");
    LetWrite(false);
    Post(Message(FORCED_QUIT));
    LetWrite(true);
    ASSERT_TRUE(Disk.Bytes("/state/recovered/Work.kestrin"));
    // Delivered and saved while nobody looks.
    Now = Sunday + 10 * Hour;
    Wake();
    EXPECT_THAT(Delivered(), ElementsAre("Tea"));
    if (byOthers) WriteSet(Work, {DailyAt(Sunday + Day + 9 * Hour), DailyAt(Sunday + Day)});
    Start();
    EXPECT_EQ(FirstEvent(Work).GetComment(), "mine");
    EXPECT_EQ(FirstEvent(Work).GetNextEventTime(), Sunday + Day + 9 * Hour);
    ASSERT_TRUE(Set(Work)->SaveData());
    EXPECT_EQ(Disk.List("/sets")->size(), byOthers ? 3u : 2u) << "with the one for its mode";
    Run();
    EXPECT_THAT(*Disk.List("/state/recovered"), IsEmpty());
  }
}

TEST_F(KestrinAppQuitTest, WhatDeliveriesChangedIsSavedOnceTheJournalIsDurable) {
  StartWith({DailyAt(Sunday + 8 * Hour)});
  const std::string before = *Disk.Bytes(Work);
  It->World.Threads.How = FakeWorkers::Mode::Deferred;
  It->World.Holding.ProcessHold();  // an open alert, a running command
  DeliverAt(Sunday + Day + 8 * Hour);
  EXPECT_EQ(Disk.Bytes(Work), before);
  It->World.Threads.RunPending();
  Run();
  EXPECT_NE(Disk.Bytes(Work), before);
  EXPECT_FALSE(Set(Work)->HasBeenModified());
  EXPECT_EQ(It->World.Holding.Count(), 2) << "the window, and what is open";

  It->World.Time.JumpTo(Sunday + 2 * Day + 8 * Hour);
  FirstEvent(Work).SetComment("mine");
  Post(Message(DELIVER_EVENTS));
  EXPECT_TRUE(Set(Work)->HasBeenModified()) << "what the user changed is theirs to save";
  It->World.Threads.RunPending();
  Disk.CutPower(false);
  Now = It->World.Time.Now();
  WriteSet(Home, {DailyAt(Sunday + 9 * Day)});
  Remember({Home, Work});
  Start();
  EXPECT_THAT(Delivered(), IsEmpty());
  EXPECT_EQ(FirstEvent(Work).GetNextEventTime(), Sunday + 3 * Day + 8 * Hour);
}

TEST_F(KestrinAppQuitTest, AutomaticSavesReportOnceAndMakeNoCopy) {
  StartWith({DailyAt(Sunday + 8 * Hour)});
  LetWrite(false);
  for (const int day : {1, 2}) {
    DeliverAt(Sunday + day * Day + 8 * Hour);
    EXPECT_THAT(Alerts(), ElementsAre(testing::StartsWith(Unsaved + "\n\n")));
    EXPECT_THAT(It->World.Ticks.Waiting, IsEmpty()) << "for a copy";
  }
  LetWrite(true);
  DeliverAt(Sunday + 3 * Day + 8 * Hour);
  LetWrite(false);
  DeliverAt(Sunday + 4 * Day + 8 * Hour);
  EXPECT_EQ(Alerts().size(), 2u) << "once for each time that it begins";
  Now = Sunday + 5 * Day + 8 * Hour;
  Wake();
  Answer(0);
  EXPECT_TRUE(It->Ended);
  EXPECT_FALSE(Disk.Bytes("/state/recovered/Work.kestrin")) << "no user's change is in it";
}

TEST_F(KestrinAppQuitTest, AForcedEndKeepsEverything) {
  StartEditing();
  Post(Message(NEW_EVENT_SET));
  EventSet& untitled = *It->World.Open.Sets.back();
  Event& event = *untitled.AddEvent(nullptr);
  ASSERT_EQ(Ui().EditorWindows.size(), 1u);
  Ui().EditorWindows[0]->WhenCommitting = [&event] { event.SetName("typed"); };
  for (auto* window : Ui().SetWindows) window->RefuseToClose = true;
  int answer = -1;
  AlertRequest question;
  question.Text = "Sure?";
  question.Buttons = {"No", "Yes"};
  question.DefaultButton = 1;
  question.Done = [&answer](int which) { answer = which; };
  It->World.Alerts.Show(question);
  It->World.Notes.ReportError("broken");
  Post(Message(SESSION_SAVED));
  EXPECT_EQ(NameIn(Recovered), "typed") << "the session may go on";
  Post(Message(FORCED_QUIT));
  EXPECT_TRUE(It->Ended);
  EXPECT_EQ(answer, 0) << "the harmless one";
  EXPECT_EQ(NameIn(Work), "changed");
  EXPECT_EQ(NameIn(Recovered), "typed");
  EXPECT_EQ(It->Background.Times.back(), Sunday + Day);

  Start();
  EXPECT_THAT(Shown(), ElementsAre(Work, "Untitled event set 1"));
  EventSet* const again = Set("Untitled event set 1");
  EXPECT_TRUE(again->IsUntitled() && again->HasBeenModified());
  EXPECT_THAT(Alerts(), IsEmpty()) << "reports and prompts do not outlive their process";
  Crash();
  Start();
  EventSet* const saved = Set("Untitled event set 1");
  saved->SetFileName(Home);
  ASSERT_TRUE(saved->SaveData());
  Run();
  EXPECT_FALSE(Disk.Bytes(Recovered)) << "its copy goes when it has a file";
  EXPECT_EQ(NameIn(Home), "typed");
}

TEST_F(KestrinAppQuitTest, SettingsAreWrittenAfterWindowsSetsAndHandlersHaveGone) {
  for (const uint32 code : {uint32{QUIT_REQUESTED}, uint32{FORCED_QUIT}}) {
    StartEditing();
    It->Unloading = [this] {
      EXPECT_TRUE(Ui().SetWindows.empty() && It->World.Open.Sets.empty());
      It->World.Settings.MorningTime = 4711;
    };
    Post(Message(code));
    ASSERT_TRUE(It->Ended);
    Start();
    EXPECT_EQ(It->World.Settings.MorningTime, 4711);
    Configure([](KestrinSettings& settings) { settings.MorningTime = 8 * Hour; });
  }
}

}  // namespace
}  // namespace kestrin
