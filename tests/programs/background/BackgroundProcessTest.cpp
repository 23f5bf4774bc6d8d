// The program itself, on a bus of the test's own.
#include <gmock/gmock.h>
#include <signal.h>

#include <filesystem>

#include "harness/bus/Peer.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int32_t Later = 1893456000;
constexpr int64_t Second = 1'000'000;

class BackgroundProcess : public testing::Test {
 protected:
  std::unique_ptr<Child> Start(std::vector<std::string> command = {KESTRIN_BACKGROUND}) {
    auto child = std::make_unique<Child>(std::move(command), bus.Environment());
    EXPECT_TRUE(peer.WaitForOwner(BackgroundBusName));
    return child;
  }

  PrivateBus bus;
  Peer peer{bus};
};

TEST_F(BackgroundProcess, SetsReplacesAndClearsTheTime) {
  const auto deliverer = Start();
  EXPECT_EQ(peer.When(), 0);
  EXPECT_EQ(peer.SetWhen(Later), "");
  EXPECT_EQ(peer.When(), Later);
  EXPECT_EQ(ReadFile(bus.KeptFile()), "1893456000\n");
  EXPECT_EQ(peer.Post(NextEventCode, {{"Why", 's', 3}, {"When", 'i', Later + 1}, {"Zeal", 'x', 9}}),
            "");
  EXPECT_EQ(peer.When(), Later + 1);
  EXPECT_EQ(peer.Post(NextEventCode, {{"why", 'b', 1}}), "");
  EXPECT_EQ(peer.When(), 0);
  EXPECT_EQ(ReadFile(bus.KeptFile()), "0\n");
  EXPECT_TRUE(peer.WaitUntil([&] { return peer.announced.size() >= 3; }));
  EXPECT_THAT(peer.announced, ElementsAre(Later, Later + 1, 0));
}

TEST_F(BackgroundProcess, RefusesForeignCodesAndFieldsOfAnotherType) {
  const auto deliverer = Start();
  ASSERT_EQ(peer.SetWhen(Later), "");
  for (const uint32_t what : {0u, 1u, 6u, 7u, DeliverEventsCode, 0x53706864u, 0x73657445u})
    EXPECT_EQ(peer.Post(what, {{"When", 'i', 5}}), UnknownMessageError) << what;
  for (const char type : {'u', 'x', 'b', 's'}) {
    EXPECT_EQ(peer.Post(NextEventCode, {{"When", type, 1}}), BadFieldError) << type;
    EXPECT_EQ(peer.Post(NextEventCode, {{"When", 'i', 5}, {"Since", type, 1}}), BadFieldError);
  }
  EXPECT_EQ(peer.When(), Later);
  EXPECT_EQ(ReadFile(bus.KeptFile()), "1893456000\n");
}

TEST_F(BackgroundProcess, WakesARunningApplicationAtTheSecondAndForAPastTimeAtOnce) {
  const auto deliverer = Start();
  Peer application(bus, ApplicationBusName);
  ASSERT_EQ(application.SetWhen(Later), "");
  size_t count = 0;
  for (const int64_t ahead : {int64_t{2}, int64_t{0}, int64_t{-3600}, -RealTime() / Second - 5}) {
    const int64_t when = RealTime() / Second + ahead;
    ASSERT_EQ(application.SetWhen(when), "");
    ASSERT_TRUE(application.WaitUntil([&] { return application.taken.size() > count; })) << ahead;
    EXPECT_EQ(application.taken[count].what, DeliverEventsCode);
    EXPECT_GE(application.taken[count++].at, when * Second);
    EXPECT_EQ(peer.When(), when) << "stands until the application has told its next event";
  }
}

