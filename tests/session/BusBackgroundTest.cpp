#include "session/BusBackground.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/loop/MessageCodes.h"
#include "session/ActivationFile.h"
#include "session/BusNames.h"
#include "session/SessionBus.h"

namespace kestrin {
namespace {

using std::chrono::milliseconds;
using testing::HasSubstr, testing::StartsWith;
namespace fs = std::filesystem;

Message Launched(bool runs, bool inTrash = false) {
  Message outcome(BACKGROUND_LAUNCHED);
  outcome.Set("runs", runs);
  outcome.Set("inTrash", inTrash);
  return outcome;
}

class BusBackgroundTest : public SessionBus {
 protected:
  BusBackgroundTest() { next_.Set("When", int32{5}); }

  pid_t Deliverer() {
    return CallBus("GetConnectionUnixProcessID", {BackgroundBusName}).arguments().value(0).toInt();
  }

  std::string ActivationProgram(const char* name) {
    const std::string file = Bus().Folder() + "/services/" + name + ".service";
    return ActivatedProgram(ReadFile(file), name).value_or("none");
  }

  std::optional<Message> NextMessage() {
    RunUntil([this] { return !queue_.Empty(); });
    return queue_.Take();
  }
  /// What comes of it, in a running application or in one that leaves.
  std::optional<Message> Launch(const Message* message, const std::string& file = Nowhere) {
    background_.Launch(message, file);
    leaving_ = !leaving_;
    return leaving_ ? background_.Finish() : NextMessage();
  }

