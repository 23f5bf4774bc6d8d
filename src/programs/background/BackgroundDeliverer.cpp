#include "programs/background/BackgroundDeliverer.h"

#include <errno.h>
#include <signal.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <sys/inotify.h>
#include <sys/wait.h>
#include <time.h>

#include "programs/background/BusContract.h"
#include "programs/background/BusFields.h"
#include "programs/background/Launcher.h"
#include "programs/background/StartUpPages.h"
#include "session/BusNames.h"

namespace kestrin {

namespace {

constexpr uint64 MicrosecondsPerSecond = 1'000'000;
constexpr uint64 TimerAccuracy = 1;  // microsecond; 0 would mean a quarter of a second
constexpr uint64 CallTimeout = 300 * MicrosecondsPerSecond;
constexpr uint64 ZoneSettleTime = 1 * MicrosecondsPerSecond;

// Returned by Prepare when another deliverer runs already.
constexpr int AlreadyRunning = 1;

constexpr char OwnerChangedMatch[] =
    "type='signal',sender='org.freedesktop.DBus',path='/org/freedesktop/DBus',"
    "interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='vnd.ZR.Kestrin'";
constexpr char LocalName[] = "org.freedesktop.DBus.Local";
constexpr char LocalObject[] = "/org/freedesktop/DBus/Local";

void Say(const char* what, int error) {
  fprintf(stderr, "KestrinBackground: %s: %s\n", what, strerror(error < 0 ? -error : error));
}

BackgroundDeliverer* Self(void* self) { return static_cast<BackgroundDeliverer*>(self); }

}  // namespace

const sd_bus_vtable BackgroundDeliverer::Vtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Post", "ua{sv}", "", OnPost, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("When", "i", OnGetWhen, 0, SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_VTABLE_END,
};

BackgroundDeliverer::BackgroundDeliverer(const BackgroundSurroundings& surroundings)
    : surroundings_(surroundings) {}

int BackgroundDeliverer::Run() {
  const int prepared = Prepare();
  if (prepared == AlreadyRunning) return 0;
  if (prepared < 0) return 1;
  ReleaseStartUpPages();
  const int code = sd_event_loop(event_.get());
  if (code < 0) Say("the event loop failed", code);
  return code < 0 ? 1 : code;
}

// Start

int BackgroundDeliverer::Prepare() {
  int result = PrepareLoop();
  if (result < 0) {
    Say("cannot set up the event loop", result);
    return result;
  }
  result = PrepareBus();
  if (result == AlreadyRunning) return result;
  if (result < 0) {
    Say("cannot use the session bus", result);
    return result;
  }
  OpenKeptTime();
  result = clockWatch_.Begin(event_.get(), OnClockWentBack, this);
  if (result < 0) Say("a clock that is set back will go unnoticed", result);
  WatchZone();
  return 0;
}

int BackgroundDeliverer::PrepareLoop() {
  sigset_t handled;
  sigemptyset(&handled);
  sigaddset(&handled, SIGTERM);
  sigaddset(&handled, SIGINT);
  sigaddset(&handled, SIGCHLD);
  if (sigprocmask(SIG_BLOCK, &handled, nullptr) != 0) return -errno;
  if (signal(SIGPIPE, SIG_IGN) == SIG_ERR) return -errno;

  sd_event* event = nullptr;
  if (const int result = sd_event_new(&event); result < 0) return result;
  event_.reset(event);
  for (const int number : {SIGTERM, SIGINT})  // no handler: the loop ends with status 0
    if (const int result = sd_event_add_signal(event, nullptr, number, nullptr, nullptr);
        result < 0)
      return result;

  struct {
    Owned<sd_event_source>& place;
    clockid_t clock;
    sd_event_time_handler_t handler;
  } const timers[] = {{timer_, CLOCK_REALTIME, OnTimer},
                      {retry_, CLOCK_MONOTONIC, OnRetry},
                      {zoneSettled_, CLOCK_MONOTONIC, OnZoneSettled}};
  for (const auto& timer : timers) {
    sd_event_source* source = nullptr;
    int result =
        sd_event_add_time(event, &source, timer.clock, 0, TimerAccuracy, timer.handler, this);
    if (result < 0) return result;
    timer.place.reset(source);
    result = sd_event_source_set_enabled(source, SD_EVENT_OFF);
    if (result < 0) return result;
  }
  return 0;
}

int BackgroundDeliverer::PrepareBus() {
  sd_bus* bus = nullptr;
  int result = sd_bus_open_user(&bus);
  if (result < 0) return result;
  bus_.reset(bus);
  result =
      sd_bus_add_object_vtable(bus, nullptr, BackgroundObject, MessagesInterface, Vtable, this);
  if (result < 0) return result;
  result = sd_bus_match_signal(bus, nullptr, LocalName, LocalObject, LocalName, "Disconnected",
                               OnDisconnected, this);
  if (result < 0) return result;
  result = sd_bus_add_match(bus, nullptr, OwnerChangedMatch, OnOwnerChanged, this);
  if (result < 0) return result;
  result = sd_bus_request_name(bus, BackgroundBusName, 0);
  if (result == -EEXIST) return AlreadyRunning;
  if (result < 0) return result;
  return sd_bus_attach_event(bus, event_.get(), SD_EVENT_PRIORITY_NORMAL);
}

