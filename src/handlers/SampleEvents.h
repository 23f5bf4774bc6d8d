// Events for a person to look at: one of every period type, every built-in handler among them.
#pragma once

#include <memory>
#include <vector>

#include "core/events/EventSet.h"
#include "core/ports/Clock.h"
#include "core/timing/EventTypes.h"

namespace kestrin {

/// The set, which nobody knows of yet, gets the events when this goes, as if deliveries had
/// made them: no person has. The built-in handlers are loaded.
class SampleEvents {
 public:
  // Some of the standard icons.
  static constexpr int32 Bell = 0, Cake = 1, Money = 2, Disk = 3, Clock = 5, Heart = 6, Star = 8,
                         House = 9, Plane = 10;

  explicit SampleEvents(EventSet& set) : set_(set), byItself_(set) {}
  ~SampleEvents();
  SampleEvents(const SampleEvents&) = delete;
  SampleEvents& operator=(const SampleEvents&) = delete;

  /// The whole sample; its first reminder comes after so many seconds.
  void AddSample(int32 welcomeAfter);

  /// A new event, due at `secondsIntoDay` (none when negative), starting today.
  Event& Add(int32 icon, const char* name, PeriodicityType type, int32 secondsIntoDay);
  /// A command that asks first.
  Event& AddBackup(PeriodicityType type, int32 secondsIntoDay);
  static void Say(Event& event, const char* text);

 private:
  void AddWelcome(int32 seconds);
  void AddYearly();
  void AddMonthly();
  void AddWeekly();
  void AddDaily();
  int32 Today(int32 secondsIntoDay) const;

  EventSet& set_;
  const EventSet::DeliveryChange byItself_;
  std::vector<std::unique_ptr<Event>> made_;
};

}  // namespace kestrin
