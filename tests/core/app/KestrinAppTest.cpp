// Roles, opening and re-reading: what a process opens at its start, and what it tells the
// deliverer.
#include "core/app/KestrinApp.h"

#include "core/delivery/UnfinishedActs.h"
#include "core/events/EventIdentity.h"
#include "harness/AppTestBase.h"

namespace kestrin {
namespace {

using testing::UnorderedElementsAre;

const std::string Untitled = "Untitled event set 1";

class KestrinAppTest : public AppTestBase {
 protected:
  static Message Files(const std::vector<std::string>& paths) {
    Message open(OPEN_FILES);
    for (size_t i = 0; i < paths.size(); ++i) open.Set(std::to_string(i), paths[i]);
    open.Set("window", true);
    return open;
  }
};

TEST_F(KestrinAppTest, TheSettingAndTheArgumentsSayWhatTheEditorShows) {
  const std::tuple<int32, bool, int32, std::vector<std::string>> rows[] = {
      {0, false, 0, {Work}}, {0, true, 0, {Home, Work}}, {1, false, 0, {Work}},
      {1, true, 0, {Home}},  {2, false, 1, {Untitled}},  {2, true, 1, {Home}},
      {2, false, 0, {Home}},
  };
  WriteSet(Work, {DailyAt(Sunday + Day)});
  WriteSet(Home, {});
  for (const auto& [handling, named, without, shown] : rows) {
    Remember({Work});
    Configure([&](KestrinSettings& settings) {
      settings.SelectedSetHandling = handling;
      settings.WhenNoSetIsOpen = without;
      settings.RecentSets = {"/sets/Gone", Home, Work};
    });
    Start(std::vector<std::string>(named ? 1 : 0, "/sets/../sets/Home.kestrin"));
    EXPECT_EQ(Shown(), shown) << handling << named << without;
    EXPECT_NE(Set(Work), nullptr) << "loaded for delivery in any case";
    EXPECT_EQ(It->Background.Times.back(), Sunday + Day);
    EXPECT_FALSE(It->Ended);
  }
}

TEST_F(KestrinAppTest, StartUpOnlyHandsTheTimeOverAndLeaves) {
  StartWith({DailyAt(Sunday + 9 * Hour)}, {"-background"});
  EXPECT_TRUE(It->Ended);
  EXPECT_EQ(It->Background.Times.back(), Sunday + 9 * Hour);
  EXPECT_EQ(It->Background.Calls.front(), "launch");
  EXPECT_EQ(It->Bus.Left, 1);
  WriteSet(Home, {});
  Start({"-background", Home, "/sets/Gone"});
  EXPECT_FALSE(It->Ended) << "the alert about the missing file holds it";
  EXPECT_THAT(Open(), ElementsAre(Work, Home));
  EXPECT_THAT(Shown(), IsEmpty());
  Post(Message(ACTIVATE));
  EXPECT_THAT(Shown(), testing::Not(IsEmpty()));
  Start({"-backgrounds"});
  EXPECT_THAT(Shown(), ElementsAre(Work));
  Configure([](KestrinSettings& settings) { settings.WhichEventsToDeliver = DeliverShown; });
  Start({"-background"});
  EXPECT_EQ(It->Background.Times.back(), 0) << "nothing is shown, so nothing is pending";
}

TEST_F(KestrinAppTest, WhatCannotBeReadIsReportedOnceAndForgottenOnlyIfItStaysGone) {
  EventRecord later = DailyAt(Sunday + 40 * Day);
  later.PeriodType = Once;
  WriteSet(Work, {later});
  WriteSet(Home, {DailyAt(Sunday + 7 * Hour, "Milk")});
  const std::string damaged("\0001.2\0\0\0", 8), newer("\0009.9\0\0\0", 8);
  const std::string milk = *Disk.Bytes(Home);
  Disk.Put("/sets/Bad", damaged);
  Disk.Put("/sets/New", newer);
  Disk.Put("/sets/Locked", "", 0000);
  const std::vector<std::string> all = {"/Gone",     Work,        "/sets/Bad",
                                        "/mnt/Away", "/sets/New", "/sets/Locked"};
  Remember(all);
  Start();
  EXPECT_THAT(
      Alerts(),
      ElementsAre(
          "Kestrin: Attempt to open event set /Gone failed.",
          "Kestrin: Attempt to read event set /sets/Bad failed because a file error occurred.  The "
          "file may be corrupted.",
          "Kestrin: Attempt to open event set /mnt/Away failed.",
          "The EventSet file /sets/New was written by an unknown version of Kestrin.  It was "
          "written by version 9.9, and the current version is 1.2.  The set will not be able to be "
          "opened until you get a newer version of Kestrin.",
          "Kestrin: Attempt to open event set /sets/Locked failed."));
  EXPECT_EQ(It->Background.Times.back(), Now + Hour) << "long before what is pending";
  Now += Day - 1;
  Start({"-background"});
  EXPECT_TRUE(It->Ended) << "nothing to tell";
  EXPECT_EQ(It->Background.Times.back(), Now + Hour);
  EXPECT_THAT(It->World.Settings.SetFileNames, testing::ElementsAreArray(all));
  Start({"/mnt/Away"});
  EXPECT_THAT(Alerts(), testing::SizeIs(1)) << "who asks for it is answered";

  Now += 1;
  Start();
  EXPECT_THAT(Alerts(), ElementsAre("The event set /Gone has been missing for more than a "
                                    "day.  Kestrin does not remember it any longer."));
  Disk.Put("/mnt/Away", milk);
  It->World.Threads.How = FakeWorkers::Mode::Deferred;
  Post(Message(EVENT_SETS_CHANGED));
  EXPECT_THAT(Open(), ElementsAre(Work)) << "nobody waits for the mount";
  It->World.Threads.RunPending();
  Run();
  EXPECT_THAT(Open(), ElementsAre(Work, "/mnt/Away")) << "found by the next pass";
  EXPECT_THAT(Delivered(), ElementsAre("Milk missed"));
  Disk.Remove("/mnt/Away");
  Now += 10 * Day;
  Start();
  EXPECT_THAT(It->World.Settings.SetFileNames,
              ElementsAre(Work, "/sets/Bad", "/mnt/Away", "/sets/New", "/sets/Locked"));
  EXPECT_THAT(Alerts(), ElementsAre("Kestrin: Attempt to open event set /mnt/Away failed."));
  EXPECT_EQ(Disk.Bytes("/sets/Bad"), damaged);
  EXPECT_EQ(Disk.Bytes("/sets/New"), newer);
}

TEST_F(KestrinAppTest, OneFileIsOneSetHoweverItIsNamed) {
  WriteSet(Work, {});
  Disk.Links["/sets/link"] = Work;
  Start({Work, "/sets/./Work.kestrin"});
  Post(Files({"/sets/link", "/sets//Work.kestrin"}));
  EXPECT_THAT(Open(), ElementsAre(Work));
  EXPECT_EQ(Ui().SetWindows.size(), 1u);
  EXPECT_EQ(Ui().SetWindows[0]->Activated, 3);
  Post(Message(NEW_EVENT_SET));
  Post(Message(NEW_EVENT_SET));
  EXPECT_THAT(Open(), ElementsAre(Work, Untitled, "Untitled event set 2"));
}

TEST_F(KestrinAppTest, AfterARevertNothingIsDeliveredAgain) {
  EventRecord once = DailyAt(Sunday + 8 * Hour, "Once");
  once.PeriodType = Once;
  once.DeleteOnceDelivered = true;
  EventRecord warned = DailyAt(Sunday + 7 * Hour, "Warned");
  warned.NextEventTime = Sunday + 6 * Hour;
  warned.Status = WaitingForPrewarning;
  EventRecord dropped = DailyAt(Sunday + 6 * Hour, "Dropped");
  dropped.DeliverIfMissed = false;
  Now = Sunday + 5 * Hour;
  StartWith({DailyAt(Sunday + 8 * Hour), once, warned, dropped}, {Work});
  Post(Message(NEW_EVENT_SET));
  FirstEvent(Work).SetComment("to be discarded");
  It->World.Time.JumpTo(Sunday + 8 * Hour);
  Post(Message(SETS_OPENED));
  EXPECT_THAT(Delivered(), UnorderedElementsAre("Tea", "Once", "Warned missed"));
  Ui().SetWindows[0]->CloseNow();
  It->App.RevertToSavedIfRemembered(Work);
  Run();
  EXPECT_THAT(Delivered(), IsEmpty());
  EXPECT_EQ(Set(Work)->CountEvents(), 3);
  EXPECT_EQ(FirstEvent(Work).GetComment(), "");
  EXPECT_EQ(FirstEvent(Work).GetNextEventTime(), Sunday + Day + 8 * Hour);
  EXPECT_FALSE(Set(Work)->HasBeenModified()) << "saved by itself";
}

TEST_F(KestrinAppTest, WhatWasDeliveredIsKnownByItsNameInTheFile) {
  for (const bool savedBefore : {false, true}) {
    const auto due = static_cast<int32>(Now);
    Now = due - Hour;
    StartWith({DailyAt(due, "Tea"), DailyAt(due, "Milk"), DailyAt(due, "Milk")}, {Work});
    Now = due;
    Post(Message(NEW_EVENT_SET));
    FirstEvent(Work).SetName("Toast");
    ASSERT_TRUE(Set(Work)->SaveData());
    for (const char* name : {"Cake", "Milk"}) FirstEvent(Work).SetName(name);
    Set(Work)->Events()[2]->SetActive(false);
    DeliverAt(Now);
    EXPECT_THAT(Delivered(), ElementsAre("Milk", "Milk"));
    if (savedBefore) Set(Work)->SaveDeliveriesAlone();
    CloseWindow();
    It->App.RevertToSavedIfRemembered(Work);
    Run();
    EXPECT_THAT(Delivered(), ElementsAre("Milk")) << "the one that was inactive";
    EXPECT_EQ(FirstEvent(Work).GetName(), "Toast");
    EXPECT_EQ(FirstEvent(Work).GetNextEventTime(), Now + Day);
    Start();
    EXPECT_THAT(Delivered(), IsEmpty());
  }
}

TEST_F(KestrinAppTest, ARenamedEventOfAnUntitledSetIsKnownOnceTheSetHasItsFile) {
  Start();
  EventSet& set = *It->World.Open.Sets.back();
  for (const auto& [name, time] : {std::pair("Tea", 9), {"Milk", 20}})
    set.AddEvent(std::make_unique<Event>(set, DailyAt(Sunday + time * Hour, name)))
        ->SetSelectedHandler(MessageHandler);
  set.SetModified();
  Run();
  It->World.Ticks.RunOut();
  Run();
  DeliverAt(Sunday + 9 * Hour);
  const EventState before = StateOf(DailyAt(Sunday + 9 * Hour));
  set.Events()[0]->SetName("Toast");
  ASSERT_TRUE(set.SaveAs(Home, true));
  const auto records =
      It->World.Record.About(Home, {"Toast", set.Events()[0]->GetHandlerName(), 0});
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].From, before);
}