void BackgroundDeliverer::OpenKeptTime() {
  int32 when = 0;
  status_t status = kept_.Open(surroundings_.runtimeFolder);
  if (status < 0) {
    Say("the next event's time will not outlive this process, no usable XDG_RUNTIME_DIR", status);
  } else {
    status = kept_.Read(when);
    if (status == -EBADMSG)
      fputs("KestrinBackground: the kept time is damaged and is ignored\n", stderr);
    else if (status < 0 && status != -ENOENT)
      Say("cannot read the kept time", status);
  }
  Carry(status == StatusOk ? schedule_.SetWhen(when) : schedule_.Forgotten());
}

void BackgroundDeliverer::WatchZone() {
  sd_event_source* watch = nullptr;
  const int result = sd_event_add_inotify(event_.get(), &watch, surroundings_.zoneFolder,
                                          IN_CREATE | IN_MOVED_TO | IN_CLOSE_WRITE | IN_ONLYDIR,
                                          OnZoneFolder, this);
  zoneWatch_.reset(watch);
  if (result < 0) Say("changes of the time zone will go unnoticed", result);
}

// What comes from the bus

int BackgroundDeliverer::OnPost(sd_bus_message* message, void* self, sd_bus_error* error) {
  uint32 what = 0;
  if (const int result = sd_bus_message_read_basic(message, 'u', &what); result < 0) return result;
  switch (what) {
    case NextEventCode:
      return Self(self)->TakeNextEvent(message, error);
    case QuitRequestedCode:
      return Self(self)->TakeQuitRequest(message);
    default:
      return sd_bus_error_setf(error, UnknownMessageError,
                               "KestrinBackground does not take the message 0x%08x", what);
  }
}

int BackgroundDeliverer::TakeNextEvent(sd_bus_message* message, sd_bus_error* error) {
  NextEventFields next;
  if (const int result = ReadNextEventFields(message, next, error); result < 0) return result;
  const bool changed = next.When != schedule_.When();
  since_ = next.Since;
  Carry(schedule_.SetWhen(next.When));
  const status_t status = kept_.Write(next.When);
  if (changed)
    sd_bus_emit_properties_changed(bus_.get(), BackgroundObject, MessagesInterface, "When",
                                   nullptr);
  if (status >= 0) return sd_bus_reply_method_return(message, "");
  Say("cannot keep the time", status);
  return sd_bus_error_setf(error, NotKeptError, "The time cannot be kept: %s", strerror(-status));
}

int BackgroundDeliverer::TakeQuitRequest(sd_bus_message* message) {
  if (const status_t status = kept_.Write(0); status < 0)
    Say("cannot keep that nothing is pending", status);
  sd_bus_release_name(bus_.get(), BackgroundBusName);
  const int result = sd_bus_reply_method_return(message, "");
  sd_event_exit(event_.get(), 0);
  return result;
}

int BackgroundDeliverer::OnGetWhen(sd_bus*, const char*, const char*, const char*,
                                   sd_bus_message* reply, void* self, sd_bus_error*) {
  return sd_bus_message_append(reply, "i", Self(self)->schedule_.When());
}

int BackgroundDeliverer::OnOwnerChanged(sd_bus_message* signal, void* self, sd_bus_error*) {
  const char* newOwner = nullptr;
  if (sd_bus_message_read(signal, "sss", nullptr, nullptr, &newOwner) < 0) return 0;
  if (newOwner[0] != '\0') {
    Self(self)->schedule_.ApplicationAppeared();
    return 0;
  }
  const WakeOrders orders = Self(self)->schedule_.ApplicationVanished();
  Self(self)->SayFailure(orders, "it ended without telling its next event");
  Self(self)->Carry(orders);
  return 0;
}

int BackgroundDeliverer::OnDisconnected(sd_bus_message*, void* self, sd_bus_error*) {
  return sd_event_exit(Self(self)->event_.get(), 0);
}

// What comes from the clocks, the zone and the launched process

int BackgroundDeliverer::OnTimer(sd_event_source*, uint64, void* self) {
  Self(self)->Carry(Self(self)->schedule_.TimerCame());
  return 0;
}

int BackgroundDeliverer::OnRetry(sd_event_source*, uint64, void* self) {
  Self(self)->Carry(Self(self)->schedule_.RetryCame());
  return 0;
}

void BackgroundDeliverer::OnClockWentBack(void* self) {
  Self(self)->Carry(Self(self)->schedule_.ClockWentBack());
}

int BackgroundDeliverer::OnZoneSettled(sd_event_source*, uint64, void* self) {
  Self(self)->Carry(Self(self)->schedule_.ZoneChanged());
  return 0;
}

