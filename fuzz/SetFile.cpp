// Any bytes as an event set file: reading, computing and delivering never fall over, and what was
// read once is saved and read again without a change.
#include "Trial.h"
#include "core/events/Event.h"
#include "core/events/EventProgress.h"
#include "core/events/EventSet.h"
#include "core/events/HandlerTable.h"
#include "core/files/StoredSetFile.h"
#include "handlers/LoadEventHandlers.h"
#include "harness/MemoryFileDoor.h"
#include "harness/TestContext.h"
#include "support/Opened.h"

namespace kestrin {
namespace {

constexpr const char* Path = "/set";
/// A day, a leap day, the clocks' change in Berlin, and the ends of what a time can be.
constexpr int64 Moments[] = {0, 1794700800, 1835445600, 1792888200, INT32_MIN, INT32_MAX - 1};

std::unique_ptr<EventSet> Read(Context& context, const std::string& path) {
  SetReading reading = ReadSet(context, path);
  Demand((reading.Set != nullptr) == reading.Report.Fault.empty(),
         "a fault is told if there is one");
  return std::move(reading.Set);
}

std::string Written(EventSet& set, MemoryFileDoor& disk) {
  Opened<EndianIndependentFile> file(disk, "/written", OpenWriteOnly | OpenCreate | OpenErase, 512);
  std::string fault;
  Demand(WriteSetFile(set, file, fault), "what was read can be written");
  return *disk.Bytes("/written");
}

void Recompute(EventSet& set, FakeClock& clock, int64 now) {
  clock.JumpTo(now);
  for (const auto& event : set.Events()) {
    event->UpdateEventTime();
    const int32 next = event->GetNextEventTime();
    Demand((next == 0) == (event->GetStatus() == DoneWithEvent) || now <= 0,
           "an event without a next time is done");
    Demand(next == 0 || next >= now, "what is next lies ahead");
  }
}

void Deliver(EventSet& set) {
  for (int round = 0; round < 3; ++round) {
    Event* event = nullptr;
    if (set.GetNextEventTime(&event) == 0) return;
    EventDelivered(*event);
  }
}

void TryFile(const std::string& bytes, const Zone& zone) {
  MemoryFileDoor disk;
  TestContext world(&disk);
  world.Core.zone = zone;
  LoadBuiltInHandlers(world.Core);
  disk.Put(Path, bytes);
  const auto set = Read(world.Core, Path);
  if (!set) return;
  const std::string once = Written(*set, disk);
  const auto again = Read(world.Core, "/written");
  Demand(again != nullptr, "what was written can be read");
  Demand(Written(*again, disk) == once, "reading and writing again changes nothing");
  for (const int64 now : Moments) {
    Recompute(*set, world.Time, now);
    Deliver(*set);
  }
  Demand(!Written(*set, disk).empty(), "what was recomputed can be written");
}

}  // namespace

void TryInput(FuzzedDataProvider& in) {
  static const Zone zone = Zone::Load("Europe/Berlin").value();
  TryFile(in.ConsumeRemainingBytesAsString(), zone);
}

}  // namespace kestrin