  // Longer than any test takes, on a busy machine too.
  static constexpr milliseconds Long{60'000};
  static constexpr char Nowhere[] = "/nonexistent/KestrinBackground";
  SystemFileDoor files_;
  MessageQueue queue_;
  BusBackground background_{Client(), files_, queue_, {Long, Long, Long, Long}};
  Message next_{NEXT_EVENT_MESSAGE};
  bool leaving_ = false;
};

TEST_F(BusBackgroundTest, ReachesTheDelivererByName) {
  Activatable(BackgroundBusName, Install("KestrinBackground"));
  background_.AskToQuit();
  EXPECT_FALSE(background_.Finish());
  EXPECT_FALSE(HasOwner(BackgroundBusName));
  EXPECT_EQ(Launch(&next_), Launched(true));
  EXPECT_THAT(NextLine(), StartsWith("KestrinBackground up"));
  EXPECT_EQ(NextLine(), "deliverer got 53657445 5");
  EXPECT_EQ(Launch(nullptr), Launched(true));
  const Message nothingPending(NEXT_EVENT_MESSAGE);
  background_.Launch(&nothingPending, {});
  EXPECT_EQ(NextLine(), "deliverer got 53657445 ");
  background_.AskToQuit();
  EXPECT_EQ(NextLine(), "deliverer got 5f515251 ");
  EXPECT_EQ(NextMessage(), Message(BACKGROUND_GONE));
}

TEST_F(BusBackgroundTest, AKilledDelivererIsMissedAndANewerMessageTakesThePlaceOfOneUnderWay) {
  Activatable(BackgroundBusName, Install("KestrinBackground"));
  const Message nothingPending(NEXT_EVENT_MESSAGE);
  background_.Launch(&nothingPending, Nowhere);
  background_.Launch(&next_, {});
  EXPECT_EQ(NextMessage(), Launched(true));
  EXPECT_THAT(NextLine(), StartsWith("KestrinBackground up"));
  EXPECT_EQ(NextLine(), "deliverer got 53657445 5");
  EXPECT_TRUE(NoLine());
  kill(Deliverer(), SIGSTOP);
  background_.Launch(&nothingPending, Nowhere);
  background_.Launch(&next_, Nowhere);
  kill(Deliverer(), SIGKILL);  // with both unread
  EXPECT_THAT((std::vector{*NextMessage(), *NextMessage()}),
              testing::UnorderedElementsAre(Launched(true), Message(BACKGROUND_GONE)));
  EXPECT_THAT(NextLine(), StartsWith("KestrinBackground up"));
  EXPECT_EQ(NextLine(), "deliverer got 53657445 5");
}

TEST_F(BusBackgroundTest, AStoppedDelivererHoldsNobodyUp) {
  Activatable(BackgroundBusName, Install("KestrinBackground"));
  EXPECT_EQ(Launch(nullptr), Launched(true));
  EXPECT_THAT(NextLine(), StartsWith("KestrinBackground up"));
  kill(Deliverer(), SIGSTOP);
  constexpr milliseconds Short{50};
  BusBackground background(Client(), files_, queue_, {Short, Long, Long, Long});
  background.Launch(&next_, Nowhere);
  EXPECT_EQ(NextMessage(), Launched(true)) << "the message waits where it is read later";
  BusBackground leaving(Client(), files_, queue_, {Short, Long, milliseconds(0), Long});
  leaving.Launch(nullptr, Nowhere);
  leaving.Launch(&next_, Nowhere);
  EXPECT_FALSE(leaving.Finish()) << "the end of its patience, not of the answer's";
  kill(Deliverer(), SIGCONT);
  for (int i = 0; i < 2; ++i) EXPECT_EQ(NextLine(), "deliverer got 53657445 5");
}

TEST_F(BusBackgroundTest, AFileStartedByPathIsKnownByNameAfterwards) {
  const fs::path program = Install("KestrinBackground", "it's a \"f\xc3\xbcr\" $x\\n #1\n");
  const int leaked = dup(0);
  background_.Launch(&next_, program);
  EXPECT_EQ(NextMessage(), Launched(true));
  close(leaked);
  EXPECT_EQ(NextLine(), "KestrinBackground up: 0 files own session DISPLAY=");
  EXPECT_EQ(NextLine(), "deliverer got 53657445 5");
  EXPECT_EQ(ActivationProgram(BackgroundBusName), program);
  EXPECT_EQ(ActivationProgram(ApplicationBusName), program.parent_path() / "kestrin");
  const QStringList known = CallBus("ListActivatableNames").arguments().value(0).toStringList();
  EXPECT_TRUE(known.contains(BackgroundBusName) && known.contains(ApplicationBusName));

  kill(Deliverer(), SIGKILL);
  EXPECT_EQ(NextMessage(), Message(BACKGROUND_GONE));
  EXPECT_EQ(Launch(&next_), Launched(true));
  EXPECT_THAT(NextLine(), StartsWith("KestrinBackground up"));
  EXPECT_EQ(NextLine(), "deliverer got 53657445 5");
}

TEST_F(BusBackgroundTest, OneThatIsStillStartingIsAskedToQuitToo) {
  background_.Launch(nullptr, Install("KestrinBackground"));
  ASSERT_TRUE(RunUntil([this] { return !NoLine(); }));
  background_.AskToQuit();
  background_.Finish();
  EXPECT_THAT(NextLine(), StartsWith("KestrinBackground up"));
  EXPECT_EQ(NextLine(), "deliverer got 5f515251 ");
}

TEST_F(BusBackgroundTest, WhatHasGoneIsRegisteredAnew) {
  const fs::path program = Install("KestrinBackground"),
                 other = Install("KestrinBackground", "other");
  Activatable(BackgroundBusName, program);
  fs::remove(program);
  EXPECT_EQ(Launch(&next_, other), Launched(true));
  EXPECT_EQ(ActivationProgram(BackgroundBusName), other);
  EXPECT_EQ(ActivationProgram(ApplicationBusName), other.parent_path() / "kestrin");
}

TEST_F(BusBackgroundTest, TheApplicationIsRegisteredThoughTheDelivererIsKnown) {
  Activatable(BackgroundBusName, Install("Leaving"));
  const fs::path program = Install("KestrinBackground");
  EXPECT_EQ(Launch(&next_, program), Launched(true));
  EXPECT_EQ(ActivationProgram(ApplicationBusName), program.parent_path() / "kestrin");
}

TEST_F(BusBackgroundTest, RefusesTheTrash) {
  Activatable(BackgroundBusName, Install("KestrinBackground", "data/Trash/files"));
  EXPECT_EQ(Launch(&next_), Launched(false, true));
  EXPECT_EQ(Launch(&next_, Install("KestrinBackground")), Launched(true, true));
  EXPECT_THAT(NextLine(), StartsWith("KestrinBackground up"));
  for (const char* path : {"/.Trash-1000/files/k", "/mnt/x/.Trash/1000/files/a/k"})
    EXPECT_TRUE(LiesInTrash(files_, path)) << path;
  for (const char* path : {"/Trash/files/k", "/.Trash-x/k", "/.Trash-1000", "/.Trashes/1/k"})
    EXPECT_FALSE(LiesInTrash(files_, path)) << path;
}

TEST_F(BusBackgroundTest, AProgramThatIsMissingOrLeavesFailsAtOnce) {
  Activatable(BackgroundBusName, Nowhere);
  const auto begin = std::chrono::steady_clock::now();
  for (const std::string& file : {std::string(Nowhere), std::string("/etc/passwd"),
                                  Install("Leaving").string(), Install("Leaving2").string()})
    EXPECT_EQ(Launch(&next_, file), Launched(false)) << file;
  EXPECT_LT(std::chrono::steady_clock::now() - begin, Long / 2);
  // The one child left is the bus; a zombie would be found first.
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), 0);
}

TEST_F(BusBackgroundTest, AProgramThatHangsIsNotStartedTwice) {
  const fs::path hanging = Install("Hanging");
  constexpr milliseconds Short{300};
  BusBackground background(Client(), files_, queue_, {Long, Short, Long, Long});
  for (int i = 0; i < 2; ++i) {
    background.Launch(&next_, hanging);
    EXPECT_EQ(NextMessage(), Launched(false));
  }
  EXPECT_THAT(NextLine(), HasSubstr("Hanging up"));
  EXPECT_TRUE(NoLine());
}

TEST_F(BusBackgroundTest, WithoutABusEverythingFailsAtOnce) {
  BusBackground background(QDBusConnection("none"), files_, queue_);
  background.Launch(&next_, Install("KestrinBackground"));
  EXPECT_EQ(queue_.Take(), Launched(false));
  EXPECT_TRUE(NoLine());
}

TEST(ActivationFile, ReadsWhatOthersWrite) {
  const std::string head = "# made by hand\n[D-BUS Service]\nName = n.n\nUser=x\n";
  struct {
    const char* rest;
    const char* program;
  } const rows[] = {
      {"Exec=/bin/a --flag\n", "/bin/a"},      {"Exec=  \"/opt/a b\" c\n", "/opt/a b"},
      {"Exec=/opt/a\\\\ b\\sc\n", "/opt/a b"}, {"Exec='/opt/\"\\\\'x", "/opt/\"\\x"},
      {"Exec='/unclosed\n", "none"},           {"Exec=/a\\q\n", "none"},
      {"[Other]\nExec=/a\n", "none"},          {"Exec=\n", "none"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(ActivatedProgram(head + row.rest, "n.n").value_or("none"), row.program) << row.rest;
  EXPECT_FALSE(ActivatedProgram(head + "Exec=/a\n", "n.m"));
  EXPECT_FALSE(ActivationText("n.n", "/a\xff"));
}

}  // namespace
}  // namespace kestrin
