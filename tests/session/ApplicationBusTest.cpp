#include "session/ApplicationBus.h"

#include "session/BusBackground.h"
#include "session/BusMessages.h"
#include "session/BusNames.h"
#include "session/SessionBus.h"

namespace kestrin {
namespace {

using testing::HasSubstr;

constexpr uint32 HoldDone = PROCESS_HOLD_DONE;

Message Files(const std::vector<std::string>& paths, bool window) {
  Message message(OPEN_FILES);
  for (size_t i = 0; i < paths.size(); ++i) message.Set(std::to_string(i), paths[i]);
  message.Set("window", window);
  return message;
}

Message LateBy61() {
  Message message(DELIVER_EVENTS);
  message.Set("Late", int32{61});
  return message;
}

Message WithToken(Message message, const char* token) {
  message.Set("token", token);
  return message;
}

QDBusMessage ToObject(const char* interface, const char* member, const QVariantList& arguments) {
  QDBusMessage call =
      QDBusMessage::createMethodCall(ApplicationBusName, ApplicationObject, interface, member);
  call.setArguments(arguments);
  return call;
}

QDBusMessage Post(uint32 what, const QVariantMap& fields = {}) {
  return ToObject(MessagesInterface, "Post", {QVariant::fromValue(what), fields});
}

QDBusMessage Open(const QStringList& uris, const QVariantMap& platformData = {}) {
  return ToObject(ApplicationInterface, "Open", {uris, platformData});
}

class ApplicationBusTest : public SessionBus {
 protected:
  Arrival ArriveFirst() { return bus_.Arrive({{}, {}, true}); }

  /// Sends the call from another connection and lets the application dispatch.
  QDBusMessage Ask(const QDBusMessage& call) {
    QDBusPendingCall pending = Client().asyncCall(call);
    Settle();
    bus_.Dispatch();
    pending.waitForFinished();
    return pending.reply();
  }

