// The agenda against a run of the delivery itself, minute by minute.
#include "core/delivery/Agenda.h"
#include "core/files/StoredSetFile.h"

#include <random>

#include "core/delivery/DeliveryPass.h"
#include "harness/SetTestBase.h"

namespace kestrin {
namespace {

constexpr int32 From = 1792886400;  // 25 October 2026, 0:00 UTC: the clocks go back in Berlin
constexpr int32 To = From + 7 * Day;

/// Any rule that stays on whole minutes.
EventRecord RandomRecord(std::mt19937& random, const std::string& name) {
  const auto upTo = [&random](int limit) {
    return static_cast<int32>(random() % static_cast<unsigned>(limit));
  };
  EventRecord record;
  record.Name = name;
  record.PeriodType = upTo(NumberOfPeriodTypes);
  record.TimingType = upTo(2) ? ByDayOfWeek : ByDayOfMonth;
  if (record.PeriodType == Once) record.TimingType = ByDate;
  record.DayOfMonth = static_cast<int8>(1 + upTo(33));
  record.WeekOfMonth = static_cast<int8>(upTo(5));
  record.DayOfWeek = static_cast<int8>(upTo(7));
  record.Month = static_cast<int8>(9 + upTo(2));
  record.Multiple = static_cast<uint32>(1 + upTo(3));
  record.MultiStartTime = From - upTo(20) * Day + upTo(24) * Hour;
  record.EventTime = From - Day + upTo(9 * 24 * 60) * Minute;
  record.ApplyTime = upTo(4) != 0;
  record.TimeToApply = upTo(24 * 4) * 15 * Minute;
  record.SubIntType = upTo(2) ? Hours : Days;
  record.ApplyStop = upTo(2) == 0;
  record.ApplyPrewarn = upTo(2) == 0;
  record.PrewarnTime = static_cast<uint32>(upTo(30));
  record.PrewarnType = Hours;
  record.ApplyPrewarnRepeat = upTo(2) == 0;
  record.PrewarnRepeatTime = static_cast<uint32>(upTo(200));
  record.PrewarnRepeatType = Minutes;
  record.ApplyNag = upTo(3) == 0;
  record.NagRepeatTime = static_cast<uint32>(1 + upTo(40));
  record.NagRepeatType = Hours;
  record.DeliverIfMissed = upTo(2) == 0;
  record.DeleteOnceDelivered = upTo(4) == 0;
  record.Active = upTo(8) != 0;
  return record;
}

class AgendaTest : public SetTestBase {
 protected:
  /// Two sets whose times were last computed two days before the stretch.
  void OpenRandomSets(Context& context, unsigned seed) {
    std::mt19937 random(seed);
    context.zone = Zone::Load("Europe/Berlin").value();
    for (int number = 0; number < 2; ++number) {
      const std::string name = "set " + std::to_string(number);
      context.openSets.Sets.push_back(kestrin::NewSet(context, name));
      EventSet& set = *context.openSets.Sets.back();
      context.settings.RememberSet(name);
      for (int i = 0; i < 12; ++i)
        set.AddEvent(std::make_unique<Event>(
                         set, RandomRecord(random, name + " event " + std::to_string(i))))
            ->UpdateEventTime();
    }
  }
  static std::string Line(int64 time, const std::string& kind, const std::string& name,
                          bool missed) {
    return std::to_string(time) + " " + kind + " " + name + (missed ? " missed" : "");
  }

  std::vector<std::string> Minutely(bool startup) {
    TestContext world;
    DeliveryPass pass(world.Core, [](const Message&, bool) {});
    world.OnMessage = [&pass](const Message& message) { pass.MessageReceived(message); };
    world.Time.JumpTo(From - 2 * Day);
    OpenRandomSets(world.Core, Seed);
    world.Time.JumpTo(From);
    if (!startup)
      for (const auto& set : world.Open.Sets)
        for (const auto& event : set->Events()) event->UpdateEventTime();
    pass.SetCounterForNextEvent(startup);
    std::vector<std::string> lines;
    for (int64 time = From; time < To; time += Minute) {
      world.Time.JumpTo(time);
      world.Queue.Post(DELIVER_EVENTS);
      world.RunMessages();
      world.Messages.clear();
      for (const auto& each : std::exchange(world.Actions.Deliveries, {}))
        lines.push_back(Line(time, each.Kind, each.Name, each.Missed));
    }
    return lines;
  }

  std::vector<std::string> ByAgenda(bool startup) {
    VirtualEngine engine;
    engine.clock.Time = From - 2 * Day;
    OpenRandomSets(engine.context, Seed);
    std::vector<AgendaEntry> entries;
    EXPECT_TRUE(ComputeAgenda(engine, {From, To, startup}, entries));
    const char* const kinds[] = {"prewarning", "event", "nag"};
    std::vector<std::string> lines;
    for (const AgendaEntry& entry : entries) {
      const EventSet* const set = engine.openSets.Sets[entry.Event < "set 1" ? 0 : 1].get();
      EXPECT_EQ(entry.Set, set->GetHandle());
      lines.push_back(
          Line(entry.Time, kinds[static_cast<int>(entry.Kind)], entry.Event, entry.Missed));
    }
    return lines;
  }

  unsigned Seed = 0;
};

TEST_F(AgendaTest, ItIsWhatARunThroughEveryMinuteDelivers) {
  size_t prewarnings = 0, events = 0, nags = 0, missed = 0;
  for (const bool startup : {false, true})
    for (Seed = 1; Seed <= 8; ++Seed) {
      const std::vector<std::string> lines = ByAgenda(startup);
      ASSERT_EQ(lines, Minutely(startup)) << "seed " << Seed << (startup ? ", at a start" : "");
      for (const std::string& line : lines) {
        prewarnings += line.find(" prewarning ") != line.npos;
        events += line.find(" event set") != line.npos;
        nags += line.find(" nag ") != line.npos;
        missed += line.ends_with(" missed");
      }
    }
  EXPECT_GT(std::min({prewarnings, events, nags}), 500u)
      << "the rules are as mixed as they should be";
  EXPECT_GT(missed, 10u);
}

}  // namespace
}  // namespace kestrin
