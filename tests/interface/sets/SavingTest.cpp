// Saving by menu and by panel, what stays remembered, and the panel that opens files.
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>

#include "core/files/OwnSets.h"
#include "handlers/CommandDataHandler.h"
#include "harness/SavingOnScreen.h"

namespace kestrin {
namespace {

using SavingTest = SavingOnScreen;

TEST_F(SavingTest, AnUntitledSetGetsThePanelAndIsThenSavedIntoItsFile) {
  EventSet& set = NewSet();
  set.AddEvent(nullptr)->SetName("Tea");
  EventSetWindow& window = WindowOf(set);
  Choose(window, "Save");
  ASSERT_TRUE(Panel());
  EXPECT_TRUE(Find<QCheckBox>("rememberForDelivery")->isChecked()) << "or it would not ring";
  EXPECT_TRUE(Panel()->isModal()) << "for its window";
  Panel()->setDirectory(QString::fromStdString(Path("")));
  Accept("The \"&Garden\" %1\n", false);
  EXPECT_FALSE(Panel());
  const std::string file = Path("The \"&Garden\" %1\n.kestrin");
  EXPECT_EQ(set.GetFileName(), file) << "the suffix was added";
  EXPECT_EQ(window.windowTitle(), "The \"&Garden\" %1 .kestrin[*]");
  EXPECT_FALSE(set.IsUntitled() || set.HasBeenModified());
  EXPECT_THAT(Remembered(), IsEmpty());

  Change(set);
  EXPECT_TRUE(window.isWindowModified());
  Choose(window, "Save");
  EXPECT_FALSE(window.isWindowModified() || Panel());
  EXPECT_THAT(Bytes(file), HasSubstr("changed"));
}

TEST_F(SavingTest, RememberForDeliveryRemembersAndTheStatusLineSaysSo) {
  EventSet& set = OpenSet();
  EventSetWindow& window = WindowOf(set);
  auto* button = window.findChild<QPushButton*>("remember");
  OwnSets own(It->SystemFiles, Path("state"), {});
  It->Core.ownSets = &own;
  First(set).SetSelectedHandler(It->Handlers.Find("Command"));
  dynamic_cast<CommandDataHandler&>(*First(set).GetAddOnData()).SetCommand("brew");
  // By the menu and by the button, and back; the other one always shows the same.
  for (const bool remembers : {true, false, true}) {
    if (!remembers) button->click();
    for (const char* const answer : {"Cancel", "Remember"}) {  // it is a set from elsewhere
      if (!remembers) break;
      Choose(window, "Remember for delivery");
      EXPECT_THAT(Remembered(), IsEmpty());
      EXPECT_TRUE(Answer("due in it without asking:\n\nTea:  brew", answer));
    }
    Run();
    EXPECT_EQ(Remembered().size(), remembers ? 1u : 0u);
    EXPECT_EQ(Item(window, "Remember for delivery")->isChecked(), remembers);
    EXPECT_EQ(button->text().remove('&'), remembers ? "Forget" : "Remember for delivery");
    EXPECT_EQ(window.findChild<QWidget*>("ringing")->accessibleName(),
              remembers ? "Rings, also when this window is closed"
                        : "Silent once this window is closed – not remembered for delivery");
  }
  EventSetWindow& untitled = WindowOf(NewSet());
  Choose(untitled, "Remember for delivery");
  EXPECT_TRUE(Find<QCheckBox>("rememberForDelivery")->isChecked());
  EXPECT_FALSE(Item(untitled, "Remember for delivery")->isChecked()) << "not yet";
  Panel()->setDirectory(QString::fromStdString(Path("")));
  Accept("Dr. Garden", true);
  EXPECT_THAT(Remembered(), ElementsAre(Path("Work.kestrin"), Path("Dr. Garden.kestrin")));
  It->Core.ownSets = nullptr;
}

TEST_F(SavingTest, SaveAsKeepsWhatIsRememberedInStepWithTheBox) {
  const struct {
    bool before, box;
    const char* after;  ///< what is remembered
  } rows[] = {{false, false, nullptr},
              {false, true, "Other.kestrin"},
              {true, true, "Other.kestrin"},
              {true, false, "Work.kestrin"}};
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
    EXPECT_THAT(Remembered(), testing::SizeIs(row.after ? 1 : 0));
    EXPECT_TRUE(!row.after || Remembered().at(0) == Path(row.after));
    EXPECT_EQ(set.GetFileName(), Path("Other.kestrin"));
    // What is still remembered under the old name rings on by itself.
    EventSet* const left = Set("Work.kestrin");
    EXPECT_EQ(left != nullptr, row.before && !row.box);
    EXPECT_FALSE(left && left->GetWindow());
  }
}

TEST_F(SavingTest, WhatWasUsedLastStandsFirstInOpenRecentAsLongAsItIsThere) {
  OpenSet("Gone.kestrin");
  OpenSet("R&D.kestrin");
  EventSet& set = OpenSet("Work.kestrin");
  QFile::remove(QString::fromStdString(Path("Gone.kestrin")));
  WindowOf(*Set("R&D.kestrin")).close();
  const auto recent = [&set] {
    auto* menu = WindowOf(set).findChild<QMenu*>("recentSets");
    emit qobject_cast<QMenu*>(menu->parentWidget())->aboutToShow();
    return menu->actions();
  };
  ASSERT_EQ(recent().size(), 2);
  EXPECT_EQ(recent()[0]->text(), "&1  Work.kestrin");
  EXPECT_EQ(recent()[1]->text(), "&2  R&&D.kestrin");
  EXPECT_EQ(recent()[1]->toolTip().toStdString(), Path("R&amp;D.kestrin"));
  recent()[1]->trigger();
  Run();
  EXPECT_TRUE(Set("R&D.kestrin") && recent()[0]->text() == "&1  R&&D.kestrin");
  Choose(WindowOf(set), "Save as…");
  Accept("Other", false);
  EXPECT_EQ(recent()[0]->text(), "&1  Other.kestrin");
}

TEST_F(SavingTest, AnEmptySetOffersWhatCanBeDoneAndTheSampleGoesWithoutAQuestion) {
  EventSetWindow& window = WindowOf(*It->Open.Sets.front());
  auto* const hint = window.findChild<QWidget*>("emptySet");
  const auto press = [&](const char* name) {
    hint->findChild<QPushButton*>(name)->click();
    Run();
  };
  EXPECT_TRUE(hint->isVisible());
  press("openSet");
  EXPECT_TRUE(Find<QFileDialog>("openPanel"));
  press("newEvent");
  EventSet& set = *It->Open.Sets.front();
  ASSERT_EQ(set.CountEvents(), 1);
  EXPECT_FALSE(hint->isVisible());
  set.RemoveEvent(&First(set));
  EXPECT_TRUE(hint->isVisible());
  press("showSample");
  press("showSample");
  ASSERT_EQ(It->Open.Sets.size(), 2u);
  EventSet& sample = *It->Open.Sets.back();
  EXPECT_GT(sample.CountEvents(), 10);
  WindowOf(sample).close();
  Run();
  EXPECT_EQ(It->Open.Sets.size(), 1u);
  EXPECT_THAT(AlertTexts(), IsEmpty());
}

TEST_F(SavingTest, AnotherSetsFileIsRefusedAndAnExistingOneIsAskedAbout) {
  OpenSet("Home.kestrin");
  EventSet& set = OpenSet();
  std::ofstream(Path("letter.kestrin")) << "dear";
  Choose(WindowOf(set), "Save as…");
  Accept("Home.kestrin", false);
  ASSERT_TRUE(Panel()) << "another name can be typed";
  EXPECT_TRUE(Answer("Home.kestrin", "OK"));
  Accept("letter.kestrin", false);
  ASSERT_TRUE(Answer("letter.kestrin", "Cancel"));
  EXPECT_EQ(Bytes(Path("letter.kestrin")), "dear");
  EXPECT_EQ(set.GetFileName(), Path("Work.kestrin"));
  Accept("letter.kestrin", false);
  ASSERT_TRUE(Answer("letter.kestrin", "Replace"));
  EXPECT_FALSE(Panel());
  EXPECT_EQ(set.GetFileName(), Path("letter.kestrin"));
  Choose(WindowOf(set), "Save as…");
  Accept("letter.kestrin", false);
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
                                        "\"Work.kestrin\".\n\nNo such file or directory."));
  EXPECT_EQ(set.GetFileName(), Path("Work.kestrin"));
  EXPECT_TRUE(set.HasBeenModified());
  EXPECT_THAT(Remembered(), ElementsAre(Path("Work.kestrin")));
  std::ofstream(Path("Work.kestrin")) << "somebody else's";
  Choose(WindowOf(set), "Save");
  EXPECT_EQ(Bytes(Path("Work.kestrin")), "somebody else's") << "it still knows its file";
}

