#include <QAbstractButton>
#include <QAccessible>
#include <QLayout>

#include "core/delivery/EventDelivery.h"
#include "harness/EditorDriver.h"

namespace kestrin {
namespace {

struct EventEditorTest : EditorTest {};

TEST_F(EventEditorTest, ANewEventIsReadyToBeNamed) {
  Open(*set->AddEvent(nullptr));
  auto& name = Find<TypedField>("eventName");
  EXPECT_TRUE(name.hasFocus());
  EXPECT_EQ(name.selectedText(), "Untitled");
  QTest::keyClicks(&name, "Tea");
  QTest::keyClick(&name, Qt::Key_Tab);
  EXPECT_EQ(event->GetName(), "Tea");
  EXPECT_TRUE(Find("active").hasFocus());
  window->close();
  Open(*event);
  EXPECT_FALSE(Find("eventName").hasFocus()) << "nobody types over a name by accident";
}

TEST_F(EventEditorTest, TheTitleAndTheHeaderShowThingsAsTheyAreNow) {
  OpenNew();
  EXPECT_EQ(window->windowTitle(), "Water the plants – Event (set Home.kestrin)");
  set->SetFileName("/sets/a[*]b.kestrin");
  EXPECT_EQ(window->windowTitle(), "Water the plants – Event (set a[*][*]b.kestrin)");
  EXPECT_EQ(TextOf("actualTime"), "Mon, Nov 16 2026");
  EXPECT_EQ(TextOf("status"), "Waiting for event");
  event->SetName("by somebody else");
  event->SetApplyPrewarn(true);
  event->SetPrewarnType(Hours);
  EXPECT_EQ(TextOf("nextTime"), "Mon, Nov 16 2026") << "once, on the next turn";
  QCoreApplication::sendPostedEvents(window);
  EXPECT_EQ(TextOf("nextTime"), "Sun, Nov 15 2026, 11:00:00 PM") << "no whole day";
  EXPECT_EQ(FieldText("eventName"), "by somebody else");
  EXPECT_TRUE(window->windowTitle().startsWith("by somebody else – "));
  context.Core.zone = *Zone::Load("Asia/Tokyo");
  event->UpdateEventTime();
  QCoreApplication::sendPostedEvents(window);
  EXPECT_EQ(TextOf("nextTime"), "Mon, Nov 16 2026, 08:00:00 AM") << "the same moment there";
  context.Core.zone = Zone();
  event->UpdateEventTime();
  QCoreApplication::sendPostedEvents(window);
  EXPECT_EQ(TextOf("status"), "Waiting for prewarning");
  EXPECT_EQ(Find("status").accessibleName(), "Status: Waiting for prewarning");
  Click("active");
  EXPECT_FALSE(event->GetActive());
  EXPECT_EQ(TextOf("status"), "Inactive");
  context.Time.Advance(2 * 86400);
  event->SetActive(true);
  QCoreApplication::sendPostedEvents(window);
  EXPECT_EQ(TextOf("nextTime"), "None");
  EXPECT_EQ(TextOf("status"), "Done with event");
}

/// The letter of the page that is shown leads to its first control.
TEST_F(EventEditorTest, ThePagesLetterGoesIntoIt) {
  OpenNew(WhenTab);
  QTest::keyClick(window, Qt::Key_W, Qt::AltModifier);
  QCoreApplication::sendPostedEvents();
  EXPECT_TRUE(Find("periodType").hasFocus());
  EXPECT_EQ(Find("periodType").toolTip(), "");
  event->SetPeriodType(SubDaily);
  QCoreApplication::sendPostedEvents(window);
  EXPECT_NE(Find("periodType").toolTip(), "");
}

TEST_F(EventEditorTest, WhateverClosesItTakesWhatWasTypedAndDropsWhatCannotBeRead) {
  const std::function<void()> ways[] = {
      [this] { QTest::keyClick(window, Qt::Key_W, Qt::ControlModifier); },
      [this] { QTest::keyClick(&Find("tabs"), Qt::Key_Escape); },
      [this] { window->CloseNow(); },
      [this] { window->close(); },
      [this] { context.OpenWindow(*set).CloseNow(); },
  };
  context.Settings.SetFileNames = {set->GetFileName()};  // the set outlives its window
  for (const auto& way : ways) {
    QPointer<EventWindow> closed = &OpenNew();
    Type("date", "no date at all");
    Type("eventName", "typed");
    way();
    EXPECT_EQ(event->GetName(), "typed");
    EXPECT_EQ(Record().EventTime, 1794787200);
    EXPECT_EQ(event->GetWindow(), nullptr);
    DeleteClosed();
    EXPECT_FALSE(closed);
  }
}

TEST_F(EventEditorTest, ControlSSavesTheSetWithWhatIsBeingTyped) {
  SaveSet();
  context.OpenWindow(*set);
  OpenNew();
  Type("eventName", "kept by Control S");
  QTest::keyClick(&Find("eventName"), Qt::Key_S, Qt::ControlModifier);
  EXPECT_NE(context.Files.Bytes("/sets/Home.kestrin")->find("kept by Control S"),
            std::string::npos);
  EXPECT_FALSE(set->HasBeenModified());
  EXPECT_TRUE(Find("eventName").hasFocus());
}

TEST_F(EventEditorTest, AnEventThatDeletesItselfTakesItsEditorAlong) {
  EventRecord record;
  record.ActualEventTime = record.NextEventTime = record.EventTime = 1794729600;
  record.DeleteOnceDelivered = true;
  QPointer<EventWindow> closed = &OpenRecord(record);
  Type("date", "tomor");
  QTest::keyClick(&Find("date"), Qt::Key_Down, Qt::AltModifier);  // with the calendar open
  EXPECT_TRUE(QApplication::activePopupWidget());
  set->Lock();
  DealWithEvent(*event, false);
  set->Unlock();
  EXPECT_THAT(set->Events(), IsEmpty());
  EXPECT_FALSE(QApplication::activePopupWidget());
  QCoreApplication::sendPostedEvents();
  DeleteClosed();
  EXPECT_FALSE(closed);
}

TEST_F(EventEditorTest, ItsFrameIsTheEventsAndBecomesTheDefault) {
  EventRecord record;
  record.WindowFrame = {50, 70, 649, 569};
  OpenRecord(record);
  EXPECT_EQ(window->geometry(), QRect(50, 70, 600, 500));
  EXPECT_FALSE(set->HasBeenModified());
  window->setGeometry(60, 80, 620, 510);
  QTRY_COMPARE(Record().WindowFrame.right, 679.0F);
  window->showMaximized();
  QCoreApplication::processEvents();
  window->close();
  EXPECT_FALSE(set->HasBeenModified()) << "where a window stands is no change";
  EXPECT_FALSE(Record().ShouldWindowOpen);
  EXPECT_EQ(context.Settings.EventWindowPosition.DefaultFrame(), (Rect{60, 80, 679, 589}))
      << "new windows do not fill the screen";
  context.Settings.RememberWindowSetupAsDefault = false;
  Open(*event);
  window->setGeometry(90, 100, 620, 510);
  window->close();
  EXPECT_EQ(context.Settings.EventWindowPosition.DefaultFrame().left, 60);
}

TEST_F(EventEditorTest, EveryControlCanBeReachedAndHasAName) {
  OpenNew();
  for (int tab = ActionTab; tab <= CommentTab; ++tab) {
    ShowPage(tab);
    std::map<QString, int> letters;
    for (QWidget* widget : window->findChildren<QWidget*>()) {
      if (!widget->isVisible()) continue;
      if (widget->focusPolicy() & Qt::TabFocus && widget->isEnabled()) {
        QAccessibleInterface* seen = QAccessible::queryAccessibleInterface(widget);
        const bool isNamed = !seen->text(QAccessible::Name).isEmpty();
        EXPECT_TRUE(isNamed || seen->role() == QAccessible::PageTabList)
            << widget->objectName().toStdString() << widget->metaObject()->className();
        EXPECT_FALSE(widget->objectName().isEmpty()) << widget->metaObject()->className();
      }
      const auto text = [](const auto* labelled) {
        return labelled ? QKeySequence::mnemonic(labelled->text()).toString() : QString();
      };
      ++letters[text(qobject_cast<QLabel*>(widget))];
      ++letters[text(qobject_cast<QAbstractButton*>(widget))];
    }
    const auto& tabs = Find<QTabWidget>("tabs");
    for (int other = 0; other < tabs.count(); ++other)
      ++letters[QKeySequence::mnemonic(tabs.tabText(other)).toString()];
    letters.erase(QString());
    EXPECT_GE(letters.size(), 7U);
    for (const auto& [letter, count] : letters)
      EXPECT_EQ(count, 1) << letter.toStdString() << " on page " << tab;
  }
}

TEST_F(EventEditorTest, ALongNameLeavesTheWindowAsItIs) {
  OpenNew();
  const QSize size = window->size();
  Type("eventName", "");
  event->SetName(std::string(4095, 'W'));
  window->EventChanged();
  QTest::keyClick(&Find("eventName"), Qt::Key_Escape);
  window->layout()->activate();
  EXPECT_EQ(FieldText("eventName").size(), 4095U);
  EXPECT_EQ(window->size(), size);
  EXPECT_LE(window->minimumSizeHint().width(), size.width());
}

}  // namespace
}  // namespace kestrin