TEST_F(BackgroundProcess, StartsTheApplicationBesideItselfWhenTheBusCannot) {
  LinePipe pipe(bus.Folder() + "/launched");
  fs::copy_file(KESTRIN_BACKGROUND, bus.Folder() + "/KestrinBackground");
  // Tells its arguments, whether it leads a session, blocked signals, whether SIGPIPE is ignored.
  WriteFile(bus.Folder() + "/kestrin",
            "#!/bin/sh\nset -- \"$# $*\" $(cut -d' ' -f6 /proc/$$/stat) $(grep -E 'SigBlk|SigIgn' "
            "/proc/$$/status)\necho \"$1 $(($2 == $$)) $4 $((0x$6 & 0x1000))\" > " +
                bus.Folder() + "/launched\n",
            0700);
  // Knows a file for the application, but that file has gone.
  bus.AddService(ApplicationBusName, "/nonexistent/kestrin");
  const auto deliverer = Start({bus.Folder() + "/KestrinBackground"});
  ASSERT_EQ(peer.SetWhen(1), "");
  EXPECT_EQ(pipe.NextLine(), "1 -background 1 0000000000000000 0");
}

TEST_F(BackgroundProcess, TriesAgainWhenTheApplicationVanishes) {
  const auto deliverer = Start();
  int64_t vanished = 0;
  {
    Peer application(bus, ApplicationBusName);
    ASSERT_EQ(application.SetWhen(1), "");
    ASSERT_TRUE(application.WaitUntil([&] { return !application.taken.empty(); }));
    vanished = RealTime();
  }
  Peer application(bus, ApplicationBusName);
  ASSERT_TRUE(application.WaitUntil([&] { return !application.taken.empty(); }));
  EXPECT_EQ(application.taken[0].what, DeliverEventsCode);
  EXPECT_GE(application.taken[0].at - vanished, Second);
  EXPECT_THAT(deliverer->Errors(), HasSubstr("try 1, next in 1 s"));
}

TEST_F(BackgroundProcess, AKilledOneStillKnowsItsTimeAndWithoutItWakesTheApplicationOnce) {
  auto deliverer = Start();
  ASSERT_EQ(peer.SetWhen(Later), "");
  deliverer->Signal(SIGKILL);
  EXPECT_EQ(deliverer->Wait(), -SIGKILL);
  ASSERT_TRUE(peer.WaitForOwner(BackgroundBusName, false));
  deliverer = Start();
  EXPECT_EQ(peer.When(), Later);
  deliverer->Signal(SIGTERM);
  EXPECT_EQ(deliverer->Wait(), 0);
  EXPECT_THAT(deliverer->Errors(), IsEmpty());
  ASSERT_TRUE(peer.WaitForOwner(BackgroundBusName, false));
  WriteFile(bus.KeptFile(), "tomorrow\n");
  deliverer = Start();
  EXPECT_EQ(peer.When(), 0);
  EXPECT_EQ(deliverer->Errors(), "KestrinBackground: the kept time is damaged and is ignored\n");
  Peer application(bus, ApplicationBusName);
  EXPECT_TRUE(application.WaitUntil([&] { return !application.taken.empty(); }));
}

TEST_F(BackgroundProcess, AMomentThatCannotBeKeptIsNotAcknowledged) {
  const auto deliverer = Start();
  ASSERT_EQ(peer.SetWhen(Later), "");
  fs::create_directories(bus.KeptFile() + ".new/in the way");
  EXPECT_EQ(peer.SetWhen(Later), "") << "unchanged, it needs no writing";
  EXPECT_EQ(peer.SetWhen(Later + 1), NotKeptError);
  EXPECT_EQ(peer.When(), Later + 1);
}

// Stopped over the second, like a machine that slept.
TEST_F(BackgroundProcess, SaysHowLateItIs) {
  const auto deliverer = Start();
  Peer application(bus, ApplicationBusName);
  const auto wakeUp = [&](size_t count) {
    EXPECT_TRUE(application.WaitUntil([&] { return application.taken.size() > count; }));
    return application.taken.back();
  };
  const int64_t when = RealTime() / Second + 1;
  ASSERT_EQ(application.SetWhen(when), "");
  deliverer->Signal(SIGSTOP);
  ASSERT_TRUE(Until([&] { return RealTime() >= (when + 2) * Second; }));
  deliverer->Signal(SIGCONT);
  EXPECT_GE(wakeUp(0).late, 2);
  EXPECT_LE(wakeUp(0).late, wakeUp(0).at / Second - when);
  const int64_t soon = RealTime() / Second + 1;
  ASSERT_EQ(application.Post(NextEventCode, {{"When", 'i', soon}, {"Since", 'i', soon - 70}}), "");
  EXPECT_GE(wakeUp(1).late, 70) << "what waits for a screen";
  ASSERT_EQ(application.SetWhen(RealTime() / Second + 1), "");
  EXPECT_LE(wakeUp(2).late, 9) << "and waits no longer";
}