int BackgroundDeliverer::OnZoneFolder(sd_event_source*, const inotify_event* change, void* self) {
  const bool lost = change->mask & IN_Q_OVERFLOW;
  if (!lost && (change->len == 0 || strcmp(change->name, Self(self)->surroundings_.zoneEntry) != 0))
    return 0;
  sd_event_source* settled = Self(self)->zoneSettled_.get();
  int enabled = SD_EVENT_OFF;
  sd_event_source_get_enabled(settled, &enabled);
  if (enabled != SD_EVENT_OFF) return 0;
  sd_event_source_set_time_relative(settled, ZoneSettleTime);
  sd_event_source_set_enabled(settled, SD_EVENT_ONESHOT);
  return 0;
}

int BackgroundDeliverer::OnChildEnded(sd_event_source*, const siginfo_t* child, void* self) {
  if (child->si_pid != Self(self)->launched_) return 0;
  Self(self)->launched_ = 0;
  const WakeOrders orders = Self(self)->schedule_.LaunchEnded();
  Self(self)->SayFailure(orders, "it ended without telling its next event");
  Self(self)->Carry(orders);
  return 0;
}

// Waking

void BackgroundDeliverer::Carry(const WakeOrders& orders) {
  if (orders.forgetTry) {
    call_.reset();
    sd_event_source_set_enabled(retry_.get(), SD_EVENT_OFF);
  }
  if (orders.setTimer) SetTimer();
  if (orders.next == WakeTry::Call) Call();
  if (orders.next == WakeTry::Launch) Launch();
  if (orders.retrySeconds > 0) {
    const uint64 delay = static_cast<uint64>(orders.retrySeconds) * MicrosecondsPerSecond;
    sd_event_source_set_time_relative(retry_.get(), delay);
    sd_event_source_set_enabled(retry_.get(), SD_EVENT_ONESHOT);
  }
}

void BackgroundDeliverer::SetTimer() {
  const int32 when = schedule_.When();
  if (when == 0) {
    sd_event_source_set_enabled(timer_.get(), SD_EVENT_OFF);
    return;
  }
  const uint64 moment = when > 0 ? static_cast<uint64>(when) * MicrosecondsPerSecond : 0;
  int result = sd_event_source_set_time(timer_.get(), moment);
  if (result >= 0) result = sd_event_source_set_enabled(timer_.get(), SD_EVENT_ONESHOT);
  if (result < 0) Say("cannot set the timer", result);
}

int32 BackgroundDeliverer::Lateness() const {
  const int64 since = since_ != 0 ? since_ : schedule_.When();
  timespec now{};
  if (since == 0 || clock_gettime(CLOCK_REALTIME, &now) != 0) return 0;
  const int64 late = now.tv_sec - since;
  return static_cast<int32>(late < 0 ? 0 : late > INT32_MAX ? INT32_MAX : late);
}

void BackgroundDeliverer::Call() {
  sd_bus_message* message = nullptr;
  int result = sd_bus_message_new_method_call(bus_.get(), &message, ApplicationBusName,
                                              ApplicationObject, MessagesInterface, "Post");
  if (result >= 0)
    result =
        sd_bus_message_append(message, "ua{sv}", DeliverEventsCode, 1, "Late", "i", Lateness());
  sd_bus_slot* slot = nullptr;
  if (result >= 0)
    result = sd_bus_call_async(bus_.get(), &slot, message, OnAnswer, this, CallTimeout);
  sd_bus_message_unref(message);
  call_.reset(slot);
  if (result >= 0) return;
  const WakeOrders orders = schedule_.CallFailed(false);
  SayFailure(orders, strerror(-result));
  Carry(orders);
}

int BackgroundDeliverer::OnAnswer(sd_bus_message* reply, void* self, sd_bus_error*) {
  Self(self)->call_.reset();
  const sd_bus_error* error = sd_bus_message_get_error(reply);
  const WakeOrders orders = error ? Self(self)->schedule_.CallFailed(MeansUnknownToBus(*error))
                                  : Self(self)->schedule_.CallAnswered();
  Self(self)->SayFailure(orders, error ? error->message : "it answered and ended at once");
  Self(self)->Carry(orders);
  return 0;
}

void BackgroundDeliverer::Launch() {
  const pid_t child = LaunchApplication();
  int result = child;
  if (child > 0) {
    launched_ = child;
    result = sd_event_add_child(event_.get(), nullptr, child, WEXITED, OnChildEnded, this);
    if (result >= 0) return;
  }
  const WakeOrders orders = schedule_.LaunchEnded();
  SayFailure(orders, strerror(-result));
  Carry(orders);
}

// Nothing when the step was no failure.
void BackgroundDeliverer::SayFailure(const WakeOrders& orders, const char* reason) const {
  if (orders.retrySeconds == 0) return;
  fprintf(stderr, "KestrinBackground: could not wake the application (try %d, next in %d s): %s\n",
          schedule_.Failures(), orders.retrySeconds, reason ? reason : "no reason given");
}

}  // namespace kestrin
