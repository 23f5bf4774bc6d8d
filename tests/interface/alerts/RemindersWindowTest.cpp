// Many reminders in one window: answered one by one, and all together.
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTreeView>
#include <QtTest/QTest>

#include "core/loop/PutOffKeeper.h"
#include "harness/ScreenContext.h"
#include "interface/alerts/AlertText.h"

namespace kestrin {
namespace {

using testing::Pair, testing::SizeIs;

struct RemindersWindowTest : testing::Test {
  ScreenContext context;
  std::vector<std::pair<std::string, int>> answers;

  RemindersWindowTest() { context.Core.settings.ReminderBoxes = 1; }

  void Show(const std::string& name, AlertRole role = AlertRole::Delivery, bool away = false) {
    AlertRequest request;
    request.Text = "Kestrin event:  " + name + "\n\nsay " + name;
    request.Role = role;
    request.Face.EventName = name;
    request.Occurrence = 1;
    request.Away = away;
    request.Buttons = {"Ok"};
    if (role == AlertRole::Question) request.Buttons = {"Cancel", "Ok"};
    if (role == AlertRole::Prewarning)
      request.Begins = static_cast<int32>(context.Time.Now()) + begins_--;
    if (role == AlertRole::Nag) {
      request.Buttons = {"No more nagging", "OK"};
      request.HarmlessButton = request.DefaultButton = 1;
      request.ComesAgain = 2000;
      request.Event = nags_++;
    }
    request.Done = [this, name](int which) { answers.emplace_back(name, which); };
    context.Alerts.Show(std::move(request));
  }
  QWidget* Window() {
    context.RunMessages();
    QCoreApplication::processEvents();
    for (QWidget* widget : QApplication::topLevelWidgets())
      if (widget->objectName() == "reminders" && widget->isVisible()) return widget;
    return nullptr;
  }
  template <typename T>
  T* Part(const char* name) {
    return Window()->findChild<T*>(name);
  }
  void Click(const char* name) { QTest::mouseClick(Part<QPushButton>(name), Qt::LeftButton); }
  QTreeView* List() { return Part<QTreeView>("reminderList"); }
  std::vector<std::string> Rows() {
    std::vector<std::string> rows;
    for (int row = 0; row < List()->model()->rowCount(); ++row)
      rows.push_back(List()->model()->index(row, 0).data().toString().toStdString());
    return rows;
  }
  /// All that the window says: title, header, each row's cells, and the visible buttons and labels.
  std::string All() {
    QStringList said = {Window()->windowTitle()};
    const QAbstractItemModel& model = *List()->model();
    for (int column = 0; column < 3; ++column)
      said << model.headerData(column, Qt::Horizontal).toString();
    for (int row = 0; row < model.rowCount(); ++row)
      for (int column = 0; column < 3; ++column)
        if (column == 0 || !List()->isFirstColumnSpanned(row, {}))
          said << model.index(row, column).data().toString();
    for (const char* name : {"newReminders", "whatIsLeft", "takeBack", "laterAll", "okAll",
                             "alertDue", "alertComesAgain", "alertButton0", "alertButton1"})
      if (const auto* part = Part<QWidget>(name); part && part->isVisible())
        said << part->property("text").toString();
    return said.join(" | ").toStdString();
  }
  std::string Current() { return List()->currentIndex().data().toString().toStdString(); }