TEST_F(BackgroundProcess, WorksWithoutARuntimeFolder) {
  auto environment = bus.Environment();
  environment["XDG_RUNTIME_DIR"] = "";
  Child deliverer({KESTRIN_BACKGROUND}, environment);
  ASSERT_TRUE(peer.WaitForOwner(BackgroundBusName));
  EXPECT_EQ(peer.SetWhen(Later), "");
  EXPECT_EQ(peer.When(), Later);
  EXPECT_THAT(deliverer.Errors(), HasSubstr("XDG_RUNTIME_DIR"));
}

TEST_F(BackgroundProcess, ASecondOneLeavesQuietly) {
  const auto first = Start();
  ASSERT_EQ(peer.SetWhen(Later), "");
  Child second({KESTRIN_BACKGROUND}, bus.Environment());
  EXPECT_EQ(second.Wait(), 0);
  EXPECT_THAT(second.Errors(), IsEmpty());
  EXPECT_EQ(peer.When(), Later);
}

TEST_F(BackgroundProcess, EndsWhenToldToAndForgetsOnlyWhenAskedToQuit) {
  const std::pair<std::function<void(const Child&)>, bool> ways[] = {
      {[&](const Child&) {
         EXPECT_EQ(peer.Post(QuitRequestedCode, {{"Full", 'b', 1}}), "");
       },
       false},
      {[](const Child& child) { child.Signal(SIGTERM); }, true},
      {[](const Child& child) { child.Signal(SIGINT); }, true},
      {[&](const Child&) { bus.End(); }, true},
  };
  for (const auto& [end, kept] : ways) {
    const auto deliverer = Start();
    ASSERT_EQ(peer.SetWhen(Later), "");
    end(*deliverer);
    EXPECT_EQ(deliverer->Wait(), 0);
    EXPECT_THAT(deliverer->Errors(), IsEmpty());
    EXPECT_EQ(ReadFile(bus.KeptFile()), kept ? "1893456000\n" : "0\n");
    peer.WaitForOwner(BackgroundBusName, false);
  }
}

TEST_F(BackgroundProcess, AChangedZoneWakesTheApplication) {
  const std::string zone = bus.Folder() + "/zone";
  fs::create_directory(zone);
  const auto deliverer = Start({BACKGROUND_ELSEWHERE, zone});
  Peer application(bus, ApplicationBusName);
  ASSERT_EQ(application.SetWhen(Later), "");
  WriteFile(zone + "/hostname", "another file");
  const int64_t changed = RealTime();
  for (const char* name : {"Europe/Berlin", "Asia/Tokyo"}) {
    fs::create_symlink(std::string("/usr/share/zoneinfo/") + name, zone + "/localtime.new");
    fs::rename(zone + "/localtime.new", zone + "/localtime");
  }
  ASSERT_TRUE(application.WaitUntil([&] { return !application.taken.empty(); }));
  EXPECT_EQ(application.taken.size(), 1u);
  EXPECT_GE(application.taken[0].at - changed, Second);
  EXPECT_EQ(application.When(), Later);
}

TEST(BackgroundUsage, SaysInOneLineWhyItCannotStart) {
  TemporaryFolder empty;
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{KESTRIN_BACKGROUND, "--version"}, "\"--version\""},
      {{KESTRIN_BACKGROUND, ""}, "\"\""},
      {{KESTRIN_BACKGROUND}, "session bus"},
  };
  for (const auto& [command, reason] : cases) {
    Child child(command, {{"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + empty.path + "/none"},
                          {"DBUS_STARTER_ADDRESS", ""}});
    EXPECT_EQ(child.Wait(), 1);
    EXPECT_THAT(child.Errors(), HasSubstr(reason));
    EXPECT_EQ(std::count(child.Errors().begin(), child.Errors().end(), '\n'), 1);
  }
}

}  // namespace
}  // namespace kestrin
