// The edit view that a real add-on, a shared library, brings along.
#include <QAbstractItemView>
#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QWheelEvent>

#include "harness/SavingOnScreen.h"

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class AddOnViewTest : public SavingOnScreen {
 protected:
  AddOnViewTest() {
    QDir(Folder.path()).mkdir("add-ons");
    for (const char* name : {"Note.so", "BrokenNote.so"})
      QFile::link(QString(KESTRIN_TEST_ADD_ONS) + '/' + name, Folder.filePath("add-ons/") + name);
    StartWithAddOns();
  }
  void StartWithAddOns() {
    Start();
    LoadEventHandlers(It->Core, &It->Store, Folder.path().toStdString(), "");
    ASSERT_TRUE(It->Handlers.Find("Note") && It->Handlers.Find("Broken note"));
  }
  void OpenEditor(EventSet& set) {
    First(set).SetTabShown(0);
    First(set).OpenWindow();
    auto* editor = dynamic_cast<QWidget*>(First(set).GetWindow());
    ASSERT_TRUE(QTest::qWaitForWindowActive(editor));
  }
  void ChooseHandler(const QString& label) {
    auto* menu = Find<QComboBox>("handler");
    menu->setFocus();
    QTest::keyClick(menu, Qt::Key_F4);
    QAbstractItemView* const view = menu->view();
    const QModelIndex row = menu->model()->index(menu->findText(label), 0);
    ASSERT_TRUE(row.isValid());
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(row).center());
    ASSERT_TRUE(QTest::qWaitFor([view] { return !view->isVisible(); }));
    menu->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(menu->window()));
    Run();
  }
  static QLineEdit* Note() { return Find<QLineEdit>("note"); }
};

TEST_F(AddOnViewTest, ItIsTypedIntoSavedAndReadAgain) {
  EventSet& set = OpenSet();
  OpenEditor(set);
  ChooseHandler("Note");
  ASSERT_TRUE(Note());
  Note()->setFocus();
  QTest::keyClicks(Note(), "Milk first");
  QTest::keyClick(Note(), Qt::Key_S, Qt::ControlModifier);
  Run();
  EXPECT_FALSE(set.HasBeenModified());
  EXPECT_THAT(Bytes(Path("Work.kestrin")), HasSubstr("Milk first"));

  QTest::keyClicks(Note(), ", please");
  QPointer<QLineEdit> gone = Note();
  ChooseHandler("Message");
  EXPECT_FALSE(gone) << "it goes with its handler";
  EXPECT_TRUE(set.HasBeenModified());
  ChooseHandler("Note");
  ASSERT_TRUE(Note());
  EXPECT_EQ(Note()->text(), "Milk first, please");

  gone = Note();
  gone->setFocus();
  QTest::keyClicks(Note(), "!");
  Choose(WindowOf(set), "Close");
  ASSERT_TRUE(Answer(Question, "Save"));
  EXPECT_FALSE(gone) << "it goes with the editor";
  StartWithAddOns();
  Message open(OPEN_FILES);
  open.Set("0", Path("Work.kestrin"));
  Post(open);
  EXPECT_EQ(First(*Set("Work.kestrin")).GetHandlerName(), "Note");
  OpenEditor(*Set("Work.kestrin"));
  ASSERT_TRUE(Note());
  EXPECT_EQ(Note()->text(), "Milk first, please!");
  const auto offered = Note()->parentWidget()->property("offered").toRectF();
  EXPECT_EQ(offered.toRect().size(), Find<QWidget>("editViewFrame")->size() - QSize(1, 1))
      << "the frame's sides are pixels of it";
}

TEST_F(AddOnViewTest, TheWheelChoosesOnlyWhereTheFocusIs) {
  EventSet& set = OpenSet();
  OpenEditor(set);
  auto* menu = Find<QComboBox>("handler");
  const auto turn = [menu] {
    const QPointF at = menu->rect().center();
    QWheelEvent down(at, menu->mapToGlobal(at), {}, {0, -120}, {}, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(menu, &down);
  };
  Find<QLineEdit>("eventName")->setFocus();
  turn();
  EXPECT_EQ(First(set).GetHandlerName(), "Message");
  menu->setFocus();
  turn();
  EXPECT_NE(First(set).GetHandlerName(), "Message");
}

TEST_F(AddOnViewTest, OneThatThrowsIsReported) {
  EventSet& set = OpenSet();
  OpenEditor(set);
  ChooseHandler("Broken note");
  EXPECT_EQ(First(set).GetHandlerName(), "Broken note");
  EXPECT_THAT(AlertTexts(), ElementsAre("Kestrin: The handler \"Broken note\" failed to make its "
                                        "edit view."));
  ChooseHandler("Note");
  EXPECT_TRUE(Note());
}

}  // namespace
}  // namespace kestrin
