// The question before a window closes, in every way of leaving, and what goes on afterwards.
#include <QFile>

#include "interface/SavingOnScreen.h"

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

enum class Leaving { Close, Quit, FullQuit };

class LeavingTest : public SavingOnScreen, public testing::WithParamInterface<Leaving> {
 protected:
  void Leave(EventSet& set) {
    if (GetParam() == Leaving::Close)
      Choose(WindowOf(set), "Close");
    else
      Choose(WindowOf(set), GetParam() == Leaving::Quit ? "Quit to background" : "Full quit");
  }
  void ExpectEnded() {
    EXPECT_TRUE(It->Ended);
    const bool full = GetParam() == Leaving::FullQuit;
    EXPECT_EQ(std::count(It->Background.Calls.begin(), It->Background.Calls.end(), "quit"), full);
  }
  void ExpectStays() {
    EXPECT_FALSE(It->Ended);
    EXPECT_FALSE(FullQuitProcess || QuitProcess || It->App.IsQuitInProgress());
  }
  /// The only window is the one of this set.
  EventSet& Only(bool remembered = false) {
    EventSet* const first = OpenSets::Sets.front().get();
    EventSet& set = OpenSet("Work.kestrin", remembered);
    WindowOf(*first).CloseNow();
    Run();
    return set;
  }
  EventSet& OnlyUntitled() {
    EventSet& set = *OpenSets::Sets.front();
    set.AddEvent(nullptr)->SetName("mine");
    Run();
    return set;
  }
};

INSTANTIATE_TEST_SUITE_P(All, LeavingTest,
                         testing::Values(Leaving::Close, Leaving::Quit, Leaving::FullQuit));

TEST_P(LeavingTest, WithoutChangesNobodyIsAsked) {
  Leave(Only());
  ExpectEnded();
}

TEST_P(LeavingTest, TheQuestionIsAskedOnceAndTakesTheFocus) {
  EventSet& set = Only();
  Change(set);
  Leave(set);
  Leave(set);
  ASSERT_THAT(AlertTexts(), ElementsAre(Question.toStdString()));
  QWidget* const alert = QApplication::activeWindow();
  ASSERT_TRUE(alert && alert->objectName() == "alert");
  std::vector<std::string> buttons;
  for (const QPushButton* button : alert->findChildren<QPushButton*>())
    buttons.push_back(button->text().toStdString());
  EXPECT_THAT(buttons, ElementsAre("Don't save", "Cancel", "Save"));
  EXPECT_EQ(qobject_cast<QPushButton*>(alert->focusWidget())->text(), "Save");
  QTest::keyClick(alert, Qt::Key_Escape);
  Run();
  ExpectStays();
  EXPECT_TRUE(WindowOf(set).isVisible());
  EXPECT_TRUE(set.HasBeenModified());
}

TEST_P(LeavingTest, SaveSavesAndLeaves) {
  EventSet& set = Only();
  Change(set);
  Leave(set);
  Change(set, "changed while asked");
  ASSERT_TRUE(Answer(Question, "Save"));
  ExpectEnded();
  EXPECT_THAT(Bytes(Path("Work.kestrin")), HasSubstr("changed while asked"));
}

TEST_P(LeavingTest, DoNotSaveLeavesAndWhatIsSavedGoesOn) {
  for (const bool remembered : {false, true}) {
    Start();
    EventSet& set = Only(remembered);
    const std::string before = Bytes(Path("Work.kestrin"));
    First(set).SetTimeToApply(8 * Hour + 1800);
    Run();
    Leave(set);
    ASSERT_TRUE(Answer(Question, "Don't save"));
    ExpectEnded();
    EXPECT_EQ(Bytes(Path("Work.kestrin")), before);
    if (remembered && GetParam() != Leaving::FullQuit) {
      EXPECT_EQ(It->Background.Times.back(), Sunday + 9 * Hour) << "not the discarded 8:30";
    }
  }
}

TEST_P(LeavingTest, ASaveThatFailsStays) {
  EventSet& set = Only();
  Change(set);
  LoseFolder();
  Leave(set);
  ASSERT_TRUE(Answer(Question, "Save"));
  EXPECT_TRUE(
      Answer("There was an error attempting to save the event set \"Work.kestrin\".", "Continue"));
  ExpectStays();
  EXPECT_TRUE(WindowOf(set).isVisible());
}

TEST_P(LeavingTest, AnUntitledSetIsSavedByPanelAndLeaves) {
  EventSet& set = OnlyUntitled();
  for (const bool cancels : {true, false}) {
    Leave(set);
    ASSERT_TRUE(Answer("Save changes to the document \"Untitled event set 1\"?", "Save"));
    ASSERT_TRUE(Panel());
    EXPECT_FALSE(It->Ended);
    if (cancels) {
      Panel()->reject();
      Run();
      ExpectStays();
      Choose(WindowOf(set), "Save");
      Panel()->reject();
      Run();
    } else {
      Panel()->setDirectory(QString::fromStdString(Path("")));
      Accept("Garden", false);
      ExpectEnded();
      EXPECT_THAT(Bytes(Path("Garden.kestrin")), HasSubstr("mine"));
    }
  }
}

