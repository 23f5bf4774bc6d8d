#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QLineEdit>
#include <QtTest/QTest>
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

#include "harness/ScreenContext.h"
#include "interface/sets/SetCommands.h"

namespace kestrin {
namespace {

xcb_connection_t* Display() {
  return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

template <typename T>
using Freed = std::unique_ptr<T, decltype(&std::free)>;

/// Numbers held by a property of the root window.
std::vector<uint32> RootProperty(const std::string& name) {
  const auto ask = xcb_intern_atom(Display(), 0, static_cast<uint16_t>(name.size()), name.c_str());
  const Freed<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(Display(), ask, nullptr),
                                            &std::free);
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(Display())).data->root;
  const auto get =
      xcb_get_property(Display(), 0, root, atom->atom, XCB_GET_PROPERTY_TYPE_ANY, 0, 1000);
  const Freed<xcb_get_property_reply_t> held(xcb_get_property_reply(Display(), get, nullptr),
                                             &std::free);
  const auto* values = static_cast<const uint32*>(xcb_get_property_value(held.get()));
  return {values, values + xcb_get_property_value_length(held.get()) / 4};
}

/// Both the window manager and the toolkit have to say so: the toolkit repeats a request that it
/// made before the window was there, and then a later one of another window is overruled.
bool IsActive(const QWidget& window) {
  const std::vector<uint32> active = RootProperty("_NET_ACTIVE_WINDOW");
  return !active.empty() && active[0] == window.winId() && window.isActiveWindow();
}

/// From the lowest window to the highest.
std::ptrdiff_t Height(const QWidget& window) {
  const std::vector<uint32> stack = RootProperty("_NET_CLIENT_LIST_STACKING");
  const auto found = std::find(stack.begin(), stack.end(), window.winId());
  return found == stack.end() ? -1 : found - stack.begin();
}

struct AlertOnScreenTest : testing::Test {
  static void SetUpTestSuite() {
    ASSERT_EQ(QGuiApplication::platformName(), "xcb");
    // Until the window manager listens, nothing becomes active.
    QWidget first;
    first.show();
    ASSERT_TRUE(QTest::qWaitFor([&first] {
      first.activateWindow();
      return IsActive(first);
    })) << "no window manager";
  }

  ScreenContext context;
  QLineEdit typing;

  void SetUp() override {
    typing.resize(900, 700);
    typing.show();
    typing.activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return IsActive(typing) && typing.hasFocus(); }));
  }
  QWidget* OpenAlert(AlertId id, int32 place) {
    AlertRequest request;
    request.Text = "The event \"x\" will occur today.";
    context.Ui.OpenAlert(id, request, place);
    for (QWidget* widget : QApplication::topLevelWidgets())
      if (widget->objectName() == "alert" && !opened_.contains(widget)) {
        opened_.push_back(widget);
        return widget;
      }
    return nullptr;
  }

 private:
  QList<QWidget*> opened_;
};

TEST_F(AlertOnScreenTest, AnAlertLeavesTheFocusWhereItIsAndStaysAbove) {
  QWidget* first = OpenAlert(1, 0);
  QWidget* second = OpenAlert(2, 1);
  ASSERT_TRUE(QTest::qWaitForWindowExposed(first));
  ASSERT_TRUE(QTest::qWaitForWindowExposed(second));
  ASSERT_TRUE(QTest::qWaitFor([&] { return Height(*first) >= 0 && Height(*second) >= 0; }));
  EXPECT_TRUE(IsActive(typing));
  EXPECT_TRUE(typing.hasFocus());
  QTest::keyClicks(&typing, "typed on");
  EXPECT_EQ(typing.text(), "typed on");

  typing.raise();
  typing.activateWindow();
  QWidget later;
  later.show();
  ASSERT_TRUE(QTest::qWaitFor([&] { return IsActive(later); }));
  for (const QWidget* alert : {first, second}) {
    EXPECT_GT(Height(*alert), Height(typing));
    EXPECT_GT(Height(*alert), Height(later));
  }
}

TEST_F(AlertOnScreenTest, TheQuestionBeforeClosingTakesTheFocusAndGivesItBack) {
  EventSet& set = context.NewSet();
  set.SetModified();
  EventSetWindow& window = context.OpenWindow(set);
  ASSERT_TRUE(QTest::qWaitFor([&] { return IsActive(window); }));
  QWidget* const reminder = OpenAlert(1, 0);
  ASSERT_TRUE(QTest::qWaitForWindowExposed(reminder));
  EXPECT_FALSE(window.close());
  context.RunMessages();
  QWidget* question = nullptr;
  for (QWidget* widget : QApplication::topLevelWidgets())
    if (widget->objectName() == "alert" && widget != reminder) question = widget;
  ASSERT_TRUE(question);
  ASSERT_TRUE(QTest::qWaitFor([&] { return IsActive(*question); }));
  typing.activateWindow();
  ASSERT_TRUE(QTest::qWaitFor([&] { return IsActive(typing); }));
  EXPECT_FALSE(window.close());
  ASSERT_TRUE(QTest::qWaitFor([&] { return IsActive(*question); })) << "asked again";
  QTest::keyClick(question->focusWidget(), Qt::Key_Escape);
  EXPECT_FALSE(question->isVisible());
  EXPECT_TRUE(window.isVisible());
}

/// A reminder that has come meanwhile is what the window manager would choose.
TEST_F(AlertOnScreenTest, PanelsGiveTheFocusBackToTheWindowThatAsked) {
  EventSet& set = context.NewSet();
  EventSetWindow& window = context.OpenWindow(set);
  Event& event = AppendEvent(set, "x");
  event.OpenWindow();
  int32 place = 0;
  for (QWidget* asker : {dynamic_cast<QWidget*>(event.GetWindow()), static_cast<QWidget*>(&window)})
    for (const char* const name : {"openPanel", "savePanel"}) {
      SCOPED_TRACE(asker->windowTitle().toStdString() + ", " + name);
      asker->activateWindow();
      ASSERT_TRUE(QTest::qWaitFor([&] { return IsActive(*asker); }));
      if (name == std::string("openPanel")) context.Ui.ShowOpenPanel();
      for (QAction* action : window.findChildren<QAction*>())
        if (name == std::string("savePanel") && action->data() == SAVE_SET_AS) action->trigger();
      QWidget* panel = nullptr;
      for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->objectName() == name && widget->isVisible()) panel = widget;
      ASSERT_TRUE(panel && QTest::qWaitFor([&] { return IsActive(*panel); }));
      const QWidget* reminder = OpenAlert(static_cast<AlertId>(place) + 1, place);
      ++place;
      ASSERT_TRUE(QTest::qWaitFor([&] { return Height(*reminder) >= 0; }));
      QTest::keyClick(panel->focusWidget(), Qt::Key_Escape);
      EXPECT_TRUE(QTest::qWaitFor([&] { return IsActive(*asker); }));
    }
}

}  // namespace
}  // namespace kestrin
