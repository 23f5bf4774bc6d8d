#include <QAccessible>
#include <QElapsedTimer>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextLayout>
#include <QTimer>
#include <QtTest/QTest>
#include <set>

#include "harness/ScreenContext.h"
#include "interface/alerts/AlertCascade.h"

namespace kestrin {
namespace {

using testing::SizeIs;

std::vector<QWidget*> OpenAlerts() {
  std::vector<QWidget*> alerts;
  for (QWidget* widget : QApplication::topLevelWidgets())
    if (widget->objectName() == "alert" && widget->isVisible()) alerts.push_back(widget);
  return alerts;
}

struct AlertWindowTest : testing::Test {
  ScreenContext context;
  std::vector<int> answers;

  AlertRequest Request(const std::string& text) {
    AlertRequest request;
    request.Title = "Kestrin prewarning";
    request.Text = text;
    request.Buttons = {"No more prewarnings", "OK", "Later & never"};
    request.HarmlessButton = 1;
    request.DefaultButton = 2;
    request.Done = [this](int which) { answers.push_back(which); };
    return request;
  }
  QWidget* Open(AlertRequest request) {
    context.Alerts.Show(std::move(request));
    context.RunMessages();
    const std::vector<QWidget*> open = OpenAlerts();
    return open.empty() ? nullptr : open.back();
  }
  QWidget* Open(const std::string& text) { return Open(Request(text)); }

  static QPushButton* Button(QWidget* alert, int which) {
    return alert->findChild<QPushButton*>(QString("alertButton%1").arg(which));
  }
  static QString Text(QWidget* alert) {
    return alert->findChild<QPlainTextEdit*>("alertText")->toPlainText();
  }
};

TEST_F(AlertWindowTest, EachWayOfAnsweringPressesItsButtonOnceAndCloses) {
  const auto press = [](Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    return [key, modifiers](QWidget* alert) {
      alert->activateWindow();
      ASSERT_TRUE(QTest::qWaitForWindowActive(alert));
      QTest::mouseClick(alert, Qt::LeftButton, {}, QPoint(2, 2));  // from then on keys are meant
      QTest::keyClick(alert->focusWidget(), key, modifiers);
      EXPECT_TRUE(QTest::qWaitFor([] { return OpenAlerts().empty(); }));
    };
  };
  const auto inText = [&press](QWidget* alert) {
    alert->findChild<QPlainTextEdit*>()->setFocus();
    press(Qt::Key_Return)(alert);
  };
  const struct {
    const char* name;
    std::function<void(QWidget*)> act;
    int answer;
  } cases[] = {
      {"click", [](QWidget* alert) { QTest::mouseClick(Button(alert, 0), Qt::LeftButton); }, 0},
      {"close", [](QWidget* alert) { alert->close(); }, 1},
      {"escape", press(Qt::Key_Escape), 1},
      {"return", press(Qt::Key_Return), 2},
      {"return in the text", inText, 2},
      {"n", press(Qt::Key_N), 0},
      {"Alt and n", press(Qt::Key_N, Qt::AltModifier), 0},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    answers.clear();
    const QPointer<QWidget> alert = Open("text");
    ASSERT_TRUE(alert);
    each.act(alert);
    EXPECT_THAT(answers, ElementsAre(each.answer));
    if (alert) alert->close();
    EXPECT_THAT(answers, SizeIs(1));
    EXPECT_THAT(OpenAlerts(), IsEmpty());
  }
}

TEST_F(AlertWindowTest, KeysMeantForAnotherWindowDoNothing) {
  const auto type = [](QWidget* alert) {
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape, Qt::Key_Space, Qt::Key_N})
      QTest::keyClick(alert->focusWidget(), key);
    QTest::keyClick(alert->focusWidget(), Qt::Key_N, Qt::AltModifier);
  };
  QWidget* alert = Open("text");
  QWidget other;
  other.show();
  for (int given = 0; given < 2; ++given) {
    alert->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(alert));
    type(alert);
    EXPECT_THAT(answers, IsEmpty()) << "given the focus in the middle of a word";
    if (given == 0) QTest::mouseClick(alert, Qt::LeftButton, {}, QPoint(2, 2));
    other.activateWindow();  // what was meant then is over now
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  }
  alert->activateWindow();
  QElapsedTimer quiet;
  quiet.start();
  EXPECT_TRUE(QTest::qWaitFor([&] {
    if (quiet.hasExpired(1200) && quiet.restart() > 0)
      QTest::keyClick(alert->focusWidget(), Qt::Key_Escape);
    return !answers.empty();
  })) << "after a while without a key";
  EXPECT_THAT(answers, ElementsAre(1));
}

