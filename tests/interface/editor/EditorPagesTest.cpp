// The pages Action, Prewarning, Nagging and Comment.
#include <QClipboard>

#include "harness/EditorDriver.h"
#include "interface/fields/WrappingTextView.h"

namespace kestrin {
namespace {

struct EditorPagesTest : EditorTest {
  std::string TextIn(const char* text) const {
    return Find<QPlainTextEdit>(text).toPlainText().toStdString();
  }
  void TypeText(const char* text, const char* typed) const {
    Find(text).setFocus();
    QTest::keyClicks(&Find(text), typed);
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
    const char* act;
    std::function<void(EventRecord&)> effect;
  } cases[] = {
      {ActionTab, "click deleteOnceDelivered", [](auto& it) { it.DeleteOnceDelivered = true; }},
      {ActionTab, "click deliverIfMissed", [](auto& it) { it.DeliverIfMissed = false; }},
      {PrewarningTab, "enter prewarnTime 45", [](auto& it) { it.PrewarnTime = 45; }},
      {PrewarningTab, "choose prewarnUnit months", [](auto& it) { it.PrewarnType = Months; }},
      {PrewarningTab, "enter prewarnRepeat 9", [](auto& it) { it.PrewarnRepeatTime = 9; }},
      {PrewarningTab, "choose prewarnRepeatUnit weeks",
       [](auto& it) { it.PrewarnRepeatType = Weeks; }},
      {PrewarningTab, "click applyPrewarnRepeat", [](auto& it) { it.ApplyPrewarnRepeat = false; }},
      {PrewarningTab, "write prewarnMessage soon", [](auto& it) { it.PrewarnMessage = "soon"; }},
      {PrewarningTab, "click applyPrewarn", [](auto& it) { it.ApplyPrewarn = false; }},
      {NaggingTab, "enter nagRepeat 3", [](auto& it) { it.NagRepeatTime = 3; }},
      {NaggingTab, "choose nagRepeatUnit minutes", [](auto& it) { it.NagRepeatType = Minutes; }},
      {NaggingTab, "write nagMessage still", [](auto& it) { it.NagMessage = "still"; }},
      {NaggingTab, "click applyNag", [](auto& it) { it.ApplyNag = false; }},
      {CommentTab, "write comment why", [](auto& it) { it.Comment = "why"; }},
  };
  EventRecord expected = Record();
  for (const auto& [tab, act, effect] : cases) {
    ShowPage(tab);
    EXPECT_EQ(Everything(Record()), Everything(expected)) << "turning to page " << tab;
    EXPECT_TRUE(Do(act)) << act;
    effect(expected);
    EXPECT_EQ(Everything(Record()), Everything(expected)) << act;
  }
  EXPECT_EQ(Complaint(), "");
  EXPECT_TRUE(set->HasBeenModified());
}

TEST_F(EditorPagesTest, OnlyWhatHasAnEffectIsEnabled) {
  OpenNew(PrewarningTab);
  const auto enabled = [this] {
    std::string signs;
    for (const char* name :
         {"prewarnTime", "prewarnUnit", "prewarnMessage", "applyPrewarnRepeat", "prewarnRepeat",
          "prewarnRepeatUnit", "nagRepeat", "nagRepeatUnit", "nagMessage"})
      signs += Find(name).isEnabled() ? '+' : '-';
    return signs;
  };
  EXPECT_EQ(enabled(), "---------");
  for (const auto& [box, expected] : {std::pair("applyPrewarn", "++++-----"),
                                      {"applyPrewarnRepeat", "++++++---"},
                                      {"applyPrewarn", "---------"}}) {
    Click(box);
    EXPECT_EQ(enabled(), expected) << box;
  }
  ShowPage(NaggingTab);
  Click("applyNag");
  EXPECT_EQ(enabled(), "------+++");
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
  EXPECT_EQ(Complaint(), "") << "the unit it does not know is another's fault";
  ShowPage(NaggingTab);
  Enter("nagRepeat", "0");
  EXPECT_THAT(Complaint(), testing::HasSubstr("never comes again"));
  EXPECT_EQ(Record().NagRepeatTime, 2u);
  ShowPage(PrewarningTab);
  Enter("prewarnRepeat", "0");
  Enter("prewarnRepeat", "3");
  EXPECT_THAT(Complaint(), testing::HasSubstr("never comes again")) << "the nags still do not";
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
  const std::string tail(10, 'z');
  QApplication::clipboard()->setText(QString::fromStdString(tail));
  QTest::keyClick(&Find("comment"), Qt::Key_V, Qt::ControlModifier);
  QTest::keyClick(&Find("comment"), Qt::Key_Home, Qt::ControlModifier);
  QApplication::clipboard()->setText(QString(2000000, u'é'));
  QTest::keyClick(&Find("comment"), Qt::Key_V, Qt::ControlModifier);
  EXPECT_THAT(Complaint(), testing::HasSubstr("4095 bytes"));
  window->CommitEdits();
  EXPECT_EQ(event->GetComment(), QString(2042, u'é').toStdString() + tail) << "whole characters";
  QTest::keyClicks(&Find("comment"), "a");
  EXPECT_EQ(Complaint(), "");
  QTest::keyClicks(&Find("comment"), "b");
  EXPECT_THAT(Complaint(), testing::HasSubstr("4095 bytes"));
  window->CommitEdits();
  EXPECT_EQ(event->GetComment().size(), 4095u);
  constexpr auto undo = QKeySequence::Undo, redo = QKeySequence::Redo;
  const std::pair<QKeySequence, uint> steps[] = {{undo, 4095}, {undo, 4094}, {undo, 10},
                                                 {undo, 0},    {redo, 10},   {redo, 4094}};
  for (const auto& [keys, size] : steps) {
    QTest::keySequence(&Find("comment"), keys);
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(TextIn("comment").size(), size) << "what was refused is no step on the way";
  }
  QTest::keyClick(&Find("comment"), Qt::Key_Tab);
  EXPECT_EQ(Complaint(), "");
}

}  // namespace
}  // namespace kestrin
