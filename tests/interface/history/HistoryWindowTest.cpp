#include <QLabel>
#include <QLineEdit>
#include <QTreeView>
#include <fstream>

#include "core/journal/RecordLine.h"
#include "core/loop/MessageCodes.h"
#include "harness/AppOnScreen.h"

namespace kestrin {
namespace {

class HistoryWindowTest : public AppOnScreen {
 protected:
  /// So many deliveries, a day apart; the last one was a question.
  void Write(int count) {
    QDir(Folder.path()).mkpath("state");
    std::ofstream file(Folder.filePath("state/history").toStdString(), std::ios::binary);
    for (int i = 1; i <= count; ++i) {
      RecordFields fields;
      fields.Set("set", Path("Work.kestrin"));
      fields.Set("name", i % 20 == 0 ? "Backup" : "Tea");
      fields.Set("handler", "Message");
      fields.Set("at", int64{Sunday + i * Day});
      fields.Set("from", std::to_string(Sunday + i * Day) + "," + std::to_string(Sunday) + ",1");
      fields.Set("act", i == 1 ? "missed" : "acted");
      if (i % 20 == 0) {
        fields.Set("alert", "answered");
        fields.Set("run", "rm -r /");
        fields.Set("text", "Shall it run?");
        fields.Set("buttons", "Cancel\x1fOk");
        fields.Set("role", int64{4});
      }
      file << EncodeLine("a." + std::to_string(i), fields);
    }
  }
  QTreeView* Open() {
    Post(Message(SHOW_HISTORY));
    return Find<QTreeView>("history");
  }
  static std::string Count() { return Find<QLabel>("historyCount")->text().toStdString(); }
};

TEST_F(HistoryWindowTest, TellsNewestFirstWhatTheFilterLetsThroughAndRemindsAgain) {
  OpenSet();
  Write(60);
  QTreeView* const list = Open();
  ASSERT_TRUE(list);
  EXPECT_EQ(Count(), "60 reminders");
  const QAbstractItemModel& model = *list->model();
  QStringList said;
  for (int column = 0; column < model.columnCount(); ++column)
    said << model.headerData(column, Qt::Horizontal).toString()
         << model.index(0, column).data().toString() << model.index(59, column).data().toString();
  EXPECT_EQ(
      said.join(" | ").toStdString(),
      "Due | Sun, Nov 15 2026, 12:00 AM | Sun, Nov 15 2026, 12:00 AM | Event | Backup | Tea | "
      "Reminder | Event | Event | What became of it | Replaced by a later one | Missed | Set | "
      "Work.kestrin | Work.kestrin | Delivered | Thu, Jan 14 2027, 12:00 AM | ");
  EXPECT_EQ(model.index(59, 0).data(Qt::ToolTipRole).toString().toStdString(),
            Path("Work.kestrin") + " Missed");
  EXPECT_FALSE(model.index(0, 0).data(Qt::FontRole).isValid());
  auto* const filter = Find<QLineEdit>("historyFilter");
  filter->setText("missed");
  EXPECT_EQ(Count(), "1 of 60 reminders");
  list->setCurrentIndex(list->model()->index(0, 0));
  Find<QPushButton>("remindAgain")->click();
  Run();
  EXPECT_THAT(AlertTexts(), ElementsAre(HasSubstr("Tea"))) << "the row that is shown";
  EXPECT_TRUE(Answer("Tea", "Ok"));
  filter->setText("backup ");
  EXPECT_EQ(Count(), "3 of 60 reminders");
  QTest::keyClick(filter, Qt::Key_Down);
  list->setCurrentIndex(list->model()->index(0, 0));
  for (const char* shown : {"Shall it run?", "Kestrin event:  Tea"}) {
    Find<QPushButton>("remindAgain")->click();
    Run();
    EXPECT_THAT(AlertTexts(), ElementsAre(HasSubstr(shown)));
    EXPECT_EQ(Find<QPushButton>("openEvent")->isVisible(), std::string(shown).ends_with("Tea"))
        << "the event that is called so still";
    EXPECT_FALSE(Answer(shown, "Cancel")) << "nothing can be carried out";
    EXPECT_TRUE(Answer(shown, "Ok"));
    filter->setText("");
    list->setCurrentIndex(list->model()->index(1, 0));
  }
  EXPECT_TRUE(It->Machine.Commands.empty());
  QTest::keyClick(list, Qt::Key_Escape);
  Run();
  EXPECT_FALSE(Find<QTreeView>("history"));
}

}  // namespace
}  // namespace kestrin
