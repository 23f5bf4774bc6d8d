// Saving by menu and by panel, what stays remembered, and the question before a window closes in
// every way of leaving.
#include <QCheckBox>
#include <QDropEvent>
#include <QFile>
#include <QLineEdit>
#include <QMimeData>

#include "interface/AppOnScreen.h"
#include "interface/sets/SetFilePanel.h"

namespace kestrin {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class SavingTest : public AppOnScreen {
 protected:
  static SetFilePanel* Panel() { return Find<SetFilePanel>("savePanel"); }
  /// Types a name into the panel, sets the box, and presses Save.
  void Accept(const std::string& name, bool remember) {
    ASSERT_TRUE(Panel());
    auto* edit = Panel()->findChild<QLineEdit*>("fileNameEdit");
    Panel()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(Panel()));
    edit->setFocus();
    edit->setText(QString::fromStdString(name));
    Find<QCheckBox>("rememberForDelivery")->setChecked(remember);
    QTest::keyClick(edit, Qt::Key_Return);
    Run();
  }
  static Event& First(EventSet& set) { return *set.Events().at(0); }
  void Change(EventSet& set, const std::string& name = "changed") {
    First(set).SetName(name);
    Run();
  }
  /// A file that cannot be replaced: its folder has gone.
  void LoseFolder() { QDir(Folder.filePath("sets")).removeRecursively(); }
  static std::vector<std::string> Remembered() { return KestrinSettings::SetFileNames; }
  const QString Question = "Save changes to the document \"Work.kestrin\"?";
};

TEST_F(SavingTest, SaveWritesTheFileAndTheTitleSaysWhetherItIsNeeded) {
  EventSet& set = OpenSet();
  EventSetWindow& window = WindowOf(set);
  EXPECT_FALSE(window.isWindowModified());
  Change(set);
  EXPECT_TRUE(window.isWindowModified());
  Choose(window, "Save");
  EXPECT_FALSE(window.isWindowModified());
  EXPECT_THAT(Bytes(Path("Work.kestrin")), HasSubstr("changed"));
  EXPECT_FALSE(Panel());

  Change(set, "not to be written");
  LoseFolder();
  Choose(window, "Save");
  EXPECT_THAT(AlertTexts(), ElementsAre("There was an error attempting to save the event set "
                                        "\"Work.kestrin\"."));
  EXPECT_TRUE(window.isWindowModified());
}

TEST_F(SavingTest, AnUntitledSetGetsThePanel) {
  EventSet& set = NewSet();
  set.AddEvent(nullptr)->SetName("Tea");
  EventSetWindow& window = WindowOf(set);
  Choose(window, "Save");
  ASSERT_TRUE(Panel());
  EXPECT_FALSE(Find<QCheckBox>("rememberForDelivery")->isChecked());
  EXPECT_TRUE(Panel()->isModal()) << "for its window";
  Panel()->setDirectory(QString::fromStdString(Path("")));
  Accept("Garden", false);
  EXPECT_FALSE(Panel());
  EXPECT_EQ(set.GetFileName(), Path("Garden.kestrin")) << "the suffix was added";
  EXPECT_EQ(window.windowTitle(), "Garden.kestrin[*]");
  EXPECT_FALSE(set.IsUntitled() || set.HasBeenModified());
  EXPECT_TRUE(Exists(Path("Garden.kestrin")));
  EXPECT_THAT(Remembered(), IsEmpty());
}

