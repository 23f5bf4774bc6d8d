// Queue and signals, driven by the real event loop.
#include <errno.h>
#include <signal.h>
#include <unistd.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>
#include <filesystem>
#include <fstream>
#include <thread>

#include "session/QueueRunner.h"
#include "session/SessionBus.h"
#include "session/SystemFileWatcher.h"
#include "session/UnixSignals.h"

namespace kestrin {
namespace {

using testing::ElementsAre;

TEST(QueueRunner, OneMessageATurnHoweverManyAreAdded) {
  MessageQueue queue;
  std::vector<uint32> seen;
  queue.Post(Message(1001));
  const QueueRunner runner(queue, [&](const Message& message) {
    if (message.what < 1005) queue.Post(Message(message.what + 1));
    QCoreApplication::processEvents();  // a handler that lets the loop run
    seen.push_back(message.what);       // is through before the next message
  });
  QTimer windows;
  QObject::connect(&windows, &QTimer::timeout, [&] { seen.push_back(0); });
  windows.start(0);
  ASSERT_TRUE(RunUntil([&] { return !seen.empty() && seen.back() == 1005; }));
  // Something else of the loop came to its turn between any two.
  for (size_t i = 1; i < seen.size(); ++i) EXPECT_TRUE(seen[i] == 0 || seen[i - 1] == 0) << i;
  std::erase(seen, 0U);
  EXPECT_THAT(seen, ElementsAre(1001, 1002, 1003, 1004, 1005));
}

TEST(QueueRunner, NothingIsLostBetweenThreads) {
  constexpr int each = 2000;
  MessageQueue queue;
  int handled = 0;
  auto runner = std::make_unique<QueueRunner>(queue, [&](const Message&) { ++handled; });
  const auto post = [&queue] {
    for (int i = 0; i < each; ++i) queue.Post(Message(1000));
  };
  std::thread first(post), second(post);
  EXPECT_TRUE(RunUntil([&] { return handled == 2 * each; }));
  runner.reset();
  queue.Post(Message(1000));
  first.join();
  second.join();
  EXPECT_FALSE(queue.Empty());
}

TEST(SystemFileWatcher, TellsWhenAFileIsWrittenOrReplacedAgainAndAgain) {
  const TemporaryFolder folder;
  const std::string file = folder.path + "/set", other = folder.path + "/other";
  const auto write = [](const std::string& path) { std::ofstream(path) << "x"; };
  write(file), write(other);
  MessageQueue queue;
  SystemFileWatcher watcher(queue);
  watcher.Watch({file, other, folder.path + "/missing"});
  watcher.Watch({file});
  const auto told = [&queue] {
    return RunUntil([&queue] { return !queue.Empty(); }) && queue.Take() && queue.Empty();
  };
  write(other);
  for (int turn = 0; turn < 4; ++turn) {
    if (turn % 2 == 0) {
      write(folder.path + "/new");
      std::filesystem::rename(folder.path + "/new", file);
    } else {
      write(file);
    }
    EXPECT_TRUE(told()) << turn;
  }
  std::filesystem::remove(file);
  EXPECT_TRUE(told());
  write(file);
  watcher.Watch({file});
  write(file);
  EXPECT_TRUE(told()) << "asked for again";
}

// Returns when the loop has looked at every file that is readable now.
void LookAtFiles() {
  int pipes[2];
  ASSERT_EQ(pipe(pipes), 0);
  ASSERT_EQ(write(pipes[1], "x", 1), 1);
  bool looked = false;
  QSocketNotifier notifier(pipes[0], QSocketNotifier::Read);
  QObject::connect(&notifier, &QSocketNotifier::activated, [&looked] { looked = true; });
  EXPECT_TRUE(RunUntil([&looked] { return looked; }));
  close(pipes[0]);
  close(pipes[1]);
}

TEST(UnixSignals, TheFirstOneForcesTheQuitAndTheOthersDoNothing) {
  MessageQueue queue;
  signal(SIGHUP, SIG_IGN);  // as under nohup
  signal(SIGINT, SIG_DFL);
  sigset_t blocked;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
  {
    const UnixSignals guard(queue);
    raise(SIGHUP);
    LookAtFiles();
    EXPECT_TRUE(queue.Empty());
    for (const int number : {SIGTERM, SIGINT, SIGTERM}) {
      raise(number);
      LookAtFiles();
      EXPECT_FALSE(queue.Empty());
    }
    EXPECT_EQ(queue.Take(), Message(FORCED_QUIT));
    EXPECT_TRUE(queue.Empty());

    int pipes[2];
    ASSERT_EQ(pipe(pipes), 0);
    close(pipes[0]);
    EXPECT_EQ(write(pipes[1], "x", 1), -1);
    EXPECT_EQ(errno, EPIPE);
    close(pipes[1]);
    // Ignored signals stay ignored in started programs; this one must not.
    EXPECT_NE(signal(SIGPIPE, SIG_DFL), SIG_IGN);
  }
  EXPECT_EQ(signal(SIGTERM, SIG_DFL), SIG_DFL);
  signal(SIGHUP, SIG_DFL);
}

}  // namespace
}  // namespace kestrin
