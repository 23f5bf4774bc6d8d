#include <QtTest/QTest>

#include "harness/ScreenContext.h"

namespace kestrin {
namespace {

struct EventSetWindowTest : testing::Test {
  ScreenContext context;
};

TEST_F(EventSetWindowTest, TheFrameIsStoredWhenThePersonChangesItAndBecomesTheDefaultIfWanted) {
  EventSet& set = context.NewSet();
  set.Layout().WindowFrame = {100, 120, 499, 419};
  EventSetWindow& window = context.OpenWindow(set);
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
  EXPECT_EQ(window.geometry(), QRect(100, 120, 400, 300));
  window.setGeometry(50, 60, 500, 350);
  QCoreApplication::processEvents();
  EXPECT_EQ(set.Layout().WindowFrame, (Rect{50, 60, 549, 409}));
  EXPECT_FALSE(set.HasBeenModified());
  set.Layout().NumberOfKeys = 2;
  set.Layout().SortModes[0] = 1;
  window.showMaximized();
  QCoreApplication::processEvents();
  window.CloseNow();
  EXPECT_EQ(context.Settings.SetWindowPosition.DefaultFrame(), (Rect{50, 60, 549, 409}))
      << "not the whole screen";
  EXPECT_EQ(context.Settings.Layout.NumberOfKeys, 2);
  EXPECT_EQ(context.Settings.Layout.SortModes[0], 1);

  context.Settings.RememberWindowSetupAsDefault = false;
  EventSet& forgotten = context.NewSet();
  forgotten.Layout().NumberOfKeys = 3;
  forgotten.Layout().WindowFrame = {10, 20, 499, 419};
  context.OpenWindow(forgotten).CloseNow();
  EXPECT_EQ(context.Settings.SetWindowPosition.DefaultFrame(), (Rect{50, 60, 549, 409}));
  EXPECT_EQ(context.Settings.Layout.NumberOfKeys, 2);
}

TEST_F(EventSetWindowTest, AFrameTooSmallForItsWindowGrowsIntoTheScreen) {
  EventSet& set = context.NewSet();
  set.Layout().WindowFrame = {790, 790, 795, 795};
  EventRecord record;
  record.WindowFrame = {780, 795, 790, 799};
  set.AppendRead(std::make_unique<Event>(set, record));
  const QWidget& window = context.OpenWindow(set);
  set.Events()[0]->OpenWindow();
  const auto* editor = dynamic_cast<EventWindow*>(set.Events()[0]->GetWindow());
  for (const QWidget* each : {&window, static_cast<const QWidget*>(editor)}) {
    const QRect screen = each->screen()->availableGeometry(), shown = each->geometry();
    EXPECT_TRUE(screen.contains(shown)) << shown.right() << " " << shown.bottom();
  }
}

}  // namespace
}  // namespace kestrin