  MessageQueue queue_;
  ApplicationBus bus_{queue_, std::chrono::milliseconds(200)};
};

TEST_F(ApplicationBusTest, TakesDeliveriesQuitsAndFilesAndNothingElse) {
  ASSERT_EQ(ArriveFirst(), Arrival::First);
  const QVariantMap none, pointer = {{"Event", 0x7fff12345678LL}},
                          token = {{"activation-token", "t"}};
  struct {
    const char* what;
    QDBusMessage call;
    std::optional<Message> message;
    QString error = {};
  } const rows[] = {
      {"deliver", Post(DELIVER_EVENTS), Message(DELIVER_EVENTS)},
      {"late", Post(DELIVER_EVENTS, {{"Late", 61}}), LateBy61()},
      {"late by no number", Post(DELIVER_EVENTS, {{"Late", "x"}}), {}, BadFieldError},
      {"fields that are not known", Post(DELIVER_EVENTS, pointer), Message(DELIVER_EVENTS)},
      {"quit", Post(QUIT_REQUESTED), Message(QUIT_REQUESTED)},
      {"full quit", Post(QUIT_REQUESTED, {{"Full", true}}), Message(FULL_QUIT_REQUESTED)},
      {"bad field", Post(QUIT_REQUESTED, {{"Full", 1}}), {}, BadFieldError},
      {"the deliverer's", Post(NEXT_EVENT_MESSAGE, {{"When", 5}}), {}, UnknownMessageError},
      {"a hold", Post(HoldDone), {}, UnknownMessageError},
      {"an own one", Post(FORCED_QUIT), {}, UnknownMessageError},
      {"signed",
       ToObject(MessagesInterface, "Post", {1147497548, none}),
       {},
       InvalidArgumentsError},
      {"open", Open({"file:///a%20b", "FILE://localhost/c%FF"}, {{"desktop-startup-id", "x11"}}),
       WithToken(Files({"/a b", "/c\xff"}, true), "x11")},
      {"open unseen", Open({"file:///a"}, {{BackgroundKey, true}}), Files({"/a"}, false)},
      {"open no file", Open({"file:///a", "http://b/c"}), {}, InvalidArgumentsError},
      {"open nothing", Open({}), {}},
      {"activate", ToObject(ApplicationInterface, "Activate", {token}),
       WithToken(Message(ACTIVATE), "t")},
      {"action",
       ToObject(ApplicationInterface, "ActivateAction", {"new-event-set", QVariantList(), token}),
       WithToken(Message(NEW_EVENT_SET), "t")},
      {"no method",
       ToObject(MessagesInterface, "Open", {QStringList("file:///a"), none}),
       {},
       UnknownMethodError},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    EXPECT_EQ(Ask(row.call).errorName().toStdString(), row.error.toStdString());
    EXPECT_EQ(queue_.Take(), row.message);
    EXPECT_TRUE(queue_.Empty());
  }
  EXPECT_TRUE(Ask(Open({"http://b/c"})).errorMessage().contains("http://b/c"));
  const QDBusMessage described =
      Ask(ToObject("org.freedesktop.DBus.Introspectable", "Introspect", {}));
  for (const char* interface : {MessagesInterface, ApplicationInterface})
    EXPECT_TRUE(described.arguments().value(0).toString().contains(interface)) << interface;
}

TEST_F(ApplicationBusTest, ASecondProcessHandsItsArgumentsOver) {
  ASSERT_EQ(ArriveFirst(), Arrival::First);
  const std::string here = Folder(), strange = "50%#?\xff\n\xc3\xa9 'x'";
  struct {
    std::vector<std::string> arguments;
    const char* token;
    std::optional<Message> message;
  } const rows[] = {
      {{"/x//y/../z/.", strange, "../" + strange},
       "",
       Files({"/x/z", here + "/" + strange, Folder().parent_path().string() + "/" + strange},
             true)},
      {{"-background", "a", "-backgrounds"},
       "",
       Files({here + "/a", here + "/-backgrounds"}, false)},
      {{"/a"}, "t", WithToken(Files({"/a"}, true), "t")},
      {{}, "t", WithToken(Message(ACTIVATE), "t")},
      {{"-background"}, "t", std::nullopt},
  };
  const auto program = Install("kestrin");
  for (const auto& row : rows) {
    const ScopedVariables token("DESKTOP_STARTUP_ID", row.token);
    const auto second = Start(program, row.arguments);
    ASSERT_TRUE(!row.message || RunUntil([this] { return !queue_.Empty(); }));
    EXPECT_EQ(second->Wait(), 0);
    EXPECT_EQ(NextLine(), "application arrived handed over");
    EXPECT_EQ(queue_.Take(), row.message);
  }
}

TEST_F(ApplicationBusTest, AnOwnerThatIsSilentIsGivenUpAndOneThatDiesIsFollowed) {
  CallBus("RequestName", {ApplicationBusName, 0U});
  BusReceiver silent(queue_);
  ASSERT_TRUE(Client().registerVirtualObject(ApplicationObject, &silent));
  EXPECT_EQ(bus_.Arrive({{"/a"}, {}, true}), Arrival::NoAnswer);
  EXPECT_THAT(bus_.Reason(), HasSubstr("does not answer"));
  EXPECT_TRUE(bus_.Leave());
  CallBus("ReleaseName", {ApplicationBusName});

  const auto mortal = Start(Install("Mortal"));
  EXPECT_EQ(NextLine(), "mortal waits");
  const auto follower = Start(Install("kestrin"), {"/a"});
  EXPECT_EQ(NextLine(), "application arrived first");
  EXPECT_EQ(NextLine(), "application opens");
  Client().call(Post(QUIT_REQUESTED));
  EXPECT_EQ(follower->Wait(), 0);
}

TEST_F(ApplicationBusTest, FindsTheMessageItWasStartedForBeforeItsRoleIsDecided) {
  Activatable(ApplicationBusName, Install("kestrin"));
  EXPECT_EQ(Client().call(Post(DELIVER_EVENTS)).type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(NextLine(), "application arrived first");
  EXPECT_EQ(NextLine(), "application delivers, started by the bus");
  EXPECT_THAT(NextLine(), HasSubstr("application got"));
  // A start by the bus that finds the name taken has nothing to say.
  const ScopedVariables mark("DBUS_STARTER_BUS_TYPE", "session");
  EXPECT_EQ(bus_.Arrive({{}, {}, true}), Arrival::HandedOver);
  EXPECT_EQ(Client().call(Post(QUIT_REQUESTED)).type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(NextLine(), "application got " + Message(QUIT_REQUESTED).Flatten());
}

TEST_F(ApplicationBusTest, APersonsStartTellsTheBusItsDisplay) {
  Activatable(BackgroundBusName, Install("KestrinBackground"));
  SystemFileDoor files;
  for (const bool reached : {false, true}) {
    ApplicationBus bus(queue_);
    kestrin::Start start;
    if (reached) start.environment["DISPLAY"] = ":77";
    ASSERT_EQ(bus.Arrive(start), Arrival::First);
    constexpr std::chrono::minutes Long{1};
    BusBackground background(bus.Connection(), files, queue_, {Long, Long, Long, Long});
    background.Launch(nullptr, {});
    background.Finish();
    EXPECT_THAT(NextLine(), testing::EndsWith(reached ? "DISPLAY=:77" : "DISPLAY="));
    background.AskToQuit();
    EXPECT_EQ(NextLine(), "deliverer got 5f515251 ");
    while (HasOwner(BackgroundBusName)) continue;
    EXPECT_TRUE(bus.Leave());
  }
}

TEST_F(ApplicationBusTest, LeavesOnlyWhenNothingHasComeMeanwhile) {
  ASSERT_EQ(ArriveFirst(), Arrival::First);
  QDBusPendingCall late = Client().asyncCall(Post(DELIVER_EVENTS));
  Settle();
  EXPECT_FALSE(bus_.Leave());
  late.waitForFinished();
  EXPECT_FALSE(late.isError());
  EXPECT_TRUE(HasOwner(ApplicationBusName));
  EXPECT_EQ(queue_.Take(), Message(DELIVER_EVENTS));
  queue_.Post(EVENT_SETS_CHANGED);
  EXPECT_TRUE(bus_.Leave());
  EXPECT_FALSE(HasOwner(ApplicationBusName));
}

TEST_F(ApplicationBusTest, WhatComesTooLateGoesToTheNewOwner) {
  ASSERT_EQ(ArriveFirst(), Arrival::First);
  const auto heir = Start(Install("Heir"));
  EXPECT_EQ(NextLine(), "heir waits");
  QDBusPendingCall late = Client().asyncCall(
      Open({"file:///a%FF"}, {{"activation-token", "t"}, {BackgroundKey, true}}));
  Client().asyncCall(Post(QUIT_REQUESTED, {{"Full", true}}));
  Client().asyncCall(Post(DELIVER_EVENTS, {{"Late", 61}}));
  Settle();
  EXPECT_TRUE(bus_.Leave());
  const Message opened = WithToken(Files({"/a\xff"}, false), "t");
  EXPECT_EQ(NextLine(), "application got " + opened.Flatten());
  EXPECT_EQ(NextLine(), "application got " + Message(FULL_QUIT_REQUESTED).Flatten());
  EXPECT_EQ(NextLine(), "application got " + LateBy61().Flatten());
  late.waitForFinished();
  EXPECT_FALSE(late.isError());
  EXPECT_TRUE(queue_.Empty());
}

TEST_F(ApplicationBusTest, ABusThatDoesNotAnswerHoldsNobodyUp) {
  ASSERT_EQ(ArriveFirst(), Arrival::First);
  Bus().Stop();
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_TRUE(bus_.Leave());
  EXPECT_LT(std::chrono::steady_clock::now() - begin, Patience);
}

TEST_F(ApplicationBusTest, TheEndOfTheBusEndsTheProgramOnce) {
  ASSERT_EQ(ArriveFirst(), Arrival::First);
  Bus().End();
  ASSERT_TRUE(RunUntil([this] { return !queue_.Empty(); }));
  EXPECT_EQ(queue_.Take(), Message(FORCED_QUIT));
  EXPECT_TRUE(bus_.Leave());
  EXPECT_TRUE(queue_.Empty());
}

TEST_F(ApplicationBusTest, WithoutABusItSaysSo) {
  const ScopedVariables address("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
  EXPECT_EQ(bus_.Arrive({}), Arrival::NoBus);
  EXPECT_THAT(bus_.Reason(), HasSubstr("/nonexistent/bus"));
  EXPECT_TRUE(bus_.Leave());
}

}  // namespace
}  // namespace kestrin