TEST_F(KestrinAppTest, WhatWasBegunAndNotEndedIsToldAndEverythingElseGoesOn) {
  enum class PutOff { Not, Here, ToTheNextProcess };
  const struct {
    const char* handler;
    const char* why;
    PutOff putOff;
    int32 later = 0;  ///< the next occurrence is delivered before anybody can be told
  } rows[] = {{"acting", "Kestrin ended while it was being carried out", PutOff::Not},
              {"failed", "it took more than one second, and Kestrin had to stop", PutOff::Not},
              {"failed", "it took more than one second, and Kestrin had to stop", PutOff::Not, Day},
              {"acting", "Kestrin ended while it was being carried out", PutOff::Here},
              {"acting", "Kestrin ended while it was being carried out", PutOff::ToTheNextProcess}};
  for (const auto& row : rows) {
    Now = Sunday + 8 * Hour;
    StartWith({DailyAt(Sunday + 9 * Hour), DailyAt(Sunday + 9 * Hour, "Milk")});
    const std::string file = *Disk.Bytes(Work);
    std::string journal;
    It->World.Actions.WhenEvent = [&](Event& event) {
      if (event.GetName() != "Tea") return;
      if (row.handler == std::string("failed")) {  // after an alert that was answered
        It->World.Record.Shown(event.GetDelivery(), {});
        It->World.Record.Answered(event.GetDelivery(), 0, "Ok");
        It->World.Record.FailedNow(event.GetDelivery(), Overrun);
      }
      journal = *Disk.Bytes(JournalFile);
    };
    DeliverAt(Sunday + 9 * Hour);
    Now = Sunday + 10 * Hour + row.later;
    Crash();
    Disk.Put(JournalFile, journal);
    Disk.Put(Work, file);
    for (int start = 0; start < 2; ++start) {
      row.later != 0 && start == 0 ? Wake() : Start();
      EXPECT_EQ(Delivered().size(), start != 0 ? 0u : row.later != 0 ? 2u : 1u) << "Milk, once";
      ASSERT_THAT(Alerts(),
                  ElementsAre("Kestrin event:  Tea\n\nThe handler \"Message\" did not come to its "
                              "end with the event \"Tea\" of the event set \"Work.kestrin\": " +
                              std::string(row.why) + ".  It is not carried out again by itself."));
      EXPECT_THAT(Ui().Alerts[0].Request.Buttons, ElementsAre("Try again", "Ok"));
      EXPECT_EQ(Ui().Alerts[0].Request.Kind, AlertKind::Warning);
    }
    EXPECT_EQ(FirstEvent(Work).GetNextEventTime(), Sunday + Day + 9 * Hour + row.later);
    if (row.putOff != PutOff::Not) {
      const AlertId id = Ui().Alerts[0].Id;
      ASSERT_EQ(It->World.Alerts.PutOff(id, {Sunday + 11 * Hour, false, {}}), "");
      Ui().CloseAlert(id);
      Now = Sunday + 11 * Hour;
      if (row.putOff == PutOff::ToTheNextProcess) Start();
      DeliverAt(Now);
      ASSERT_THAT(Alerts(), ElementsAre(HasSubstr("did not come to its end")));
      EXPECT_EQ(Ui().Alerts[0].Request.Kind, AlertKind::Warning);
    }
    Answer(0);
    EXPECT_THAT(Delivered(), ElementsAre("Tea"));
    EXPECT_EQ(It->World.Holding.Count(), 1) << "the window";
    EXPECT_EQ(FirstEvent(Work).GetNextEventTime(), Sunday + Day + 9 * Hour + row.later);
    Start();
    EXPECT_THAT(Alerts(), IsEmpty());
  }
}

