#include "interface/settings/SettingsWindow.h"

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QtTest/QTest>

#include "core/settings/BuiltInPrefs.h"
#include "core/settings/SettingsFile.h"
#include "core/settings/SettingsStore.h"
#include "harness/ScreenContext.h"
#include "interface/common/FilePanels.h"
#include "interface/settings/AboutWindow.h"

namespace kestrin {
namespace {

template <typename Window>
Window* OpenOne() {
  Window* found = nullptr;
  for (QWidget* widget : QApplication::topLevelWidgets())
    if (auto* window = qobject_cast<Window*>(widget); window && !window->IsClosed()) {
      EXPECT_FALSE(found) << "only one may be open";
      found = window;
    }
  return found;
}

struct SettingsWindowTest : testing::Test {
  ScreenContext context;
  int changes = 0;
  SettingsStore store{MakeBuiltInPrefs(context.Files, "/config")};

  /// As the application does: after each change the windows follow, and all is stored.
  void RunMessages() {
    for (const uint32 code : context.RunMessages())
      if (code == SETTINGS_CHANGED) {
        context.Ui.SettingsChanged();
        WriteSettings(context.Settings, store, context.Notes);
      }
  }
  SettingsWindow& Open() {
    context.Settings.WhenChanged = [this] {
      ++changes;
      context.Queue.Post(SETTINGS_CHANGED);
    };
    context.Ui.ShowSettingsWindow();
    auto* window = OpenOne<SettingsWindow>();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    return *window;
  }
  template <typename T>
  static T& Find(const QWidget& window, const char* name) {
    return *window.findChild<T*>(name);
  }
  /// The window opened anew, by a process that reads the settings anew.
  SettingsWindow& Reopen() {
    OpenOne<SettingsWindow>()->close();
    RunMessages();
    static_cast<SettingsValues&>(context.Settings) = {};
    SettingsStore again(MakeBuiltInPrefs(context.Files, "/config"));
    InitSettings(context.Settings, again, context.Notes);
    return Open();
  }
  static std::vector<std::string> Listed(const QListWidget& list) {
    std::vector<std::string> rows;
    for (int row = 0; row < list.count(); ++row)
      rows.push_back(list.item(row)->text().toStdString());
    return rows;
  }
};

TEST_F(SettingsWindowTest, EachCheckBoxSwitchesItsSettingByMouseAndKeyboard) {
  const std::tuple<const char*, Qt::Key, bool&> boxes[] = {
      {"rememberDefaults", Qt::Key_W, context.Settings.RememberWindowSetupAsDefault},
      {"clock24", Qt::Key_C, context.Settings.Time24Hour}};
  for (const auto& [name, mnemonic, setting] : boxes) {
    const bool before = setting;
    SettingsWindow& window = Open();
    auto& box = Find<QCheckBox>(window, name);
    changes = 0;
    QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(8, box.height() / 2));
    EXPECT_EQ(setting, !before) << name;
    QTest::keyClick(&window, mnemonic, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&, &now = setting] { return now == before; })) << name;
    QTest::keyClick(&box, Qt::Key_Space);
    EXPECT_EQ(changes, 3) << "the application is told of each change";
    EXPECT_EQ(Find<QCheckBox>(Reopen(), name).isChecked(), !before) << name;
  }
}

TEST_F(SettingsWindowTest, EachMenuStoresTheNumberOfItsItem) {
  const struct {
    const char* Name = nullptr;
    const char* Label = nullptr;
    int32& Setting;
    QStringList Items;
    int Usual = 1;  ///< what a new installation has
  } menus[] = {
      {"deliverEvents",
       "Deliver events from:",
       context.Settings.WhichEventsToDeliver,
       {"Open sets only", "Open sets and remembered sets", "Remembered sets only",
        "Remembered sets unless open", "Do not deliver events"}},
      {"openRemembered",
       "Open remembered sets:",
       context.Settings.SelectedSetHandling,
       {"Always", "If no other sets are opened", "Don't open"}},
      {"withoutSet",
       "Without a set, show:",
       context.Settings.WhenNoSetIsOpen,
       {"The last used set", "A new set"},
       0},
  };
  for (const auto& each : menus) {
    SCOPED_TRACE(each.Name);
    auto* menu = &Find<QComboBox>(Open(), each.Name);
    QStringList items;
    for (int item = 0; item < menu->count(); ++item) items << menu->itemText(item);
    EXPECT_EQ(items, each.Items);
    EXPECT_EQ(menu->currentIndex(), each.Usual);
    const auto related = QAccessible::queryAccessibleInterface(menu)->relations(QAccessible::Label);
    ASSERT_EQ(related.size(), 1) << "what a screen reader calls it";
    EXPECT_EQ(related[0].first->text(QAccessible::Name).toStdString(), each.Label);
    for (int item = 0; item < menu->count(); ++item) {
      menu->setFocus();
      QTest::keyClick(menu, Qt::Key_Home);
      for (int step = 0; step < item; ++step) QTest::keyClick(menu, Qt::Key_Down);
      EXPECT_EQ(each.Setting, item);
      menu = &Find<QComboBox>(Reopen(), each.Name);
      EXPECT_EQ(menu->currentIndex(), item);
    }
  }
  auto& faces = Find<QComboBox>(*OpenOne<SettingsWindow>(), "showRemindersAs");
  EXPECT_EQ(faces.currentText(), "Windows") << "where nothing is chosen";
  context.Settings.WhichEventsToDeliver = 7;
  EXPECT_EQ(Find<QComboBox>(Reopen(), "deliverEvents").currentIndex(), -1);
  EXPECT_EQ(context.Settings.WhichEventsToDeliver, 7) << "looking changes nothing";
}

