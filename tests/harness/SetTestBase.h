// Open sets over fakes: files in memory, a table of fake handlers, a clock that jumps.
#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <utility>

#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/files/StoredSetFile.h"
#include "core/settings/KestrinSettings.h"
#include "harness/FailingFileDoor.h"
#include "harness/FakeHandlers.h"
#include "harness/MemoryFileDoor.h"
#include "harness/TestContext.h"

namespace kestrin {

/// Sunday, 15 November 2026, 0:00 UTC; the fake clock begins at 8:00.
inline constexpr int32 Sunday = 1794700800;
inline constexpr int32 Hour = 3600, Day = 86400, Minute = 60;

/// Waits for an occurrence at `time`, every day from there on.
inline EventRecord DailyAt(int32 time, const std::string& name = "Tea") {
  EventRecord record;
  record.Name = name;
  record.NextEventTime = record.ActualEventTime = record.EventTime = time;
  record.PeriodType = Daily;
  record.ApplyTime = true;
  record.TimeToApply = time % Day;
  record.ShouldWindowOpen = false;
  return record;
}

class SetTestBase : public testing::Test {
 protected:
  SetTestBase() {
    LoadFakeHandlers(World.Core);
    Disk.PutFolder("/sets");
  }

  /// A set that is open and remembered, in a file that has not been written yet.
  EventSet& NewSet(const std::string& path = "/sets/Work.kestrin") {
    World.Open.Sets.push_back(kestrin::NewSet(World.Core, path));
    World.Settings.RememberSet(path);
    return *World.Open.Sets.back();
  }
  Event& Add(EventSet& set, EventRecord record) {
    auto event = std::make_unique<Event>(set, std::move(record));
    event->AdoptAddOnData(MessageHandler, std::make_unique<FakeHandlerData>(event.get()));
    return *set.AddEvent(std::move(event));
  }
  static EventRecord OnceAt(int32 time, const std::string& name = "Tea") {
    EventRecord record = DailyAt(time, name);
    record.PeriodType = Once;
    return record;
  }
  /// The set as a process that starts now would read it; null when its file is refused.
  std::unique_ptr<EventSet> Read(const std::string& path) {
    SetReading reading = ReadSet(World.Core, path);
    Result = reading.Result;
    Report = std::move(reading.Report);
    return std::move(reading.Set);
  }
  /// Saved, and no message waits.
  void Settle(EventSet& set) {
    World.RunMessages();
    World.Messages.clear();
    ASSERT_TRUE(set.SaveData());
  }

  MemoryFileDoor Disk;
  FailingFileDoor Door{Disk};
  TestContext World{&Door};
  ConstructorResult Result = ConstructorResult::Success;  ///< of the last Read
  SetFileReport Report;                                   ///< likewise
};

}  // namespace kestrin
