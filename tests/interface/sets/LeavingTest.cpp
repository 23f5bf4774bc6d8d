// The question before a window closes, in every way of leaving, and what goes on afterwards.

#include "harness/SavingOnScreen.h"

namespace kestrin {
namespace {

/// By the menu item that is chosen.
class LeavingTest : public SavingOnScreen, public testing::WithParamInterface<const char*> {
 protected:
  const bool IsFull = std::string(GetParam()) == "Full quit";

  void Leave(EventSet& set) { Choose(WindowOf(set), GetParam()); }
  void ExpectEnded() {
    EXPECT_TRUE(It->Ended);
    EXPECT_EQ(std::count(It->Background.Calls.begin(), It->Background.Calls.end(), "quit"), IsFull);
  }
  void ExpectStays() {
    EXPECT_FALSE(It->Ended);
    EXPECT_FALSE(It->App.Ending().FullQuitProcess || It->App.Ending().QuitProcess ||
                 It->App.Ending().IsQuitInProgress());
  }
  /// The only window is the one of this set.
  EventSet& Only(bool remembered = false) {
    EventSet* const first = It->Open.Sets.front().get();
    EventSet& set = OpenSet("Work.kestrin", remembered);
    if (first != &set) WindowOf(*first).CloseNow();  // a later start shows the last used set
    Run();
    return set;
  }
  EventSet& OnlyUntitled() const {
    EventSet& set = *It->Open.Sets.front();
    set.AddEvent(nullptr)->SetName("mine");
    return set;
  }
};

INSTANTIATE_TEST_SUITE_P(All, LeavingTest,
                         testing::Values("Close", "Quit to background", "Full quit"));

TEST_P(LeavingTest, TheQuestionIsAskedOnceTakesTheFocusAndAfterSaveItLeaves) {
  EventSet& set = Only();
  Change(set);
  Leave(set);
  Leave(set);
  ASSERT_THAT(AlertTexts(), ElementsAre(Question.toStdString()));
  QWidget* const alert = QApplication::activeWindow();
  ASSERT_TRUE(alert && alert->objectName() == "alert");
  std::vector<std::string> buttons;
  for (const QPushButton* button : alert->findChildren<QPushButton*>())
    if (button->isVisible()) buttons.push_back(button->text().toStdString());
  EXPECT_THAT(buttons, ElementsAre("Do&n't save", "&Cancel", "&Save"));
  EXPECT_EQ(qobject_cast<QPushButton*>(alert->focusWidget())->text(), "&Save");
  QTest::keyClick(alert, Qt::Key_Escape);
  Run();
  ExpectStays();
  EXPECT_TRUE(WindowOf(set).isVisible());
  EXPECT_TRUE(set.HasBeenModified());
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
    const int32 nextCall = It->Background.Times.empty() ? 0 : It->Background.Times.back();
    EXPECT_TRUE(IsFull || !remembered || nextCall == Sunday + 9 * Hour) << "not 8:30";
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
  EXPECT_TRUE(WindowOf(set).isVisible() && WindowOf(set).isWindowModified());
}

TEST_P(LeavingTest, AnUntitledSetIsSavedByPanelAndLeaves) {
  EventSet& set = OnlyUntitled();
  const auto leaveAndSave = [&] {
    Leave(set);
    ASSERT_TRUE(Answer("Save changes to the document \"Untitled event set 1\"?", "Save"));
    ASSERT_TRUE(Panel());
    EXPECT_FALSE(It->Ended);
  };
  leaveAndSave();
  Panel()->reject();
  Run();
  ExpectStays();
  leaveAndSave();
  Panel()->setDirectory(QString::fromStdString(Path("")));
  Accept("Garden", false);
  ExpectEnded();
  EXPECT_THAT(Bytes(Path("Garden.kestrin")), HasSubstr("mine"));
}

TEST_P(LeavingTest, AnUntitledSetThatIsNotSavedIsGoneForGood) {
  Leave(OnlyUntitled());
  ASSERT_TRUE(Answer("Untitled event set 1", "Don't save"));
  ExpectEnded();
  Start();
  EXPECT_THAT(It->Open.Sets, testing::SizeIs(1));
  EXPECT_EQ(It->Open.Sets[0]->CountEvents(), 0);
}

TEST_P(LeavingTest, NobodyIsAskedAboutNoChangesNorAboutThoseOfDeliveries) {
  Leave(Only());
  ExpectEnded();
  Start();
  EventSet& set = Only();
  It->Time.JumpTo(Sunday + 9 * Hour);
  Post(Message(DELIVER_EVENTS));
  EXPECT_FALSE(set.HasBeenModified()) << "saved, though its alert stands open";
  EXPECT_FALSE(WindowOf(set).isWindowModified());
  Leave(set);
  EXPECT_THAT(AlertTexts(), ElementsAre(HasSubstr("Tea")));
  EXPECT_THAT(It->Open.Sets, IsEmpty());
  ASSERT_TRUE(Answer("Tea", "Ok"));
  ExpectEnded();
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
    End();
    QDir(Folder.filePath("config")).removeRecursively();
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
    EXPECT_EQ(It->App.Ending().FullQuitProcess, saves);
    EXPECT_EQ(Answer("Work.kestrin", "Save"), saves) << "no question is left of a quit given up";
    EXPECT_EQ(It->Ended, saves);
    EXPECT_EQ(Set("Work.kestrin") != nullptr, !saves);
  }
}

}  // namespace
}  // namespace kestrin
