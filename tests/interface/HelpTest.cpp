#include <QFile>
#include <QTabWidget>

#include "harness/AppOnScreen.h"

namespace kestrin {
namespace {

using HelpTest = AppOnScreen;

/// Where F1 leads from each window and page is a chapter of the page.
TEST_F(HelpTest, TheKeyOpensItAtTheChapterOfTheWindow) {
  QFile shipped(QT_TESTCASE_SOURCEDIR "/../../docs/Kestrin documentation.html");
  ASSERT_TRUE(shipped.open(QIODevice::ReadOnly));
  const QString text = shipped.readAll();
  ASSERT_TRUE(shipped.copy(Folder.filePath("Kestrin documentation.html")));
  EventSet& set = OpenSet();
  set.Events()[0]->OpenWindow();
  auto* const editor = dynamic_cast<QWidget*>(set.Events()[0]->GetWindow());
  It->Ui.ShowSettingsWindow();
  It->Ui.ShowHistoryWindow(Folder.path().toStdString());
  const auto chapter = [&](QWidget* window) {
    It->Machine.Launched.clear();
    window->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    QTest::keyClick(window, Qt::Key_F1);
    Run();
    const auto& launched = It->Machine.Launched;
    const QString name = launched.empty() ? "" : QString(launched[0].c_str()).section('#', 1);
    EXPECT_TRUE(text.contains("id=\"" + name + '"')) << name.toStdString();
    return name.toStdString();
  };
  EXPECT_EQ(chapter(&WindowOf(set)), "sets");
  auto* const tabs = editor->findChild<QTabWidget*>("tabs");
  for (const char* page : {"actions", "kinds", "reminders", "reminders", "event"}) {
    tabs->setFocus();
    EXPECT_EQ(chapter(editor), page);
    tabs->setCurrentIndex(tabs->currentIndex() + 1);
  }
  std::map<QString, std::string> others = {{"settingsWindow", "delivery"},
                                           {"historyWindow", "alerts"},
                                           {"alert", "alerts"},
                                           {"reminders", "alerts"}};
  for (const int32 boxes : {3, 1}) {
    It->Settings.ReminderBoxes = boxes;
    AlertRequest reminder;
    reminder.Text = "x";
    reminder.Role = AlertRole::Delivery;
    It->Alerts.Show(std::move(reminder));
    Run();
    for (QWidget* window : QApplication::topLevelWidgets()) {
      const auto found = others.find(window->objectName());
      if (found == others.end() || !window->isVisible()) continue;
      QTest::mouseClick(window, Qt::LeftButton, {}, QPoint(2, 2));  // the key is meant for it
      EXPECT_EQ(chapter(window), found->second) << found->first.toStdString();
      others.erase(found);
    }
  }
  EXPECT_THAT(others, IsEmpty());
  It->Ui.CloseOtherWindows();
}

TEST_F(HelpTest, OpensThePageBesideTheProgramOrSaysWhyNot) {
  EventSetWindow& window = WindowOf(NewSet());
  Choose(window, "Help…");
  EXPECT_THAT(AlertTexts(), ElementsAre(HasSubstr("The help could not be found.")));
  EXPECT_TRUE(Answer("The help could not be found.", "Cancel"));

  QFile page(Folder.filePath("Kestrin documentation.html"));
  ASSERT_TRUE(page.open(QIODevice::WriteOnly));
  Choose(window, "Help…");
  EXPECT_THAT(It->Machine.Launched, ElementsAre(page.fileName().toStdString()));
  EXPECT_THAT(AlertTexts(), IsEmpty());

  It->Machine.LaunchWorks = false;
  Choose(window, "Help…");
  EXPECT_THAT(AlertTexts(), ElementsAre(HasSubstr(page.fileName().toStdString())));
}

}  // namespace
}  // namespace kestrin
