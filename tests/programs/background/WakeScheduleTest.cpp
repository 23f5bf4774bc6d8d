#include "programs/background/WakeSchedule.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

namespace kestrin {
namespace {

// Carries the orders out on a clock that jumps to whatever comes next.
class Machine {
 public:
  enum class Event { Nothing, Timer, Retry };

  void Do(const WakeOrders& orders) {
    if (orders.forgetTry) retryAt = 0;
    if (orders.setTimer) timerAt = schedule.When();
    if (orders.next != WakeTry::None) tries.push_back({now, orders.next});
    if (orders.retrySeconds > 0) retryAt = now + orders.retrySeconds;
  }

  Event Jump() {
    const bool retry = retryAt != 0 && (timerAt == 0 || retryAt < timerAt);
    int32& place = retry ? retryAt : timerAt;
    if (place == 0) return Event::Nothing;
    now = std::max(now, place);
    place = 0;
    Do(retry ? schedule.RetryCame() : schedule.TimerCame());
    return retry ? Event::Retry : Event::Timer;
  }

  void Wake() { Do(schedule.SetWhen(1100)), Jump(); }

  struct Try {
    int32 at;
    WakeTry how;
    bool operator==(const Try&) const = default;
  };

  WakeSchedule schedule;
  int32 now = 1000, timerAt = 0, retryAt = 0;
  std::vector<Try> tries;
};

using Tries = std::vector<Machine::Try>;
constexpr auto Call = WakeTry::Call;
constexpr auto Launch = WakeTry::Launch;

void PrintTo(const Machine::Try& one, std::ostream* out) {
  *out << one.at << (one.how == Call ? " call" : " launch");
}

constexpr size_t Enough = 7;

// One wake-up at 1100 in which every try ends by `fail`.
Machine FailAlways(const std::function<WakeOrders(WakeSchedule&, WakeTry)>& fail) {
  Machine machine;
  machine.Do(machine.schedule.SetWhen(1100));
  while (machine.tries.size() < Enough && machine.Jump() != Machine::Event::Nothing)
    machine.Do(fail(machine.schedule, machine.tries.back().how));
  return machine;
}

TEST(WakeSchedule, TriesAgainAfter1And5And30And60SecondsThenHourly) {
  const Tries expected = {{1100, Call}, {1101, Call}, {1106, Call}, {1136, Call},
                          {1196, Call}, {4796, Call}, {8396, Call}};
  const Machine refused =
      FailAlways([](WakeSchedule& schedule, WakeTry) { return schedule.CallFailed(false); });
  const Machine vanished = FailAlways([](WakeSchedule& schedule, WakeTry) {
    schedule.ApplicationAppeared();
    EXPECT_EQ(schedule.CallAnswered().retrySeconds, 0);
    return schedule.ApplicationVanished();
  });
  const Machine gone = FailAlways([](WakeSchedule& schedule, WakeTry) {
    EXPECT_EQ(schedule.ApplicationVanished().retrySeconds, 0) << "the call's own end counts";
    return schedule.CallAnswered();
  });
  for (const Machine* machine : {&refused, &vanished, &gone}) {
    EXPECT_EQ(machine->tries, expected);
    EXPECT_EQ(machine->schedule.When(), 1100) << "the next start needs the moment";
  }
}

TEST(WakeSchedule, LaunchesInTurnWithCallsWhileTheBusKnowsNoApplication) {
  const Machine machine = FailAlways([](WakeSchedule& schedule, WakeTry how) {
    return how == Launch ? schedule.LaunchEnded() : schedule.CallFailed(true);
  });
  EXPECT_EQ(machine.tries, (Tries{{1100, Call},
                                  {1101, Launch},
                                  {1106, Call},
                                  {1136, Launch},
                                  {1196, Call},
                                  {4796, Launch},
                                  {8396, Call}}));
}

TEST(WakeSchedule, ANewMomentReplacesEverything) {
  // Each brings the wake-up to another point before the new moment comes.
  const std::function<void(Machine&)> points[] = {
      [](Machine&) {},
      [](Machine& machine) { machine.Do(machine.schedule.CallAnswered()); },
      [](Machine& machine) { machine.Do(machine.schedule.CallFailed(false)); },
      [](Machine& machine) {
        machine.Do(machine.schedule.CallFailed(true));
        machine.Jump();
      },
      [](Machine& machine) {
        for (size_t i = 0; i < Enough; ++i) {
          machine.Do(machine.schedule.CallFailed(false));
          machine.Jump();
        }
      },
  };
  for (const auto& reach : points)
    for (const int32 next : {0, 50000}) {
      Machine machine;
      machine.Wake();
      reach(machine);
      machine.Do(machine.schedule.SetWhen(next));
      machine.tries.clear();
      // What the old wake-up still brings is nobody's business any more.
      machine.Do(machine.schedule.CallAnswered());
      machine.Do(machine.schedule.CallFailed(true));
      machine.Do(machine.schedule.LaunchEnded());
      machine.Do(machine.schedule.ApplicationVanished());
      EXPECT_EQ(machine.Jump(), next ? Machine::Event::Timer : Machine::Event::Nothing);
      EXPECT_EQ(machine.tries, next ? (Tries{{50000, Call}}) : Tries{});
      EXPECT_EQ(machine.schedule.Failures(), 0);
    }
}

TEST(WakeSchedule, WhereNothingIsKnownTheApplicationIsWokenOnceUnlessItTellsFirst) {
  for (const auto& [tells, isClock] : {std::pair(false, false), {true, false}, {false, true}}) {
    Machine machine;
    machine.Do(isClock ? machine.schedule.ClockWentBack() : machine.schedule.Forgotten());
    if (tells) machine.Do(machine.schedule.SetWhen(0));
    machine.Jump();
    EXPECT_EQ(machine.tries, tells ? Tries{} : (Tries{{1005, Call}}));
    machine.Do(machine.schedule.CallAnswered());
    EXPECT_EQ(machine.Jump(), Machine::Event::Nothing);
  }
}

TEST(WakeSchedule, AnApplicationThatAnsweredAndStaysIsLeftInPeace) {
  Machine machine;
  machine.Wake();
  machine.Do(machine.schedule.ApplicationVanished());  // released its name while leaving,
  machine.schedule.ApplicationAppeared();              // and took it back for the message
  machine.Do(machine.schedule.CallAnswered());
  EXPECT_EQ(machine.Jump(), Machine::Event::Nothing);
  EXPECT_EQ(machine.tries, (Tries{{1100, Call}}));
}

TEST(WakeSchedule, AnApplicationThatVanishedOnceMayAnswerTheNextCall) {
  Machine machine;
  machine.Wake();
  machine.Do(machine.schedule.ApplicationVanished());
  machine.Do(machine.schedule.CallFailed(false));
  EXPECT_EQ(machine.Jump(), Machine::Event::Retry);
  machine.Do(machine.schedule.CallAnswered());
  EXPECT_EQ(machine.Jump(), Machine::Event::Nothing);
}

TEST(WakeSchedule, AChangedZoneWakesOnlyForAPendingMomentAndLeavesItArmed) {
  Machine machine;
  machine.Do(machine.schedule.ZoneChanged());
  EXPECT_TRUE(machine.tries.empty());

  machine.Do(machine.schedule.SetWhen(1020));
  machine.Do(machine.schedule.ZoneChanged());
  for (int i = 0; i < 2; ++i) {  // fails at 1000 and 1001, at 1006 as well
    machine.Do(machine.schedule.CallFailed(false));
    EXPECT_EQ(machine.Jump(), Machine::Event::Retry);
  }
  machine.Do(machine.schedule.CallFailed(true));
  EXPECT_EQ(machine.Jump(), Machine::Event::Timer) << "the moment comes before the next try";
  EXPECT_EQ(machine.schedule.Failures(), 0);
  machine.Do(machine.schedule.CallAnswered());
  EXPECT_EQ(machine.Jump(), Machine::Event::Nothing);
  EXPECT_EQ(machine.tries, (Tries{{1000, Call}, {1001, Call}, {1006, Call}, {1020, Call}}));
}

}  // namespace
}  // namespace kestrin