TEST_F(AlertWindowTest, AQuestionIsCarriedOutOnlyOnPurpose) {
  using Keys = std::vector<std::pair<Qt::Key, Qt::KeyboardModifiers>>;
  const std::vector<std::pair<Keys, int>> cases = {
      {{{Qt::Key_Return, {}}}, 0},
      {{{Qt::Key_O, {}}, {Qt::Key_Return, {}}}, 0},
      {{{Qt::Key_Right, {}}, {Qt::Key_Return, {}}}, 0},
      {{{Qt::Key_Tab, {}}, {Qt::Key_Return, {}}}, 1},
      {{{Qt::Key_O, Qt::AltModifier}}, 1},
  };
  for (const auto& [keys, answer] : cases) {
    SCOPED_TRACE(keys[0].first);
    AlertRequest question = Request("Should the command be executed?");
    question.Role = AlertRole::Question;
    question.Buttons = {"Cancel", "Ok"};
    question.HarmlessButton = question.DefaultButton = 0;
    answers.clear();
    QWidget* alert = Open(question);
    alert->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(alert));
    QTest::mouseClick(alert, Qt::LeftButton, {}, QPoint(2, 2));
    for (const auto& [key, modifiers] : keys) QTest::keyClick(alert->focusWidget(), key, modifiers);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !answers.empty(); }));
    EXPECT_THAT(answers, ElementsAre(answer));
  }
}