TEST_F(KestrinAppTest, WhatWaitedIsCarriedOutAndEachFailureIsToldAtTheNextStart) {
  StartWith({DailyAt(Sunday + 9 * Hour), DailyAt(Sunday + 9 * Hour, "Milk"),
             DailyAt(Sunday + 9 * Hour, "Bread")});
  It->World.Actions.Plan = {true, "brew", "/pot"};
  It->World.Actions.WhenEvent = [this](Event& event) {
    const bool waits = event.GetName() == "Tea";
    It->World.Record.Stage(event.GetDelivery(), waits ? ActStage::Queued : ActStage::Failed);
  };
  DeliverAt(Sunday + 9 * Hour);
  Start({}, {}, false);
  ASSERT_EQ(It->World.Actions.CarriedOut.size(), 1u);
  EXPECT_EQ(It->World.Actions.CarriedOut[0].second, "brew/pot");
  Start();
  EXPECT_THAT(Alerts(), UnorderedElementsAre(HasSubstr("\"Milk\""), HasSubstr("\"Bread\"")));
}

TEST_F(KestrinAppTest, TwoSessionsNeverForkASetThatDeliveriesAloneHaveChanged) {
  StartWith({DailyAt(Sunday + 9 * Hour), DailyAt(Sunday + 12 * Hour, "Milk")});
  FirstEvent(Work).OpenWindow();
  const uint64 handle = FirstEvent(Work).GetHandle();
  Process other(*this);
  const auto run = [&other] {
    while (auto message = other.World.Queue.Take()) other.App.MessageReceived(*message);
  };
  other.App.Construct();
  other.App.ReadyToRun();
  run();
  for (int day = 0; day < 4; ++day) {
    const int32 due = Sunday + day * Day + 9 * Hour;
    other.World.Time.JumpTo(due);
    other.World.Queue.Post(DELIVER_EVENTS);
    run();
    if (day == 2) {  // and a third one edits
      TestContext third(WorldParts{&Disk, nullptr, 77});
      LoadHandlers(third.Core);
      const auto set = ReadSet(third.Core, Work).Set;
      set->Events()[1]->SetComment("theirs");
      set->AddEvent(nullptr)->SetName("New");
      ASSERT_TRUE(set->SaveData());
    }
    DeliverAt(due);
    EXPECT_EQ(FirstEvent(Work).GetNextEventTime(), due + Day);
    EXPECT_FALSE(Set(Work)->HasBeenModified());
    EXPECT_EQ(Disk.List("/sets")->size(), 1u) << "day " << day;
    EXPECT_THAT(Alerts(), IsEmpty());
  }
  EXPECT_EQ(FirstEvent(Work).GetHandle(), handle);
  EXPECT_NE(FirstEvent(Work).GetWindow(), nullptr);
  EXPECT_EQ(Ui().EditorWindows.size(), 1u) << "theirs opens none here";
  EXPECT_EQ(Set(Work)->CountEvents(), 3);
  EXPECT_EQ(Set(Work)->Events()[1]->GetComment(), "theirs");
  EXPECT_EQ(other.World.Actions.TakeNames().size() + Delivered().size(), 4u + 4u + 6u + 1u)
      << "alerts in each session, and the new event";
}