TEST_F(SavingTest, RememberForDeliveryRemembersAndTheStatusLineSaysSo) {
  EventSet& set = OpenSet();
  const auto ringing = [&set] {
    return WindowOf(set).findChild<QWidget*>("ringing")->accessibleName().toStdString();
  };
  EXPECT_EQ(ringing(), "Silent once this window is closed – not remembered for delivery");
  Choose(WindowOf(set), "Remember for delivery");
  EXPECT_THAT(Remembered(), ElementsAre(Path("Work.kestrin")));
  EXPECT_EQ(ringing(), "Rings, also when this window is closed");

  EventSet& untitled = NewSet();
  Choose(WindowOf(untitled), "Remember for delivery");
  EXPECT_TRUE(Find<QCheckBox>("rememberForDelivery")->isChecked());
  Panel()->setDirectory(QString::fromStdString(Path("")));
  Accept("Garden", true);
  EXPECT_THAT(Remembered(), ElementsAre(Path("Work.kestrin"), Path("Garden.kestrin")));
}

TEST_F(SavingTest, SaveAsKeepsWhatIsRememberedInStepWithTheBox) {
  const struct {
    bool before, box;
    std::vector<std::string> after;
  } rows[] = {{false, false, {}},
              {false, true, {"Other.kestrin"}},
              {true, true, {"Other.kestrin"}},
              {true, false, {"Work.kestrin"}}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.before * 2 + row.box);
    End();
    QDir(Folder.filePath("config")).removeRecursively();
    QFile::remove(QString::fromStdString(Path("Other.kestrin")));
    Start();
    EventSet& set = OpenSet("Work.kestrin", row.before);
    Choose(WindowOf(set), "Save as…");
    EXPECT_EQ(Find<QCheckBox>("rememberForDelivery")->isChecked(), row.before);
    Accept("Other", row.box);
    std::vector<std::string> expected;
    for (const std::string& leaf : row.after) expected.push_back(Path(leaf));
    EXPECT_EQ(Remembered(), expected);
    EXPECT_EQ(set.GetFileName(), Path("Other.kestrin"));
    // What is still remembered under the old name rings on by itself.
    EventSet* const left = Set("Work.kestrin");
    EXPECT_EQ(left != nullptr, row.before && !row.box);
    EXPECT_FALSE(left && left->GetWindow());
  }
}

TEST_F(SavingTest, WhatRangBeforeTheNameChangedDoesNotRingAgainFromTheOldFile) {
  EventSet& set = OpenSet("Work.kestrin", true);
  set.SetModified();
  It->Time.JumpTo(Sunday + 9 * Hour);
  Post(Message(DELIVER_EVENTS));
  ASSERT_TRUE(Answer("Tea", "Ok"));
  Choose(WindowOf(set), "Save as…");
  Accept("Other", false);
  ASSERT_TRUE(Set("Work.kestrin"));
  EXPECT_THAT(AlertTexts(), IsEmpty());
  EXPECT_EQ(First(*Set("Work.kestrin")).GetNextEventTime(), Sunday + Day + 9 * Hour);
}

TEST_F(SavingTest, AnotherSetsFileIsRefusedAndAnExistingOneIsAskedAbout) {
  OpenSet("Home.kestrin");
  EventSet& set = OpenSet();
  std::ofstream(Path("letter.txt")) << "dear";
  Choose(WindowOf(set), "Save as…");
  Accept("Home.kestrin", false);
  ASSERT_TRUE(Panel()) << "another name can be typed";
  EXPECT_TRUE(Answer("Home.kestrin", "OK"));
  Accept("letter.txt", false);
  ASSERT_TRUE(Answer("letter.txt", "Cancel"));
  EXPECT_EQ(Bytes(Path("letter.txt")), "dear");
  EXPECT_EQ(set.GetFileName(), Path("Work.kestrin"));
  Accept("letter.txt", false);
  ASSERT_TRUE(Answer("letter.txt", "Replace"));
  EXPECT_FALSE(Panel());
  EXPECT_EQ(set.GetFileName(), Path("letter.txt"));
  Choose(WindowOf(set), "Save as…");
  Accept("letter.txt", false);
  EXPECT_THAT(AlertTexts(), IsEmpty()) << "its own file";
}

