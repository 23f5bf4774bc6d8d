// The deliverer itself: joins the bus, the clock, the kept file and the zone to a WakeSchedule.
#pragma once

#include <systemd/sd-bus.h>
#include <systemd/sd-event.h>

#include <memory>

#include "kestrin/Types.h"
#include "programs/background/ClockWatch.h"
#include "programs/background/KeptTime.h"
#include "programs/background/WakeSchedule.h"

namespace kestrin {

/// Where the deliverer finds what it watches and keeps. The texts must outlive it.
struct BackgroundSurroundings {
  const char* runtimeFolder = nullptr;  ///< null: the moment is not kept
  const char* zoneFolder = "/etc";
  const char* zoneEntry = "localtime";
};

/// One per process. Blocks SIGTERM, SIGINT and SIGCHLD in the calling thread for good and reports
/// on standard error, one line each.
class BackgroundDeliverer {
 public:
  explicit BackgroundDeliverer(const BackgroundSurroundings& surroundings);
  BackgroundDeliverer(const BackgroundDeliverer&) = delete;
  BackgroundDeliverer& operator=(const BackgroundDeliverer&) = delete;

  /// Runs until asked to end. The process's exit status, as docs/bus.md lists it.
  int Run();

 private:
  struct Release {
    void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
    void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
    void operator()(sd_event* event) const { sd_event_unref(event); }
    void operator()(sd_event_source* source) const { sd_event_source_disable_unref(source); }
  };
  template <typename T>
  using Owned = std::unique_ptr<T, Release>;

  static const sd_bus_vtable Vtable[];

  static int OnPost(sd_bus_message* message, void* self, sd_bus_error* error);
  static int OnGetWhen(sd_bus* bus, const char* path, const char* interface, const char* property,
                       sd_bus_message* reply, void* self, sd_bus_error* error);
  static int OnAnswer(sd_bus_message* reply, void* self, sd_bus_error* error);
  static int OnOwnerChanged(sd_bus_message* signal, void* self, sd_bus_error* error);
  static int OnDisconnected(sd_bus_message* signal, void* self, sd_bus_error* error);
  static int OnTimer(sd_event_source* source, uint64 time, void* self);
  static int OnRetry(sd_event_source* source, uint64 time, void* self);
  static void OnClockWentBack(void* self);
  static int OnZoneSettled(sd_event_source* source, uint64 time, void* self);
  static int OnZoneFolder(sd_event_source* source, const inotify_event* change, void* self);
  static int OnChildEnded(sd_event_source* source, const siginfo_t* child, void* self);

  int Prepare();
  int PrepareLoop();
  int PrepareBus();
  void WatchZone();
  void OpenKeptTime();

  int TakeNextEvent(sd_bus_message* message, sd_bus_error* error);
  int TakeQuitRequest(sd_bus_message* message);
  int32 Lateness() const;
  void Carry(const WakeOrders& orders);
  void SetTimer();
  void Call();
  void Launch();
  void SayFailure(const WakeOrders& orders, const char* reason) const;

  BackgroundSurroundings surroundings_;
  WakeSchedule schedule_;
  ClockWatch clockWatch_;
  KeptTimeFile kept_;
  int32 since_ = 0;  // lateness counts from here; 0: from the pending moment
  pid_t launched_ = 0;
  Owned<sd_event> event_;
  Owned<sd_bus> bus_;
  Owned<sd_bus_slot> call_;
  Owned<sd_event_source> timer_, retry_, zoneSettled_, zoneWatch_;
};

}  // namespace kestrin