TEST_F(KestrinAppTest, AWrongClockHealsAndNothingIsDeliveredTwice) {
  EventRecord once = DailyAt(Sunday + 9 * Hour, "once");
  once.PeriodType = Once;
  once.EventTime = Sunday + 3 * Day;
  once.ActualEventTime = once.NextEventTime = once.EventTime;
  EventRecord done = DailyAt(Sunday - Day + 9 * Hour, "done");
  done.Status = DoneWithEvent;
  done.NextEventTime = 0;
  EventRecord nagging = DailyAt(Sunday - Day + 9 * Hour, "nagging");
  nagging.ApplyNag = true;
  nagging.NagRepeatTime = 1;
  nagging.NagRepeatType = Hours;
  nagging.Status = WaitingToNag;
  nagging.NextEventTime = Sunday + 9 * Hour;
  EventRecord dropped = DailyAt(Sunday + 9 * Hour, "dropped");
  dropped.DeliverIfMissed = false;
  for (const int32 ahead : {100 * Day, 20 * 365 * Day}) {
    Now = Sunday + 8 * Hour;
    StartWith({DailyAt(Sunday + 9 * Hour), done, nagging, once, dropped});
    const auto hours = [this] {
      std::vector<int32> times;
      for (const auto& event : Set(Work)->Events())
        times.push_back((event->GetNextEventTime() - Sunday) / Hour);
      return times;
    };
    ASSERT_THAT(hours(), ElementsAre(9, 9, 9, 72, 9)) << "done is not, where its rule yields";
    while (Answer(0)) continue;
    // A login with the wrong clock: what was stored counts as missed.
    Now = int64{Sunday} + ahead + 8 * Hour;
    Start();
    EXPECT_THAT(Delivered(),
                UnorderedElementsAre("Tea missed", "done missed", "nagging", "once missed"));
    ASSERT_EQ(Alerts().size(), 1u);
    EXPECT_THAT(
        Alerts()[0],
        testing::MatchesRegex(
            "Kestrin last looked at the clock on Sun, Nov 15 2026, 08:00:00 AM.  This came "
            "due since then and was not shown:\n\n\"Tea\" of \"Work.kestrin\": what came after "
            "Sun, Nov 15 2026, 09:00:00 AM(.|\n)*\n\"dropped\" of "
            "\"Work.kestrin\": Sun, Nov 15 2026, 09:00:00 AM, and what came after it"));
    Answer(0);
    // And the clock is right again: the next occurrence that was not delivered, not today's.
    Now = Sunday + 8 * Hour + 5 * Minute;
    for (int start = 0; start < 2; ++start) {
      Start();
      EXPECT_THAT(hours(), ElementsAre(33, 33, 9, 0 - Sunday / Hour, 33));
      EXPECT_THAT(Delivered(), IsEmpty());
      EXPECT_THAT(Alerts(), IsEmpty());
    }
    // For one login it was behind: what that set back goes on where it stood.
    for (const uint32 code : {uint32{0}, uint32{DELIVER_EVENTS}, uint32{RESUMED}}) {
      Now -= 3000 * Day;
      Start();
      Now += 3000 * Day;
      Message late(code);
      late.Set("Late", int32{3600});
      It->World.Time.JumpTo(Now);
      code != 0 ? Post(late) : Start();
      EXPECT_THAT(hours(), ElementsAre(33, 33, 9, 0 - Sunday / Hour, 33));
      EXPECT_THAT(Delivered(), IsEmpty());
    }
  }
}