TEST_F(SettingsWindowTest, TheListFollowsWhatIsRememberedAndForgetsTheSelectedByButtonAndKey) {
  SettingsWindow& window = Open();
  auto& list = Find<QListWidget>(window, "rememberedSets");
  auto& forget = Find<QPushButton>(window, "forgetSelected");
  const auto click = [&list](int row, Qt::KeyboardModifiers keys) {
    const QRect place = list.visualItemRect(list.item(row));
    QTest::mouseClick(list.viewport(), Qt::LeftButton, keys, place.center());
  };
  EXPECT_FALSE(forget.isEnabled());
  for (const char* path : {"/a", "/b", "/c", "/d"}) context.Settings.RememberSet(path);
  RunMessages();
  EXPECT_TRUE(forget.isEnabled());
  QTest::mouseClick(&forget, Qt::LeftButton);
  EXPECT_THAT(Listed(list), ElementsAre("/a", "/b", "/c", "/d")) << "nothing is selected";
  click(1, {});
  click(2, Qt::ControlModifier);
  context.Settings.ForgetSet("/b");
  context.Settings.RememberSet("/\xE4");
  RunMessages();
  EXPECT_THAT(Listed(list), ElementsAre("/a", "/c", "/d", "/\uFFFD"));
  changes = 0;
  QTest::mouseClick(&forget, Qt::LeftButton);
  EXPECT_THAT(context.Settings.SetFileNames, ElementsAre("/a", "/d", "/\xE4"));
  EXPECT_EQ(changes, 1);
  QTest::mouseClick(&forget, Qt::LeftButton);
  EXPECT_THAT(Listed(list), ElementsAre("/a", "/d", "/\uFFFD")) << "no neighbour is selected now";
  click(0, {});
  click(2, Qt::ControlModifier);
  QTest::keyClick(&list, Qt::Key_Delete);
  EXPECT_THAT(context.Settings.SetFileNames, ElementsAre("/d"));
  click(0, {});
  QTest::keyClick(&list, Qt::Key_Delete);
  EXPECT_FALSE(forget.isEnabled());
  EXPECT_THAT(Listed(Find<QListWidget>(Reopen(), "rememberedSets")), IsEmpty());
}

TEST_F(SettingsWindowTest, ThereIsOneWindowThatHoldsTheApplicationAndComesBackWhereItWas) {
  Open().setGeometry(40, 70, 700, 640);
  EXPECT_EQ(Open().windowTitle(), "Kestrin settings");
  EXPECT_EQ(context.Holding.Count(), 1);
  QTest::keyClick(OpenOne<SettingsWindow>(), Qt::Key_Escape);
  EXPECT_FALSE(OpenOne<SettingsWindow>());
  EXPECT_EQ(context.Holding.Count(), 0);

  SettingsWindow& second = Open();
  EXPECT_EQ(second.geometry(), QRect(40, 70, 700, 640));
  Find<QCheckBox>(second, "rememberDefaults").click();
  second.setGeometry(90, 90, 650, 450);
  QTest::keyClick(&second, Qt::Key_W, Qt::ControlModifier);
  EXPECT_EQ(context.Settings.SettingsWindowFrame, (Rect{40, 70, 739, 709})) << "not remembered";
}

TEST_F(SettingsWindowTest, AboutSaysWhatThisIsAndGoesWithTheOthers) {
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
    context.Ui.ShowAboutWindow();
    context.Ui.ShowAboutWindow();
    auto* about = OpenOne<AboutWindow>();
    ASSERT_TRUE(QTest::qWaitForWindowActive(about));
    EXPECT_TRUE(Find<QLabel>(*about, "details").text().contains(qVersion()));
    QTest::keyClick(about->focusWidget(), key);
    EXPECT_FALSE(OpenOne<AboutWindow>());
  }
  context.Ui.ShowAboutWindow();
  Open();
  EXPECT_EQ(context.Holding.Count(), 2);
  context.Ui.CloseOtherWindows();
  EXPECT_FALSE(OpenOne<AboutWindow>() || OpenOne<SettingsWindow>());
  EXPECT_EQ(context.Holding.Count(), 0);
}

TEST_F(SettingsWindowTest, NothingLiesBelowTheEdgeOfALowScreen) {
  const QFont usual = QApplication::font();
  QFont large = usual;
  large.setPointSize(22);
  QApplication::setFont(large);
  const QWidget& settings = Open();
  QFileDialog panel;
  panel.resize(5000, 5000);
  SetUpFilePanel(panel);
  for (const QWidget* window : {&settings, static_cast<const QWidget*>(&panel)})
    EXPECT_LT(window->height(), window->screen()->availableGeometry().height());
  QApplication::setFont(usual);
}

TEST_F(SettingsWindowTest, TabWalksThroughTheControlsFromTopToBottom) {
  context.Settings.RememberSet("/a");
  SettingsWindow& window = Open();
  for (const char* name :
       {"rememberDefaults", "deliverEvents", "openRemembered", "withoutSet", "clock24",
        "showRemindersAs", "reminderBoxes", "eveningTime", "morningTime", "reminderSound",
        "reminderVolume", "soundUntilAnswered", "nagSoundUntilAnswered", "rememberedSets",
        "forgetSelected", "testReminders", "rememberDefaults"}) {
    ASSERT_TRUE(window.focusWidget());
    EXPECT_EQ(window.focusWidget()->objectName(), name);
    QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
  }
  window.findChild<QPushButton*>("testReminders")->click();
  std::vector<std::string> verdicts;
  for (const QWidget* other : QApplication::topLevelWidgets())
    if (const auto* verdict = other->findChild<QLabel*>("verdict"))
      verdicts.push_back(verdict->text().toStdString());
  EXPECT_THAT(verdicts, ElementsAre("There is nobody to ask."));
}

}  // namespace
}  // namespace kestrin
