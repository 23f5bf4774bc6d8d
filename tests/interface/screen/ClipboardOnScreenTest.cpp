// Events between processes that share a display.
#include <gtest/gtest.h>

#include <QClipboard>
#include <QMimeData>
#include <QProcess>
#include <QtTest/QTest>

#include "core/files/EventMessage.h"
#include "handlers/MessageDataHandler.h"
#include "harness/ScreenContext.h"
#include "interface/sets/EventClipboard.h"

namespace kestrin {
namespace {

/// A program that is ended with its object.
struct Program : QProcess {
  ~Program() override {
    kill();
    waitForFinished();
  }
  void Start(const QString& program, const QStringList& arguments) {
    start(program, arguments);
    ASSERT_TRUE(waitForStarted()) << program.toStdString();
  }
};

struct ClipboardOnScreenTest : testing::Test {
  ScreenContext context;
  EventSet& set = context.NewSet();

  ~ClipboardOnScreenTest() override { QGuiApplication::clipboard()->clear(); }

  /// What the program prints; this process answers requests for its clipboard meanwhile.
  static std::string OutputOf(const QString& program, const QStringList& arguments) {
    Program process;
    process.Start(program, arguments);
    EXPECT_TRUE(QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, 20000));
    return process.readAllStandardOutput().toStdString();
  }
  static std::string XclipReads(const QString& type) {
    return OutputOf("xclip", {"-o", "-selection", "clipboard", "-t", type});
  }
  /// A foreign program owns the clipboard, with `bytes` under `type`.
  static void XclipOwns(Program& owner, const QString& type, const QByteArray& bytes) {
    owner.Start("xclip", {"-i", "-quiet", "-selection", "clipboard", "-t", type});
    owner.write(bytes);
    owner.closeWriteChannel();
    ASSERT_TRUE(QTest::qWaitFor([&] {
      const QMimeData* content = QGuiApplication::clipboard()->mimeData();
      return content && !QGuiApplication::clipboard()->ownsClipboard() && content->hasFormat(type);
    }));
  }
};

TEST_F(ClipboardOnScreenTest, AnotherKestrinPastesAnEventWithItsDataSmallAndLarge) {
  for (const size_t size : {size_t{20}, size_t{2} << 20}) {
    Message copied;
    ASSERT_TRUE(GenerateMessageForEvent(*set.AddEvent(nullptr), &copied));
    copied.Set("Name", std::string("Tea \u2615"));
    copied.Set("HandlerName", std::string("Chime"));
    copied.Set("HandlerData", RawData{FourCharCode("hDat"), std::string(size, '\xA5')});
    const auto source = EventFromMessage(set, copied).NewEvent;
    ASSERT_TRUE(source && CopyEvent(*source));
    const std::string pasted = OutputOf(KESTRIN_CLIPBOARD_PEER, {"paste"});
    const auto message = Message::Unflatten(pasted);
    ASSERT_TRUE(message) << pasted.substr(0, 200);
    for (const char* field : {"Name", "HandlerName"})
      EXPECT_EQ(message->Get<std::string>(field), copied.Get<std::string>(field));
    EXPECT_TRUE(message->Get<RawData>("HandlerData") == copied.Get<RawData>("HandlerData"));
  }
}

TEST_F(ClipboardOnScreenTest, AnEventOfAnotherKestrinIsPastedUntilThatIsGone) {
  Program peer;
  peer.Start(KESTRIN_CLIPBOARD_PEER, {"copy", "Cake"});
  ASSERT_TRUE(QTest::qWaitFor([&] { return peer.canReadLine(); }, 20000));
  ASSERT_TRUE(QTest::qWaitFor([] { return ClipboardHasEvent(); }));
  const auto pasted = EventFromClipboard(set);
  ASSERT_TRUE(pasted);
  EXPECT_EQ(pasted->GetName(), "Cake");
  EXPECT_STREQ(dynamic_cast<MessageDataHandler&>(*pasted->GetAddOnData()).GetMessage(),
               "from the peer");
  peer.closeWriteChannel();
  ASSERT_TRUE(QTest::qWaitFor([&] { return peer.state() == QProcess::NotRunning; }));
  ASSERT_TRUE(QTest::qWaitFor([] { return !ClipboardHasEvent(); }));
  EXPECT_FALSE(EventFromClipboard(set));
}

TEST_F(ClipboardOnScreenTest, AForeignProgramReadsTheNameAsText) {
  Event& tea = *set.AddEvent(nullptr);
  tea.SetName("Tea \u2615 & \"cake\"");
  ASSERT_TRUE(CopyEvent(tea));
  for (const char* type : {"text/plain", "UTF8_STRING"})
    EXPECT_EQ(XclipReads(type), tea.GetName()) << type;
  EXPECT_NE(XclipReads("TARGETS").find(EventClipboardType), std::string::npos);
}

TEST_F(ClipboardOnScreenTest, WhatForeignProgramsCopyPastesNothing) {
  {
    Program owner;
    XclipOwns(owner, "text/plain", "Tea");
    EXPECT_FALSE(ClipboardHasEvent());
    EXPECT_FALSE(EventFromClipboard(set));
  }
  Program owner;
  XclipOwns(owner, EventClipboardType, "{\"what\":0,\"fields\":[]}");
  EXPECT_FALSE(EventFromClipboard(set));
  EXPECT_TRUE(context.Alerts.Empty());
}

}  // namespace
}  // namespace kestrin