 private:
  uint64 nags_ = 1000;
  int32 begins_ = 3600;
};

TEST_F(RemindersWindowTest, WhatComesStandsAtTheEndUnderItsHeadingAndMovesNothing) {
  Show("a", AlertRole::Delivery, true);
  Show("b", AlertRole::Delivery, true);
  Show("c");
  EXPECT_THAT((Window(), Rows()), ElementsAre("While you were away", "a", "b", "Now", "c"));
  EXPECT_EQ(Current(), "a");
  EXPECT_EQ(List()->model()->index(1, 2).data(), "Thu, Jan 01 1970") << "a bare day";
  List()->selectAll();
  List()->setFocus();
  for (int i = 0; i < 60; ++i) Show("new");
  EXPECT_EQ((Window(), Current()), "a");
  EXPECT_THAT(List()->selectionModel()->selectedRows(), SizeIs(3));
  EXPECT_EQ(Window()->focusWidget(), List());
  EXPECT_TRUE(Part<QPushButton>("newReminders")->isVisible());
  Click("newReminders");
  EXPECT_TRUE(List()->viewport()->rect().intersects(
      List()->visualRect(List()->model()->index(List()->model()->rowCount() - 1, 0))));
  EXPECT_FALSE(Part<QPushButton>("newReminders")->isVisible());
}

TEST_F(RemindersWindowTest, SixtyAreClearedFromTheKeyboardWithTheFocusOnTheSameButton) {
  for (int i = 0; i < 60; ++i)
    Show(std::to_string(i), i % 3 == 0 ? AlertRole::Nag : AlertRole::Delivery);
  Show("asks", AlertRole::Question);
  Window()->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(Window()));
  QTest::mouseClick(Window(), Qt::LeftButton, {}, QPoint(2, 2));
  EXPECT_EQ(Part<QLabel>("alertComesAgain")->text(), "Comes again Thu, Jan 01 1970, 12:33 AM");
  for (int i = 0; i < 60; ++i) {
    ASSERT_EQ(Current(), std::to_string(i));
    auto* focused = qobject_cast<QPushButton*>(Window()->focusWidget());
    ASSERT_TRUE(focused && focused->text().compare("ok", Qt::CaseInsensitive) == 0) << i;
    EXPECT_THAT(Part<AlertText>("alertText")->toPlainText().toStdString(),
                testing::EndsWith("say " + std::to_string(i)));
    QTest::keyClick(focused, Qt::Key_Return);
  }
  EXPECT_THAT(answers, SizeIs(60));
  EXPECT_EQ(Current(), "asks");
  EXPECT_EQ(qobject_cast<QPushButton*>(Window()->focusWidget())->text(), "Cancel");
  Click("alertButton1");
  EXPECT_THAT(answers, SizeIs(60)) << "a click that was meant for the row before";
  QTest::keyClick(Window()->focusWidget(), Qt::Key_Escape);
  EXPECT_THAT(answers.back(), Pair("asks", 0));
  EXPECT_FALSE(Window());
}

TEST_F(RemindersWindowTest, OkAllLeavesQuestionsAndCanBeTakenBack) {
  for (const char* name : {"a", "b", "c"}) Show(name);
  Show("nag", AlertRole::Nag);
  Show("asks", AlertRole::Question);
  EXPECT_EQ(Part<QPushButton>("okAll")->text(), "OK &all (4)");
  Click("okAll");
  EXPECT_EQ(
      All(),
      "Kestrin reminders (1) | Event | Message | Due | Now | asks | say asks | Thu, Jan 01 1970 | "
      "4 answered, 1 question is left, 1 nag goes on | Take &back | OK &all | Due Thu, Jan 01 1970 "
      "| Cancel | &Ok");
  Click("takeBack");
  EXPECT_THAT(answers, IsEmpty());
  EXPECT_EQ(All(),
            "Kestrin reminders (5) | Event | Message | Due | Now | a | say a | Thu, Jan 01 1970 | "
            "b | say b | "
            "Thu, Jan 01 1970 | c | say c | Thu, Jan 01 1970 | nag | say nag | Thu, Jan 01 1970 | "
            "asks | say asks | "
            "Thu, Jan 01 1970 |  | OK &all (4) | Due Thu, Jan 01 1970 | Ok");

  QItemSelectionModel& selected = *List()->selectionModel();
  selected.select(List()->model()->index(2, 0),
                  QItemSelectionModel::Select | QItemSelectionModel::Rows);
  EXPECT_EQ(Part<QPushButton>("okAll")->text(), "OK sele&cted (2)");
  Click("okAll");
  EXPECT_THAT(Rows(), ElementsAre("Now", "c", "nag", "asks"));
  Click("okAll");
  EXPECT_THAT(answers, ElementsAre(Pair("a", 0), Pair("b", 0))) << "the ones before for good";
  Window()->close();
  EXPECT_THAT(answers, ElementsAre(Pair("a", 0), Pair("b", 0), Pair("c", 0), Pair("nag", 1),
                                   Pair("asks", 0)));
  EXPECT_FALSE(Window());
}

class FakeKeeper final : public PutOffKeeper {
 public:
  explicit FakeKeeper(const Clock& clock) : clock_(clock) {}
  std::string Keep(const AlertRequest& request, const PutOffMoment& when) override {
    Kept.emplace_back(request.Face.EventName, when.moment - clock_.Now());
    return request.Face.EventName == "full" ? "The disk is full." : "";
  }
  void Asked(AlertRequest&) override {}
  void Opening(AlertRequest&) override {}
  void Ended(const AlertRequest&) override {}
  void EventDeleted(uint64, uint64) override {}
  std::vector<std::pair<std::string, int64>> Kept;

