#include <gtest/gtest.h>

#include <QPointer>
#include <QtTest/QTest>

#include "harness/ScreenContext.h"
#include "interface/settings/SettingsWindow.h"

namespace kestrin {
namespace {

SettingsWindow* OpenSettings() {
  for (QWidget* widget : QApplication::topLevelWidgets())
    if (auto* window = qobject_cast<SettingsWindow*>(widget); window && !window->IsClosed())
      return window;
  return nullptr;
}

TEST(SettingsOnScreenTest, TheWindowOpensWhereItWasLeftWithoutCreeping) {
  ScreenContext context;
  context.Settings.SettingsWindowFrame = {100, 120, 649, 569};
  for (int opening = 0; opening < 3; ++opening) {
    context.Ui.ShowSettingsWindow();
    QPointer<SettingsWindow> window = OpenSettings();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    EXPECT_TRUE(QTest::qWaitFor([&] { return window->geometry() == QRect(100, 120, 550, 450); }));
    QTest::keyClick(window, Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window; }));
    EXPECT_EQ(context.Settings.SettingsWindowFrame, (Rect{100, 120, 649, 569})) << opening;
  }
}

TEST(SettingsOnScreenTest, AskingAgainBringsTheWindowToTheFront) {
  ScreenContext context;
  context.Ui.ShowSettingsWindow();
  SettingsWindow* window = OpenSettings();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window));
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  context.Ui.ShowSettingsWindow();
  EXPECT_TRUE(QTest::qWaitForWindowActive(window));
}

}  // namespace
}  // namespace kestrin