TEST_F(AlertWindowTest, AnAlertIsOnTopInactiveReadAloudAndItsButtonsStandInOrder) {
  QWidget* alert = Open("The event \"x\" will occur today.");
  EXPECT_TRUE(alert->testAttribute(Qt::WA_ShowWithoutActivating));
  EXPECT_TRUE(alert->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
  QCoreApplication::processEvents();
  EXPECT_EQ(context.Bells, 1);
  QAccessibleInterface* read = QAccessible::queryAccessibleInterface(alert);
  EXPECT_EQ(read->role(), QAccessible::AlertMessage);
  EXPECT_EQ(read->text(QAccessible::Name), "Kestrin prewarning");
  EXPECT_EQ(read->text(QAccessible::Description), "The event \"x\" will occur today.");
  EXPECT_EQ(Button(alert, 0)->text(), "&No more prewarnings");
  EXPECT_EQ(Button(alert, 2)->text(), "Later && never");
  EXPECT_LT(Button(alert, 0)->x(), Button(alert, 1)->x());
  EXPECT_LT(Button(alert, 1)->x(), Button(alert, 2)->x());
  EXPECT_EQ(Button(alert, 0)->width(), Button(alert, 1)->width());
}

TEST_F(AlertWindowTest, ANagTakesThePlaceOfTheOpenPrewarning) {
  AlertRequest request = Request("soon");
  request.Role = AlertRole::Prewarning;
  request.Event = 5;
  QWidget* alert = Open(request);
  alert->move(alert->pos() + QPoint(10, 10));
  const QPoint place = alert->pos();
  const QPointer<QPushButton> pressed = Button(alert, 0);
  QTest::mousePress(pressed, Qt::LeftButton);

  request.Role = AlertRole::Nag;
  request.Title.clear();
  request.Text = "since\nlong";
  request.Buttons = {"No more nagging", "OK"};
  request.DefaultButton = 1;
  EXPECT_EQ(Open(request), alert);
  EXPECT_THAT(answers, ElementsAre(1)) << "the earlier one's harmless answer";
  EXPECT_EQ(alert->windowTitle(), "Kestrin");
  EXPECT_EQ(Text(alert), "since\nlong");
  EXPECT_EQ(Button(alert, 0)->text(), "&No more nagging");
  EXPECT_EQ(Button(alert, 2), nullptr);
  EXPECT_EQ(alert->pos(), place);
  if (pressed) QTest::mouseRelease(pressed, Qt::LeftButton);
  EXPECT_THAT(answers, SizeIs(1)) << "what was pressed was another button";
  QTest::mouseClick(Button(alert, 0), Qt::LeftButton);
  EXPECT_THAT(answers, ElementsAre(1, 0));
}

TEST_F(AlertWindowTest, HostileTextsAreShownPlainAndStayOnTheScreen) {
  const struct {
    std::string text;
    QString shown;
    bool scrolls = false;
  } cases[] = {
      {std::string(4095, 'w'), QString(4095, u'w'), true},
      {std::string(4000, '\n'), QString(4000, u'\n'), true},
      {"<h1>x</h1><img src=x>&amp;", "<h1>x</h1><img src=x>&amp;"},
      {"a\xff\xc3", "a\uFFFD\uFFFD"},
  };
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  for (const auto& each : cases) {
    SCOPED_TRACE(each.text.substr(0, 20));
    AlertRequest request = Request(each.text);
    request.Title = each.text.substr(0, 200) + "[*]";
    QWidget* alert = Open(request);
    QCoreApplication::processEvents();
    EXPECT_EQ(Text(alert), each.shown);
    EXPECT_FALSE(alert->windowTitle().contains('\n'));
    EXPECT_TRUE(screen.contains(alert->frameGeometry()));
    auto* text = alert->findChild<QPlainTextEdit*>("alertText");
    EXPECT_EQ(text->verticalScrollBar()->maximum() > 0, each.scrolls);
    const QTextLayout* wrapped = text->document()->firstBlock().layout();
    for (int line = 0; line < wrapped->lineCount(); ++line)
      ASSERT_LE(wrapped->lineAt(line).naturalTextWidth(), text->viewport()->width());
    alert->close();
  }
}

TEST(AlertCascadeTest, PlacesDifferAndHoldTheLargestAlertOnAnyScreen) {
  for (const QRect screen :
       {QRect(0, 0, 640, 480), QRect(-1920, 40, 1920, 1040), QRect(0, 0, 800, 600),
        QRect(3000, 0, 1080, 1920), QRect(0, 0, 320, 240), QRect(0, 0, 7680, 4320)}) {
    std::set<std::pair<int, int>> places;
    for (int place = 0; place < AlertCascade::Places; ++place) {
      const QPoint at = AlertCascade::TopLeft(place, screen);
      places.emplace(at.x(), at.y());
      EXPECT_TRUE(screen.contains(QRect(at, AlertCascade::LargestAlert(screen)))) << place;
    }
    EXPECT_EQ(places.size(), size_t{AlertCascade::Places}) << screen.width();
  }
}

TEST_F(AlertWindowTest, APromptTakesKeysAtOnceHoweverOftenItIsLeft) {
  AlertRequest prompt = Request("Save?");
  prompt.Role = AlertRole::Prompt;
  QWidget* alert = Open(prompt);
  QWidget other;
  other.show();
  for (QWidget* window : {alert, &other, alert}) {
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
  }
  QTest::keyClick(alert->focusWidget(), Qt::Key_Escape);
  EXPECT_THAT(answers, ElementsAre(1));
}

TEST_F(AlertWindowTest, AFatalErrorWaitsForItsButton) {
  QTimer::singleShot(0, [] {
    ASSERT_THAT(OpenAlerts(), SizeIs(1));
    EXPECT_EQ(Button(OpenAlerts()[0], 0)->text(), "Quit");
    QTest::mouseClick(Button(OpenAlerts()[0], 0), Qt::LeftButton);
  });
  context.Ui.WaitForFatalError("Kestrin error", "no settings", "Quit");
  EXPECT_THAT(OpenAlerts(), IsEmpty());
}

}  // namespace
}  // namespace kestrin