 private:
  const Clock& clock_;
};

TEST_F(RemindersWindowTest, LaterPutsOffWhatMayWaitAndReadsATypedTime) {
  FakeKeeper keeper(context.Time);
  context.Alerts.KeepWith(&keeper);
  Show("a");
  Show("in an hour", AlertRole::Prewarning);
  Show("a second earlier", AlertRole::Prewarning);
  Show("full");
  Show("asks", AlertRole::Question);
  const auto menu = [this](const char* button) {
    Click(button);
    QStringList items;
    for (const QAction* item : Part<QMenu>("laterMenu")->actions()) items << item->text();
    return items.join(" | ").toStdString();
  };
  EXPECT_EQ(menu("laterAll"),
            "In 5 minutes (08:05 AM) | In 1 hour (09:00 AM) | This evening (06:00 PM) | "
            "Tomorrow morning (Mon 08:00 AM) | Next week (Mon 08:00 AM)");
  Part<QMenu>("laterMenu")->actions().at(1)->trigger();
  EXPECT_EQ(All(),
            "Kestrin reminders (2) | Event | Message | Due | Now | a second earlier | "
            "say a second earlier | Thu, Jan 01 1970 | asks | say asks | Thu, Jan 01 1970 | "
            "3 put off, 1 question is left, 1 reminder is left | Take &back | La&ter all | "
            "OK &all (1) | Due Thu, Jan 01 1970 | Ok");
  EXPECT_THAT(keeper.Kept, IsEmpty());
  delete Part<QMenu>("laterMenu");
  EXPECT_EQ(menu("later"), "In 5 minutes (08:05 AM) | When it begins (08:59 AM) |  | &Other time…");
  Part<QMenu>("laterMenu")->actions().last()->trigger();
  auto& line = *Part<QLineEdit>("otherTimeText");
  const auto understood = [&](const char* typed) {
    line.clear();
    QTest::keyClicks(&line, typed);
    QTest::keyClick(&line, Qt::Key_Return);
    return Part<QLabel>("otherTimeUnderstood")->text().toStdString();
  };
  EXPECT_EQ(understood("someday"),
            "This is no date or time. Type one like 14:30, tomorrow, 9 am or Dec 3.");
  EXPECT_EQ(understood("in 2 hours"), "The event begins before that.");
  EXPECT_EQ(understood("in 20 minutes"), "Comes back today, 08:20 AM");
  EXPECT_EQ(
      All(),
      "Kestrin reminders (1) | Event | Message | Due | Now | asks | say asks | Thu, Jan 01 1970 | "
      "3 put off, 1 question is left, 1 reminder is left | Take &back | La&ter all | OK &all | "
      "Due Thu, Jan 01 1970 | Cancel | &Ok");
  Window()->close();
  EXPECT_THAT(keeper.Kept, ElementsAre(Pair("a second earlier", 1200), Pair("a", 3600),
                                       Pair("in an hour", 3600), Pair("full", 3600)));
  EXPECT_THAT(answers, ElementsAre(Pair("a second earlier", 0), Pair("a", 0), Pair("in an hour", 0),
                                   Pair("asks", 0)))
      << "what cannot be kept stays";
  context.Alerts.KeepWith(nullptr);
}

}  // namespace
}  // namespace kestrin