TEST_F(KestrinAppTest, AnotherZoneRecomputesAllButTheOverdueAndTheNagging) {
  EventRecord nagging = DailyAt(Sunday + 6 * Hour, "nagging");
  nagging.Status = WaitingToNag;
  nagging.NextEventTime = Sunday + 9 * Hour;
  nagging.ApplyNag = true;
  EventRecord overdue = DailyAt(Sunday + 7 * Hour, "overdue");
  overdue.Active = false;
  EventRecord daily = DailyAt(Sunday + 10 * Hour);
  daily.NextEventTime += Hour;  // no computation yields this
  StartWith({daily, nagging, overdue});
  SystemZone = Zone::Load("Europe/Berlin").value();
  const auto nextTimes = [this] {
    std::vector<int32> hours;
    for (const auto& event : Set(Work)->Events())
      hours.push_back((event->GetNextEventTime() - Sunday) / Hour);
    return hours;
  };
  EXPECT_THAT(nextTimes(), ElementsAre(11, 9, 7)) << "in the first zone that it knows";
  Start();
  EXPECT_THAT(nextTimes(), ElementsAre(9, 9, 7)) << "10:00 there is 9:00 UTC";
  EXPECT_TRUE(Disk.Bytes(Work)) << "and it is saved";
  EXPECT_FALSE(Set(Work)->HasBeenModified());
  SystemZone = Zone::Load("Asia/Tokyo").value();
  Post(Message(DELIVER_EVENTS));
  EXPECT_THAT(nextTimes(), ElementsAre(25, 9, 7));
  EXPECT_EQ(It->World.Settings.ZoneName, "Asia/Tokyo");
  SystemZone = Zone();
  It->World.Actions.WhenEvent = [this](Event&) { EXPECT_EQ(It->World.Core.zone.Name(), "UTC"); };
  It->World.Time.JumpTo(Sunday + 25 * Hour);
  Post(Message(RESUMED));
  EXPECT_THAT(Delivered(), testing::Contains(testing::StartsWith("Tea"))) << "in the new one";
}

