#include "session/UnixSignals.h"

#include <errno.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>

namespace kestrin {

namespace {

constexpr int EndingSignals[] = {SIGTERM, SIGINT, SIGHUP};

// A signal handler gets nothing but the signal's number, so it finds its way out here.
std::atomic<int> arrivals = -1;

extern "C" void KestrinSignalArrived(int) {
  const int before = errno;
  const eventfd_t one = 1;
  [[maybe_unused]] const ssize_t written = write(arrivals, &one, sizeof one);
  errno = before;
}

// Unlike an ignored signal, one with a handler is back to its ordinary meaning in started programs.
extern "C" void KestrinNothing(int) {}

void Handle(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  sigaction(signal, &action, nullptr);
}

bool IsIgnored(int signal) {
  struct sigaction action {};
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

bool IsHandledHere(int signal) {
  struct sigaction action {};
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == KestrinSignalArrived;
}

}  // namespace

UnixSignals::UnixSignals(MessageQueue& queue)
    : queue_(queue), descriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  Handle(SIGPIPE, KestrinNothing);
  if (descriptor_ < 0) return;
  arrivals = descriptor_;
  notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { Arrived(); });
  sigset_t ending;
  sigemptyset(&ending);
  for (const int signal : EndingSignals) {
    sigaddset(&ending, signal);
    if (signal == SIGTERM || !IsIgnored(signal)) Handle(signal, KestrinSignalArrived);
  }
  // Whoever started the process may have left them blocked.
  pthread_sigmask(SIG_UNBLOCK, &ending, nullptr);
}

UnixSignals::~UnixSignals() {
  if (descriptor_ < 0) return;
  for (const int signal : EndingSignals)
    if (IsHandledHere(signal)) Handle(signal, SIG_DFL);
  notifier_.reset();
  arrivals = -1;
  close(descriptor_);
}

void UnixSignals::Arrived() {
  eventfd_t count = 0;
  if (eventfd_read(descriptor_, &count) < 0 || posted_) return;
  posted_ = true;
  queue_.Post(FORCED_QUIT);
}

}  // namespace kestrin