TEST_P(LeavingTest, AnUntitledSetThatIsNotSavedIsGoneForGood) {
  EventSet& set = OnlyUntitled();
  Leave(set);
  ASSERT_TRUE(Answer("Untitled event set 1", "Don't save"));
  ExpectEnded();
  Start();
  EXPECT_THAT(OpenSets::Sets, testing::SizeIs(1));
  EXPECT_EQ(OpenSets::Sets[0]->CountEvents(), 0);
}

TEST_P(LeavingTest, WhatOnlyDeliveriesChangedAsksNobody) {
  EventSet& set = Only();
  It->Time.JumpTo(Sunday + 9 * Hour);
  Post(Message(DELIVER_EVENTS));
  EXPECT_TRUE(set.OnlyDeliveriesChanged()) << "its alert stands open";
  EXPECT_FALSE(WindowOf(set).isWindowModified());
  Leave(set);
  EXPECT_THAT(AlertTexts(), ElementsAre(HasSubstr("Tea")));
  EXPECT_THAT(OpenSets::Sets, IsEmpty());
  ASSERT_TRUE(Answer("Tea", "Ok"));
  ExpectEnded();
  Start();
  It->Time.JumpTo(Sunday + 10 * Hour);
  Message open(OPEN_FILES);
  open.Set("0", Path("Work.kestrin"));
  Post(open);
  EXPECT_THAT(AlertTexts(), IsEmpty()) << "it does not ring twice";
}

TEST_P(LeavingTest, ADeliveryWhileTheQuestionStandsIsKeptWhateverTheAnswer) {
  for (const char* answer : {"Don't save", "Save"}) {
    Start();
    EventSet& set = Only();
    First(set).SetComment("mine");
    Leave(set);
    It->Time.JumpTo(Sunday + 9 * Hour);
    Post(Message(DELIVER_EVENTS));
    ASSERT_TRUE(Answer(Question, answer));
    EXPECT_FALSE(It->Ended) << "the reminder is still to be read";
    ASSERT_TRUE(Answer("Kestrin event:", "Ok"));
    ExpectEnded();
    Start();
    It->Time.JumpTo(Sunday + 10 * Hour);
    Message open(OPEN_FILES);
    open.Set("0", Path("Work.kestrin"));
    Post(open);
    EXPECT_THAT(AlertTexts(), IsEmpty()) << answer;
    QFile::remove(QString::fromStdString(Path("Work.kestrin")));
  }
}

TEST_P(LeavingTest, AForcedEndWhileTheQuestionStandsSavesAndDoesNotAskAgain) {
  EventSet& set = Only();
  Change(set);
  Leave(set);
  Post(Message(FORCED_QUIT));
  EXPECT_TRUE(It->Ended);
  EXPECT_THAT(Bytes(Path("Work.kestrin")), HasSubstr("changed"));
  Start();
  EXPECT_THAT(AlertTexts(), IsEmpty());
}

using LeavingAllTest = SavingOnScreen;

TEST_F(LeavingAllTest, AQuitWaitsForEveryWindowAndOneCancelEndsItForAll) {
  for (const char* answer : {"Cancel", "Save"}) {
    Start();
    EventSet& work = OpenSet();
    EventSet& home = OpenSet("Home.kestrin");
    Change(work);
    Change(home);
    Choose(WindowOf(work), "Full quit");
    EXPECT_EQ(AlertTexts().size(), 2u);
    ASSERT_TRUE(Answer("Home.kestrin", answer));
    EXPECT_FALSE(It->Ended);
    const bool saves = std::string(answer) == "Save";
    EXPECT_EQ(FullQuitProcess, saves);
    EXPECT_EQ(Answer("Work.kestrin", "Save"), saves) << "no question is left of a quit given up";
    EXPECT_EQ(It->Ended, saves);
    EXPECT_EQ(Set("Work.kestrin") != nullptr, !saves);
  }
}

TEST_F(LeavingAllTest, ASetThatIsShownAgainBeforeItsChangesAreThrownAwayShowsTheSavedOnes) {
  EventSet& set = OpenSet("Work.kestrin", true);
  NewSet();
  Change(set, "discarded");
  WindowOf(set).close();
  It->Queue.Post(ALERTS_WAITING);
  Run();
  Message open(OPEN_FILES);
  open.Set("0", Path("Work.kestrin"));
  It->Queue.Post(open);
  ASSERT_TRUE(Answer(Question, "Don't save"));
  Post(open);
  ASSERT_TRUE(Set("Work.kestrin") && Set("Work.kestrin")->GetWindow());
  EXPECT_EQ(First(*Set("Work.kestrin")).GetName(), "Tea");
}

}  // namespace
}  // namespace kestrin