TEST_F(SavingTest, PanelsEndWithAQuitAndTheOneThatOpensFilesOutlivesTheWindows) {
  EventSet& set = OpenSet();
  Choose(WindowOf(set), "Save as…");
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
  EXPECT_FALSE(Panel());

  Start();
  Post(Message(OPEN_EVENT_SET));
  WindowOf(*It->Open.Sets.front()).close();
  Run();
  EXPECT_FALSE(It->Ended);
  auto* const again = Find<QFileDialog>("openPanel");
  again->setDirectory(QString::fromStdString(Path("")));
  auto* edit = again->findChild<QLineEdit*>("fileNameEdit");
  for (const char* name : {"none.kestrin", "Work.kestrin"}) {
    edit->setText(name);
    QTest::keyClick(edit, Qt::Key_Return);
    Run();
    EXPECT_EQ(Answer("There is no file called", "OK"), std::string(name) == "none.kestrin");
  }
  EXPECT_TRUE(Set("Work.kestrin") && Set("Work.kestrin")->GetWindow());
  EXPECT_FALSE(Find<QFileDialog>("openPanel"));
}

TEST_F(SavingTest, FilesDroppedOnTheWindowOpenWhateverTheirNamesAndAreNotMoved) {
  EventSet& set = OpenSet();
  const std::string odd = "l\xE4ut %41&\n.kestrin";
  for (const std::string& leaf : {std::string("Home.kestrin"), odd})
    std::ofstream(Path(leaf), std::ios::binary) << Bytes(Path("Work.kestrin"));
  QMimeData files;
  files.setData("text/uri-list", QByteArray::fromStdString("https://example.org/x\r\nfile://" +
                                                           Path("Home.kestrin") + "\r\nfile://" +
                                                           Path("l%E4ut%20%2541&%0A.kestrin")));
  const Qt::DropActions possible = Qt::CopyAction | Qt::MoveAction;
  QDragEnterEvent enter(QPoint(50, 50), possible, &files, Qt::LeftButton, Qt::ShiftModifier);
  QApplication::sendEvent(&WindowOf(set), &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(50, 50), possible, &files, Qt::LeftButton, Qt::ShiftModifier);
  ASSERT_EQ(drop.proposedAction(), Qt::MoveAction);
  QApplication::sendEvent(&WindowOf(set), &drop);
  EXPECT_EQ(drop.dropAction(), Qt::CopyAction);
  Run();
  EXPECT_TRUE(Set("Home.kestrin") && Set(odd));
  EXPECT_EQ(std::remove(Path(odd).c_str()), 0);
}