TEST_F(SavingTest, ASaveUnderAnotherNameThatFailsChangesNothing) {
  EventSet& set = OpenSet("Work.kestrin", true);
  Change(set);
  Choose(WindowOf(set), "Save as…");
  QDir(Folder.path()).mkdir("gone");
  Panel()->setDirectory(Folder.filePath("gone"));
  QDir(Folder.path()).rmdir("gone");
  Accept("Other", true);
  EXPECT_THAT(AlertTexts(), ElementsAre("There was an error attempting to save the event set "
                                        "\"Work.kestrin\"."));
  EXPECT_EQ(set.GetFileName(), Path("Work.kestrin"));
  EXPECT_TRUE(set.HasBeenModified());
  EXPECT_THAT(Remembered(), ElementsAre(Path("Work.kestrin")));
  std::ofstream(Path("Work.kestrin")) << "somebody else's";
  Choose(WindowOf(set), "Save");
  EXPECT_EQ(Bytes(Path("Work.kestrin")), "somebody else's") << "it still knows its file";
}

enum class Leaving { Close, Quit, FullQuit };

class LeavingTest : public SavingTest, public testing::WithParamInterface<Leaving> {
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

TEST_F(SavingTest, AQuitWaitsForEveryWindowAndOneCancelEndsItForAll) {
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

TEST_F(SavingTest, AQuitWhileThePanelIsOpenClosesIt) {
  EventSet& set = OpenSet();
  Choose(WindowOf(set), "Save as…");
  Post(Message(QUIT_REQUESTED));
  EXPECT_TRUE(It->Ended);
  EXPECT_FALSE(Panel());
}

TEST_F(SavingTest, ThePanelThatOpensFilesOutlivesTheWindowsButNotAQuit) {
  EventSet& set = OpenSet();
  NewSet().AddEvent(nullptr)->SetName("unsaved");
  Post(Message(OPEN_EVENT_SET));
  auto* const panel = Find<QFileDialog>("openPanel");
  ASSERT_TRUE(panel);
  Post(Message(OPEN_EVENT_SET));
  EXPECT_EQ(Find<QFileDialog>("openPanel"), panel) << "there is one";
  Choose(WindowOf(set), "Quit to background");
  EXPECT_TRUE(panel->isVisible()) << "the quit may still be given up";
  ASSERT_TRUE(Answer("Untitled event set 2", "Don't save"));
  EXPECT_TRUE(It->Ended);

  Start();
  Post(Message(OPEN_EVENT_SET));
  WindowOf(*OpenSets::Sets.front()).close();
  Run();
  EXPECT_FALSE(It->Ended);
  auto* const again = Find<QFileDialog>("openPanel");
  again->setDirectory(QString::fromStdString(Path("")));
  auto* edit = again->findChild<QLineEdit*>("fileNameEdit");
  ASSERT_TRUE(QTest::qWaitForWindowActive(again));
  edit->setFocus();
  edit->setText("none.kestrin");
  QTest::keyClick(edit, Qt::Key_Return);
  Run();
  ASSERT_TRUE(Answer("There is no file called", "OK"));
  edit->setText("Work.kestrin");
  QTest::keyClick(edit, Qt::Key_Return);
  Run();
  EXPECT_TRUE(Set("Work.kestrin") && Set("Work.kestrin")->GetWindow());
  EXPECT_FALSE(Find<QFileDialog>("openPanel"));
}

TEST_F(SavingTest, FilesDroppedOnTheWindowOpen) {
  EventSet& set = OpenSet();
  OpenSet("Home.kestrin");
  WindowOf(*Set("Home.kestrin")).close();
  Run();
  QMimeData files;
  files.setUrls({QUrl("https://example.org/x"),
                 QUrl::fromLocalFile(QString::fromStdString(Path("Home.kestrin")))});
  QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&WindowOf(set), &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&WindowOf(set), &drop);
  Run();
  EXPECT_TRUE(Set("Home.kestrin"));
}

TEST_F(SavingTest, ASetThatIsShownAgainBeforeItsChangesAreThrownAwayShowsTheSavedOnes) {
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
