#include <gmock/gmock.h>

#include <QAction>
#include <QtTest/QTest>

#include "interface/fields/NumberField.h"

namespace kestrin {
namespace {

using testing::IsEmpty;

/// Two fields over one number each: a typed one that takes even numbers only, and a stepped one.
struct TypedFieldTest : testing::Test {
  TypedFieldTest() {
    window.setFocusPolicy(Qt::StrongFocus);
    field.setParent(&window);
    number.setParent(&window);
    number.move(0, 60);
    QObject::connect(&field, &TypedField::Complained, [this](const QString& why) { said = why; });
    field.ShowValue();
    number.ShowValue();
    window.show();
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window)) ADD_FAILURE() << "no active window";
    field.setFocus();
    field.selectAll();
  }

  QWidget window;
  int value = 8;
  uint32 steps = 2;
  QString said;
  std::vector<QString> taken;
  TypedField field{"field", [this] { return QString::number(value); },
                   [this](const QString& text) {
                     taken.push_back(text);
                     if (text.toInt() % 2) return QString("Odd: ") + text;
                     value = text.toInt();
                     return QString();
                   }};
  NumberField number{"number", 1, [this] { return steps; },
                     [this](uint32 typed) {
                       if (typed == 0) return QString("Zero");
                       steps = typed;
                       return QString();
                     }};
};

TEST_F(TypedFieldTest, WhatNobodyTypedIsNotTaken) {
  QTest::keyClick(&field, Qt::Key_Return);
  QTest::keyClicks(&field, "12");
  QTest::keyClick(&field, Qt::Key_Escape);
  EXPECT_EQ(field.text(), "8") << "cancelled";
  QTest::keyClick(&field, Qt::Key_Backspace);
  QTest::keyClicks(&field, "8");
  EXPECT_TRUE(field.Commit());
  EXPECT_THAT(taken, IsEmpty());
}

TEST_F(TypedFieldTest, AValueThatChangesMeanwhileDoesNotDisturbTyping) {
  QTest::keyClicks(&field, "1");
  value = 20;
  field.ShowValue();
  QTest::keyClicks(&field, "6");
  EXPECT_TRUE(field.Commit());
  EXPECT_EQ(value, 16);
  value = 20;
  field.ShowValue();
  EXPECT_EQ(field.text(), "20");
}

TEST_F(TypedFieldTest, WhatCannotBeReadStaysMarkedAndChangesNothing) {
  const QPalette plain = field.palette();
  QTest::keyClicks(&field, "7");
  QTest::keyClick(&field, Qt::Key_Return);
  EXPECT_EQ(said, "Odd: 7");
  EXPECT_EQ(field.accessibleDescription(), said);
  EXPECT_NE(field.palette().color(QPalette::Base), plain.color(QPalette::Base));
  EXPECT_TRUE(field.actions().front()->isVisible()) << "a sign, for who sees no colours";
  EXPECT_EQ(value, 8);
  field.ShowValue();
  EXPECT_EQ(field.text(), "7");
  EXPECT_FALSE(field.Commit());

  QTest::keyClick(&field, Qt::Key_Escape);
  EXPECT_EQ(field.text(), "8");
  EXPECT_EQ(said, "");
  EXPECT_FALSE(field.actions().front()->isVisible());
  EXPECT_EQ(field.palette().color(QPalette::Base), plain.color(QPalette::Base));
}

TEST_F(TypedFieldTest, NumbersStepByKeysAndRefuseWhatIsNone) {
  number.setFocus();
  for (const auto key : {Qt::Key_Up, Qt::Key_Up, Qt::Key_Down}) QTest::keyClick(&number, key);
  EXPECT_EQ(steps, 3U);
  for (int i = 0; i < 4; ++i) QTest::keyClick(&number, Qt::Key_Down);
  EXPECT_EQ(steps, 1U) << "not below the least";
  EXPECT_EQ(number.accessibleDescription(), "");

  const auto isTaken = [this](const char* typed) {
    steps = 100;
    number.selectAll();
    QTest::keyClick(&number, Qt::Key_Delete);
    QTest::keyClicks(&number, typed);
    const bool isCommitted = number.Commit();
    QTest::keyClick(&number, Qt::Key_Escape);
    return isCommitted;
  };
  for (const char* none : {"4294967296", "0", "-1", "2.5", "seven", "", "+3"}) {
    EXPECT_FALSE(isTaken(none)) << none;
    EXPECT_EQ(steps, 100U) << none;
  }
  EXPECT_TRUE(isTaken(" 7 "));
  EXPECT_EQ(steps, 7U);
  EXPECT_TRUE(isTaken("4294967295"));
  EXPECT_EQ(steps, UINT32_MAX);
}

}  // namespace
}  // namespace kestrin