TEST_F(KestrinAppTest, WhatWasPassedOverForMoreThanADayIsToldAndNotAllOfIt) {
  EventRecord dropped = DailyAt(Sunday + 9 * Hour, "dropped");
  dropped.DeliverIfMissed = false;
  for (const int32 away : {Day, Day + 1}) {
    Now = Sunday + 8 * Hour;
    StartWith(std::vector<EventRecord>(21, dropped));
    Now += away;
    Start();
    const std::string told = Alerts().empty() ? "" : Alerts()[0];
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), away == Day ? 0 : 22);
    EXPECT_EQ(told.ends_with("\nand 1 more"), away != Day);
    Start();
    if (away == Day) continue;
    EXPECT_THAT(Alerts(), ElementsAre(told)) << "until somebody has read it";
    Answer(0);
    Start();
    EXPECT_THAT(Alerts(), IsEmpty());
  }
}

TEST_F(KestrinAppTest, WhatIsPutOffOutlivesADeliveryAndNothingElseOfItsEvent) {
  EventRecord once = DailyAt(Sunday + 9 * Hour);
  once.DeleteOnceDelivered = true;
  StartWith({once, DailyAt(Sunday + Day, "Milk")});
  const auto about = [this](int32 occurrence) {
    AlertRequest request;
    request.Text = "soon";
    request.Buttons = {"OK"};
    request.Role = AlertRole::Delivery;
    request.Set = Set(Work)->GetHandle();
    request.Event = FirstEvent(Work).GetHandle();
    request.Occurrence = occurrence;
    return request;
  };
  const auto keep = [this](const AlertRequest& request, int32 until) {
    EXPECT_EQ(It->World.Alerts.ShowAt(request, {until, false, {}}), "");
  };
  AlertRequest untilItBegins = about(Sunday + 9 * Hour);
  untilItBegins.Begins = Sunday + 9 * Hour;
  keep(untilItBegins, Sunday + 9 * Hour);
  keep(about(Sunday - Day), Sunday + 10 * Hour);
  DeliverAt(Sunday + 9 * Hour);
  EXPECT_THAT(Delivered(), ElementsAre("Tea"));
  EXPECT_THAT(Alerts(), IsEmpty()) << "the event itself comes then";
  DeliverAt(Sunday + 10 * Hour);
  EXPECT_THAT(Alerts(), ElementsAre("soon")) << "though a delivery has deleted the event";
  EXPECT_EQ(It->World.Alerts.PutOff(Ui().Alerts.at(0).Id, {Sunday + 11 * Hour, false, {}}), "");
  DeliverAt(Sunday + 11 * Hour);
  EXPECT_THAT(Alerts(), ElementsAre("soon")) << "as often as it is put off";
  Answer(0);
  keep(about(Sunday + Day), Sunday + 2 * Day);
  It->World.Holding.ProcessHold();
  It->World.Alerts.Show(about(Sunday));
  Run();
  EXPECT_THAT(Alerts(), ElementsAre("soon\n\nAlso unanswered: Mon 12:00 AM"));
}