/// The desktop's panel, which answers what the test says.
class FakePanels final : public DesktopFilePanels {
 public:
  uint64 Ask(const FilePanelRequest& request, Done done) override {
    Requests.push_back(request);
    done_ = std::move(done);
    return Requests.size();
  }
  void Withdraw(uint64) override { done_ = nullptr; }
  void Choose(const std::string& file, bool box) {
    std::exchange(done_, nullptr)({FilePanelAnswer::Kind::Chosen, {file}, box});
  }
  bool Open() const { return done_ != nullptr; }
  std::vector<FilePanelRequest> Requests;

 private:
  Done done_;
};

TEST_F(SavingTest, TheDesktopsPanelComesAgainWithTheNameThatWasRefused) {
  FakePanels panels;
  It->Core.filePanels = &panels;
  std::ofstream(Path("Dr. Tea.kestrin")) << "dear";
  EventSet& set = NewSet();
  set.AddEvent(nullptr)->SetName("Tea");
  Choose(WindowOf(set), "Save");
  ASSERT_TRUE(panels.Open());
  EXPECT_FALSE(Panel());
  panels.Choose(Path("Dr. Tea"), true);
  Run();
  ASSERT_TRUE(Answer("Dr. Tea.kestrin", "Cancel")) << "another file than was confirmed";
  ASSERT_TRUE(panels.Open());
  EXPECT_EQ(panels.Requests.back().Name, "Dr. Tea.kestrin");
  EXPECT_TRUE(panels.Requests.back().BoxTicked);
  panels.Choose(Path("Dr. Tea.kestrin"), true);
  Run();
  EXPECT_EQ(set.GetFileName(), Path("Dr. Tea.kestrin")) << "the panel has asked";
  EXPECT_THAT(Remembered(), ElementsAre(Path("Dr. Tea.kestrin")));
  It->Core.filePanels = nullptr;
}

}  // namespace
}  // namespace kestrin
