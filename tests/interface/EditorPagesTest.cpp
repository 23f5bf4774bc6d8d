// The pages Action, Prewarning, Nagging and Comment.
#include <QCheckBox>
#include <QClipboard>

#include "interface/EditorDriver.h"
#include "interface/editor/WrappingTextView.h"
#include "support/OwnedText.h"

namespace kestrin {
namespace {

struct EditorPagesTest : EditorTest {
  std::string TextIn(const char* text) const {
    return Find<QPlainTextEdit>(text).toPlainText().toStdString();
  }
  bool IsEnabled(const char* control) const { return Find(control).isEnabled(); }
  void TypeText(const char* text, const char* typed) const {
    Find(text).setFocus();
    QTest::keyClicks(&Find(text), typed);
  }
  void Paste(const char* text, const QString& pasted) const {
    QApplication::clipboard()->setText(pasted);
    Find(text).setFocus();
    QTest::keyClick(&Find(text), Qt::Key_V, Qt::ControlModifier);
  }
};

std::string Everything(const EventRecord& record) {
  std::string all;
  const auto add = [&all](auto value) { all += std::to_string(value) + ' '; };
  add(record.ApplyPrewarn), add(record.PrewarnTime), add(record.PrewarnType);
  add(record.ApplyPrewarnRepeat), add(record.PrewarnRepeatTime), add(record.PrewarnRepeatType);
  add(record.ApplyNag), add(record.NagRepeatTime), add(record.NagRepeatType);
  add(record.DeleteOnceDelivered), add(record.DeliverIfMissed), add(record.Active);
  return all + '[' + record.PrewarnMessage + "][" + record.NagMessage + "][" + record.Comment + ']';
}

TEST_F(EditorPagesTest, EveryControlWritesWhatItSaysAndNothingElse) {
  EventRecord record;
  record.ActualEventTime = record.NextEventTime = record.EventTime = 2000000000;
  record.ApplyPrewarn = record.ApplyPrewarnRepeat = record.ApplyNag = true;
  OpenRecord(record);
  const struct {
    Tab tab;
    std::function<void()> act;
    std::function<void(EventRecord&)> effect;
  } cases[] = {
      {ActionTab, [&] { Click("deleteOnceDelivered"); },
       [](EventRecord& it) { it.DeleteOnceDelivered = true; }},
      {ActionTab, [&] { Click("deliverIfMissed"); },
       [](EventRecord& it) { it.DeliverIfMissed = false; }},
      {PrewarningTab, [&] { Enter("prewarnTime", "45"); },
       [](EventRecord& it) { it.PrewarnTime = 45; }},
      {PrewarningTab, [&] { EXPECT_TRUE(Choose("prewarnUnit", "months")); },
       [](EventRecord& it) { it.PrewarnType = Months; }},
      {PrewarningTab, [&] { Enter("prewarnRepeat", "9"); },
       [](EventRecord& it) { it.PrewarnRepeatTime = 9; }},
      {PrewarningTab, [&] { EXPECT_TRUE(Choose("prewarnRepeatUnit", "weeks")); },
       [](EventRecord& it) { it.PrewarnRepeatType = Weeks; }},
      {PrewarningTab, [&] { Click("applyPrewarnRepeat"); },
       [](EventRecord& it) { it.ApplyPrewarnRepeat = false; }},
      {PrewarningTab, [&] { TypeText("prewarnMessage", "soon"), Find("applyPrewarn").setFocus(); },
       [](EventRecord& it) { it.PrewarnMessage = "soon"; }},
      {PrewarningTab, [&] { Click("applyPrewarn"); },
       [](EventRecord& it) { it.ApplyPrewarn = false; }},
      {NaggingTab, [&] { Enter("nagRepeat", "3"); }, [](EventRecord& it) { it.NagRepeatTime = 3; }},
      {NaggingTab, [&] { EXPECT_TRUE(Choose("nagRepeatUnit", "minutes")); },
       [](EventRecord& it) { it.NagRepeatType = Minutes; }},
      {NaggingTab, [&] { TypeText("nagMessage", "still"), Find("applyNag").setFocus(); },
       [](EventRecord& it) { it.NagMessage = "still"; }},
      {NaggingTab, [&] { Click("applyNag"); }, [](EventRecord& it) { it.ApplyNag = false; }},
      {CommentTab, [&] { TypeText("comment", "why"), Find("tabs").setFocus(); },
       [](EventRecord& it) { it.Comment = "why"; }},
  };
  EventRecord expected = Record();
  int row = 0;
  for (const auto& each : cases) {
    Find<QTabWidget>("tabs").setCurrentIndex(each.tab);
    EXPECT_EQ(Everything(Record()), Everything(expected)) << "turning to page " << each.tab;
    each.act();
    each.effect(expected);
    EXPECT_EQ(Everything(Record()), Everything(expected)) << "row " << row++;
  }
  EXPECT_EQ(Complaint(), "");
  EXPECT_TRUE(set->HasBeenModified());
}

TEST_F(EditorPagesTest, OnlyWhatHasAnEffectIsEnabled) {
  OpenNew(PrewarningTab);
  for (const char* control :
       {"prewarnTime", "prewarnUnit", "applyPrewarnRepeat", "prewarnRepeat", "prewarnRepeatUnit",
        "prewarnMessage", "nagRepeat", "nagRepeatUnit", "nagMessage"})
    EXPECT_FALSE(IsEnabled(control)) << control;
  Click("applyPrewarn");
  EXPECT_TRUE(IsEnabled("prewarnTime") && IsEnabled("prewarnMessage"));
  EXPECT_TRUE(IsEnabled("applyPrewarnRepeat"));
  EXPECT_FALSE(IsEnabled("prewarnRepeat") || IsEnabled("prewarnRepeatUnit"));
  Click("applyPrewarnRepeat");
  EXPECT_TRUE(IsEnabled("prewarnRepeat") && IsEnabled("prewarnRepeatUnit"));
  Click("applyPrewarn");
  EXPECT_FALSE(IsEnabled("prewarnRepeat"));
  Find<QTabWidget>("tabs").setCurrentIndex(NaggingTab);
  Click("applyNag");
  EXPECT_TRUE(IsEnabled("nagRepeat") && IsEnabled("nagRepeatUnit") && IsEnabled("nagMessage"));
}

TEST_F(EditorPagesTest, NumbersThatWouldNeverComeAgainAreRefused) {
  EventRecord record;
  record.ApplyPrewarn = record.ApplyPrewarnRepeat = record.ApplyNag = true;
  record.PrewarnType = 7;
  OpenRecord(record, PrewarningTab);
  const auto& unit = Find<QComboBox>("prewarnUnit");
  EXPECT_EQ(unit.currentText(), "Unknown (7)") << "kept, and shown as it is";
  Enter("prewarnRepeat", "0");
  EXPECT_THAT(Complaint(), testing::HasSubstr("never comes again"));
  EXPECT_EQ(Record().PrewarnRepeatTime, 6u);
  Enter("prewarnRepeat", "2");
  EXPECT_EQ(Complaint(), "");
  EXPECT_EQ(Record().PrewarnRepeatTime, 2u) << "the unit it does not know is another's fault";
  Enter("prewarnTime", "0");
  EXPECT_EQ(Record().PrewarnTime, 0u) << "at the event itself";
  EXPECT_TRUE(Choose("prewarnUnit", "hours"));
  EXPECT_EQ(Record().PrewarnType, Hours);
  Find<QTabWidget>("tabs").setCurrentIndex(NaggingTab);
  Enter("nagRepeat", "0");
  EXPECT_THAT(Complaint(), testing::HasSubstr("never comes again"));
  EXPECT_EQ(Record().NagRepeatTime, 2u);
}

TEST_F(EditorPagesTest, ATextIsStoredOnLeavingAndWhenTheWindowCommits) {
  OpenNew(CommentTab);
  TypeText("comment", "half");
  EXPECT_EQ(event->GetComment(), "");
  event->SetDeliverIfMissed(false);
  window->EventChanged();
  EXPECT_EQ(TextIn("comment"), "half") << "typing is not disturbed";
  window->CommitEdits();
  EXPECT_EQ(event->GetComment(), "half");
  QTest::keyClick(&Find("comment"), Qt::Key_Return);
  TypeText("comment", "done");
  QTest::keyClick(&Find("comment"), Qt::Key_Tab);
  EXPECT_FALSE(Find("comment").hasFocus());
  EXPECT_EQ(event->GetComment(), "half\ndone");
  event->SetComment("from elsewhere");
  window->EventChanged();
  EXPECT_EQ(TextIn("comment"), "from elsewhere");
  TypeText("comment", "!");
  window->close();
  EXPECT_THAT(event->GetComment(), testing::HasSubstr("!"));
}

TEST_F(EditorPagesTest, ATextThatNobodyChangedKeepsItsBytes) {
  EventRecord record;
  record.Comment = "caf\xE9\r\n\xC2\xA0two";
  OpenRecord(record, CommentTab);
  TypeText("comment", "x");
  QTest::keyClick(&Find("comment"), Qt::Key_Backspace);
  Find("tabs").setFocus();
  EXPECT_EQ(event->GetComment(), record.Comment);
  EXPECT_FALSE(set->HasBeenModified());
  TypeText("comment", "x");
  window->CommitEdits();
  EXPECT_EQ(event->GetComment(), "xcaf\xEF\xBF\xBD\n\xC2\xA0two") << "the blank still unbreakable";
}

TEST_F(EditorPagesTest, WhatATextCannotHoldIsLeftOutOfWhatCameLast) {
  OpenNew(CommentTab);
  const auto tail = QString(10, u'z');
  Paste("comment", tail);
  QTest::keyClick(&Find("comment"), Qt::Key_Home, Qt::ControlModifier);
  Paste("comment", QString(2000000, u'é'));
  EXPECT_THAT(Complaint(), testing::HasSubstr("4095 bytes"));
  window->CommitEdits();
  const std::string& stored = event->GetComment();
  EXPECT_EQ(stored.size(), 4094u) << "a character is not cut in two";
  EXPECT_EQ(stored.substr(stored.size() - 10), tail.toStdString()) << "what was there stays";
  EXPECT_TRUE(IsUtf8(stored));
  QTest::keyClicks(&Find("comment"), "a");
  EXPECT_EQ(Complaint(), "");
  QTest::keyClicks(&Find("comment"), "b");
  EXPECT_THAT(Complaint(), testing::HasSubstr("4095 bytes"));
  window->CommitEdits();
  EXPECT_EQ(event->GetComment().size(), 4095u);
  const auto undo = QKeySequence(QKeySequence::Undo)[0], redo = QKeySequence(QKeySequence::Redo)[0];
  for (const auto& [pressed, size] : {std::pair(undo, 4095u),
                                      {undo, 4094u},
                                      {undo, 10u},
                                      {undo, 0u},
                                      {redo, 10u},
                                      {redo, 4094u}}) {
    QTest::keyClick(&Find("comment"), pressed.key(), pressed.keyboardModifiers());
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(TextIn("comment").size(), size) << "what was refused is no step on the way";
  }
  QTest::keyClick(&Find("comment"), Qt::Key_Tab);
  EXPECT_EQ(Complaint(), "");
}

TEST_F(EditorPagesTest, LettersReachEveryControl) {
  OpenNew(PrewarningTab);
  Click("applyPrewarn");
  for (const auto& [key, control] :
       {std::pair(Qt::Key_S, "prewarnTime"), std::pair(Qt::Key_E, "prewarnMessage")}) {
    QTest::keyClick(window, key, Qt::AltModifier);
    EXPECT_TRUE(Find(control).hasFocus()) << control;
  }
  Find<QTabWidget>("tabs").setCurrentIndex(ActionTab);
  QTest::keyClick(window, Qt::Key_H, Qt::AltModifier);
  EXPECT_TRUE(Find("handler").hasFocus());
  for (const char* next : {"messageText", "deleteOnceDelivered", "deliverIfMissed"}) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_TRUE(Find(next).hasFocus()) << next;
  }
}

}  // namespace
}  // namespace kestrin