TEST_F(KestrinAppTest, ASetThatIsOpenedAgainWhileItsEventActsIsSavedByOneAlone) {
  StartWith({DailyAt(Sunday + 9 * Hour)});
  Remember({});
  Start({Work});
  It->World.Actions.WhenEvent = [this](Event&) {
    Ui().SetWindows.at(0)->CloseNow();
    It->App.MessageReceived(Files({Work}));
  };
  DeliverAt(Sunday + 9 * Hour);
  FirstEvent(Work).SetComment("mine");
  ASSERT_TRUE(Set(Work)->SaveData());
  EXPECT_EQ(Disk.List("/sets")->size(), 1u) << "nothing was kept apart";
  EXPECT_EQ(FirstEvent(Work).GetNextEventTime(), Sunday + Day + 9 * Hour);
}

TEST_F(KestrinAppTest, TheDelivererIsStartedAndItsFailuresAreToldOnce) {
  // Only their beginnings.
  const std::string missing = "Kestrin was unable to locate its background executable (the file";
  const std::string works = "Kestrin successfully started its background executable, and can now";
  const std::string trash = "Please remove KestrinBackground from the trash, the system refuses";
  const std::string file = "file /opt/KestrinBackground";
  using Texts = std::vector<std::string>;
  const struct {
    bool byName, byFile, inTrash;
    Texts texts;
  } rows[] = {{true, false, false, {}},         {false, false, false, {missing}},
              {false, false, false, {}},        {true, false, false, {works}},
              {false, true, false, {}},         {false, true, true, {trash, works}},
              {false, false, false, {missing}}, {false, true, true, {works}}};
  Start();
  for (const auto& row : rows) {
    It->Background.ByName = row.byName;
    It->Background.ByFile = row.byFile;
    It->Background.InTrash = row.inTrash;
    It->Background.Calls.clear();
    Post(Message(BACKGROUND_GONE));
    ASSERT_EQ(Alerts().size(), row.texts.size());
    for (const std::string& text : row.texts) {
      EXPECT_THAT(Alerts()[0], testing::StartsWith(text));
      Answer(0);
    }
    EXPECT_EQ(It->Background.Calls,
              row.byName ? Texts({"launch", "launch"}) : Texts({"launch", file, "launch"}));
  }
  It->Background.ByName = It->Background.ByFile = It->Background.InTrash = false;
  CloseWindow();
  EXPECT_TRUE(It->Ended) << "nothing pending: that it cannot be reached is not reported";
}

}  // namespace
}  // namespace kestrin
