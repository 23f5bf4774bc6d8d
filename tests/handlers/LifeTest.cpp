// Years of simulated life, from a seed: a person's sets on a machine that sleeps, is switched off,
// is killed at any call to a file and within actions, loses its power and has its clock set, with
// edits and answers in between. A small model with a calendar of its own says what has to come:
// each occurrence once, or passed over by a rule, or told (docs/promise.md).
//
//   KESTRIN_LIFE_SEED=5000 KESTRIN_LIFE_COUNT=400 build/debug/bin/test_handlers
//   --gtest_filter='*Life*'
//
// lives so many lives from that seed on (one where no count is given), each in a world of its own;
// a life takes one to three seconds. A seed's last digit says what may happen: 0 to 2 nobody dies,
// 3 and up processes do. KESTRIN_LIFE_MORE=1 lets power fail as well from 5, and the clock be wrong
// from 8; there the model still differs from the program in places of which nobody has found out
// yet who is right.
#include <absl/time/civil_time.h>
#include <absl/time/time.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <map>
#include <numeric>
#include <random>
#include <set>

#include "core/events/EventSet.h"
#include "handlers/CommandDataHandler.h"
#include "handlers/HandlerActions.h"
#include "handlers/LoadEventHandlers.h"
#include "harness/AppTestBase.h"
#include "harness/Rule.h"

namespace kestrin {
namespace {

constexpr int64 Year = 365 * int64{Day};
/// What they found: an alert said no more which others it had ended; one that had returned was lost
/// when its event was moved; a deletion that was never saved ended what was put off; a start
/// delivered what it had missed as if it had come in time.
constexpr unsigned KeptSeeds[] = {11, 21, 13, 4, 1, 2, 3, 5, 6, 7};
constexpr size_t MostPlans = 12;

/// Acts, and then throws now and then.
class AddOnData final : public FakeHandlerData {
 public:
  using FakeHandlerData::FakeHandlerData;
  void DealWithEvent(bool) override {
    const Event& event = *GetAttachedTo();
    if (event.GetOwner()->GetContext().desktop.StartCommand(event.GetName()) % 3 == 0)
      throw std::runtime_error("no luck today");
  }
};

/// An alert of one occurrence. Neither: it does not stand, and does not come again.
struct Reminder {
  bool Must = false, May = false;  ///< stand open
  int64 Returns = 0;               ///< when, while it is put off
  int64 PutOff = 0;                ///< the same, also after that
  bool SaysMore = false;           ///< names others that it has ended
  bool IsNamed = false;            ///< put off, and another one names it: it need not return
};

/// What the model knows of an event.
struct Plan {
  Rule When{Daily};
  std::string Set;
  const char* Handler = "Message";
  bool IsDropped = false;  ///< not delivered late
  int64 Expected = 0;      ///< its next occurrence; 0: there is none
  std::set<int64> Done;    ///< those that came, were told or passed over
  int Step = 0;            ///< in which the last of them came
  int64 Begun = 0;         ///< not 0: who may have begun it has died, first then,
  int64 Doubted = 0;       ///< and this occurrence or a later one
  bool IsUnread = false;   ///< somebody died who may have read its data
  bool Again = false;      ///< after a power cut what came last may come once more
  int64 Resume = 0;        ///< what was expected before the clock was set back
  std::map<int64, Reminder> Alerts;

  bool Acts() const { return Handler != std::string_view("Message"); }
  bool IsDue(int64 now) const { return Expected != 0 && Expected <= now; }
};

class LifeTest : public AppTestBase, public testing::WithParamInterface<unsigned> {
 protected:
  LifeTest() {
    OwnActions = &Actions;
    Door.FailFromThen = true;
    Door.WhenFailed = [this] { NoteEnd(); };
  }
  void LoadHandlers(Context& context) override {
    LoadBuiltInHandlers(context);
    context.handlers.Add({"Add-on", MakeFakeData<AddOnData>});
    if (!It) return;
    Ui().MostBoxes = 3;
    It->World.Machine.AroundStart = [this] { DieNowAndThen(); };
  }

  int64 Random(int64 from, int64 to) { return std::uniform_int_distribution(from, to)(dice_); }
  bool OneIn(int chances) { return chances > 0 && Random(1, chances) == 1; }
  bool IsRunning() const { return It && !It->App.Ending().HasQuit(); }
  bool IsDead() const { return Door.HasFailed(); }
  /// One of the model's sentences.
  void Hold(bool holds, const std::string& words) const {
    EXPECT_TRUE(holds) << words << "\n" << Where();
  }
  std::string Where() const {
    return "life " + std::to_string(seed_) + ", step " + std::to_string(step_) + " (" + what_ +
           ") at " + std::to_string(Now) + ", " +
           absl::FormatTime(absl::FromUnixSeconds(Now), zone_);
  }

  using Happening = std::function<void()>;
  void LogIn() { NewProcess({"-background"}, {}); }

  int64 First(const Rule& rule, int64 after) const {
    if (rule.PeriodType == Once) return rule.EventTime > after ? rule.EventTime : 0;
    const absl::Time from = absl::FromUnixSeconds(after);
    for (absl::CivilDay day = absl::ToCivilDay(from, zone_) - 1;; ++day) {
      const int weekday = (static_cast<int>(absl::GetWeekday(day)) + 1) % 7;  // Sunday is 0
      const bool isMonth = rule.PeriodType != Annually || day.month() == rule.Month + 1;
      if (rule.PeriodType == Weekly && weekday != rule.DayOfWeek) continue;
      if (rule.PeriodType < Weekly && (!isMonth || day.day() != rule.DayOfMonth)) continue;
      const auto at = zone_.At(absl::CivilSecond(day) + rule.TimeToApply);
      const bool isSkipped = at.kind == absl::TimeZone::TimeInfo::SKIPPED;
      const absl::Time time = isSkipped ? at.trans : at.pre;
      const int64 seconds = absl::ToUnixSeconds(time);
      if (seconds > INT32_MAX) return 0;  // beyond what can be stored
      if (time > from) return seconds;
    }
  }

  /// The occurrence that was expected is over; the next one is later than `from`.
  void Pass(Plan& plan, int64 from) {
    plan.Done.insert(plan.Expected);
    plan.Step = step_;
    plan.Expected = First(plan.When, from);
  }

  void Ran(const std::string& name) {
    const auto found = plans_.find(name);
    if (found == plans_.end()) return;
    Plan& plan = found->second;
    if (plan.Again && !plan.IsDue(Now)) return;
    Hold(plan.Acts() && plan.IsDue(Now), name + " ran, expected " + std::to_string(plan.Expected));
    Pass(plan, Now);
  }

  /// The next occurrence says that what was put off is unanswered.
  void EndOthers(Plan& plan, const AlertRequest& alert) {
    for (auto& [occurrence, earlier] : plan.Alerts) {
      const bool mayHaveEnded = earlier.Returns > Now || (hasDied_ && earlier.Returns != 0);
      if (occurrence == alert.Occurrence || !mayHaveEnded) continue;
      if (hasDied_)
        earlier.IsNamed = true;
      else
        earlier.May = true, earlier.Returns = 0;
    }
  }

  void Showed(const AlertRequest& alert) {
    const auto found = plans_.find(alert.Face.EventName);
    if (found == plans_.end()) return;
    auto& [name, plan] = *found;
    const int64 occurrence = alert.Occurrence;
    const auto says = [&alert](const char* words) {
      return alert.Text.find(words) != std::string::npos;
    };
    const bool tellsOfReading = says("did not come to the end of reading");
    const bool tellsFailure = says("did not come to its end") || tellsOfReading;
    const bool isKnown = plan.Alerts.contains(occurrence), saysMore = says("Also unanswered");
    plan.IsUnread = plan.IsUnread || tellsOfReading;
    Hold(tellsFailure || !plan.Acts() || plan.IsUnread || (hasDied_ && says("not loaded")),
         name + ": " + alert.Text);
    const bool isDoubted = plan.Begun != 0 && occurrence >= plan.Doubted && occurrence <= Now &&
                           First(plan.When, occurrence - 1) == occurrence;
    Reminder& reminder = plan.Alerts[occurrence];
    if (plan.IsDue(Now) &&
        (occurrence == plan.Expected || (isDoubted && occurrence > plan.Expected))) {
      Hold(plan.Begun != 0 || !tellsFailure, name + " failed for nothing");
      Hold(plan.Begun != 0 || !plan.IsDropped || occurrence >= Now - 60, name + " came late");
      plan.Expected = occurrence;
      Pass(plan, plan.Begun != 0 ? std::max(plan.Begun, occurrence) : Now);
    } else {
      const bool isRepeated = plan.Done.contains(occurrence) && plan.Again;
      Hold(isKnown || isDoubted || isRepeated || tellsOfReading,
           name + " came for " + std::to_string(occurrence) + ", expected " +
               std::to_string(plan.Expected));
      const bool isBack = reminder.Returns != 0 && reminder.Returns <= Now;
      Hold(!isKnown || reminder.May || isBack, name + " came again");
    }
    Hold(saysMore || !reminder.SaysMore || plan.Again,
         name + " says no more what else is unanswered");
    reminder = {true, true, 0, reminder.PutOff, saysMore, false};
    if (saysMore && !(isKnown && alert.IsReturning)) EndOthers(plan, alert);
  }

  /// What the process has done since the last look.
  void Observe() {
    if (!It) return;
    if (!IsDead()) NoteEnd();
    std::vector<AlertRequest> alerts;  // what returns may open after what is new
    while (seenAlerts_ < lastAlerts_) alerts.push_back(Ui().History[seenAlerts_++]);
    std::stable_sort(alerts.begin(), alerts.end(),
                     [](const auto& a, const auto& b) { return a.Occurrence < b.Occurrence; });
    for (const AlertRequest& alert : alerts) Showed(alert);
    while (seenCommands_ < lastCommands_) Ran(It->World.Machine.Commands[seenCommands_++]);
    if (lastTimes_ > 0) wake_ = It->Background.Times[lastTimes_ - 1];
  }

  void CheckAlerts(const std::string& name, Plan& plan) {
    for (auto& [occurrence, reminder] : plan.Alerts) {
      const auto count =
          !IsRunning()
              ? 0
              : std::count_if(Ui().Alerts.begin(), Ui().Alerts.end(), [&](const auto& alert) {
                  return alert.Request.Face.EventName == name &&
                         alert.Request.Occurrence == occurrence;
                });
      const bool isDue = reminder.Returns != 0 && reminder.Returns <= Now;
      Hold(count > 0 || !(reminder.Must || (isDue && !reminder.IsNamed)),
           name + ": its alert of " + std::to_string(occurrence) + " is gone");
      Hold(count == 0 || reminder.Must || reminder.May || isDue,
           name + ": its alert of " + std::to_string(occurrence) + " should not stand");
      reminder.Must = reminder.May = count > 0;
      if (count > 0 || isDue) reminder.Returns = 0;
    }
  }

  /// The deliverer holds the next time, which lies ahead: no pass stalls, and nothing storms.
  void CheckWakeUp() {
    int64 next = 0;
    const auto at = [&next](int64 time) {
      if (time != 0 && (next == 0 || time < next)) next = time;
    };
    for (const auto& [name, plan] : plans_) {
      at(plan.Expected);
      for (const auto& [occurrence, reminder] : plan.Alerts)
        if (reminder.IsNamed)
          needless_.insert(reminder.Returns);
        else
          at(reminder.Returns);
    }
    needless_.erase(needless_.begin(), needless_.upper_bound(Now));
    Hold(wake_ == next || needless_.contains(wake_),
         "wakes at " + std::to_string(wake_) + ", next is " + std::to_string(next));
    Hold(wake_ == 0 || wake_ > Now, "");
  }

  /// At rest nothing that is due has been left out, and nothing that nobody has answered is gone.
  void Check(bool isLoggedOut, bool mayRest) {
    for (auto& [name, plan] : plans_) {
      const bool isPassed = plan.Step == step_ && (plan.Begun != 0 || plan.Again);
      const bool isDropped = plan.IsDropped && plan.Expected < Now - 60;
      if (plan.IsDue(Now) && (isPassed || isDropped)) Pass(plan, Now);
      Hold(!plan.IsDue(Now), name + " has not come for " + std::to_string(plan.Expected));
      plan.Begun = 0;
      plan.Again = false;
      if (isLoggedOut) continue;
      CheckAlerts(name, plan);
      if (mayRest)
        std::erase_if(plan.Alerts, [](const auto& entry) {
          return !entry.second.May && entry.second.Returns == 0;
        });
    }
    if (!isClockWrong_) CheckWakeUp();
  }

  /// A set is read: what a wrong clock has left in it is healed.
  void ReadAgain(Plan& plan) const {
    if (plan.When.PeriodType == Once || plan.Expected <= First(plan.When, Now)) return;
    const auto ahead = plan.Done.upper_bound(Now + Day);
    const int64 last = ahead == plan.Done.begin() ? 0 : *std::prev(ahead);
    plan.Expected = std::min(plan.Expected, First(plan.When, std::max(Now, last)));
  }

  /// What counts of a process: from now on its files refuse everything.
  void NoteEnd() {
    lastCommands_ = It ? It->World.Machine.Commands.size() : 0;
    lastAlerts_ = It ? Ui().History.size() : 0;
    lastTimes_ = It ? It->Background.Times.size() : 0;
  }

  void Died() {
    hasDied_ = true;
    const bool isCut = OneIn(cuts_);
    for (auto& [name, plan] : plans_) {
      const bool mayBe = plan.IsDue(Now) || plan.Step == step_;
      if (mayBe && plan.Begun == 0)
        plan.Begun = Now, plan.Doubted = plan.IsDue(Now) ? plan.Expected : *plan.Done.rbegin();
      if (isCut) plan.Again = true;
      const bool mayBeLeftOut = plan.Acts() || plan.IsDropped;
      for (auto& [occurrence, reminder] : plan.Alerts)
        if (isCut) {
          reminder.May = true;
          if (mayBe && mayBeLeftOut && occurrence >= plan.Doubted) reminder.Must = false;
        }
    }
    Crash();
    if (isCut) Disk.CutPower(OneIn(2));
    what_ += isCut ? ", power cut" : ", died at " + Door.Failed;
  }

  /// Within an action: before or after it has its effect.
  void DieNowAndThen() {
    if (deaths_ == 0 || IsDead() || !OneIn(8)) return;
    Door.FailAgain(1);
    Door.SyncFolder("/action");
  }

  /// One happening, with a death at some call to a file now and then, and the starts that follow.
  void Attempt(const char* what, const Happening& happening, const Happening& outcome = nullptr) {
    what_ = what;
    ++step_;
    hasDied_ = false;
    Door.ShortWrite = OneIn(2);
    Door.FailAgain(OneIn(deaths_) ? static_cast<int>(Random(1, 100)) : 0);
    happening();
    Rest();
    int64 late = 0;
    for (Observe(); IsDead(); Observe()) {
      Died();
      Door.FailAgain(OneIn(deaths_) ? static_cast<int>(Random(1, 100)) : 0);
      const int64 later = !outcome && OneIn(3) && !isClockWrong_ ? Random(0, 5 * Day) : 0;
      Now += later, late += later;
      OneIn(2) ? LogIn() : Deliver(static_cast<int32>(late));
      Rest();
    }
    Door.FailAgain(0);
    if (outcome) outcome();
    Check(!IsRunning() && what_ == "logged out", what_ != "answered");
  }

  /// Commands had their turns, and timers ran out.
  void Rest() {
    if (!IsRunning()) return;
    It->World.Time.AdvanceMicroseconds(2000000);
    It->World.Ticks.RunOut();
    Run();
  }

  /// Whatever ran is gone without an end.
  void NewProcess(const std::vector<std::string>& arguments, const std::vector<Message>& waiting) {
    Crash();
    seenCommands_ = seenAlerts_ = lastCommands_ = lastAlerts_ = lastTimes_ = 0;
    for (auto& [name, plan] : plans_) {
      ReadAgain(plan);
      for (auto& [occurrence, reminder] : plan.Alerts)
        if (reminder.Must && reminder.PutOff > Now)
          reminder.Must = false, reminder.Returns = reminder.PutOff;
    }
    Start(arguments, waiting);
  }

  void Deliver(int32 late) {
    Message wake(DELIVER_EVENTS);
    wake.Set("Late", late);
    if (!IsRunning()) return NewProcess({}, {wake});
    It->World.Time.JumpTo(Now);
    Post(std::move(wake));
  }

  Plan Invent() {
    const char* const handlers[] = {"Message", "Message", "Command", "Add-on"};
    const int32 periods[] = {Once, Annually, Monthly, Monthly, Weekly, Weekly, Weekly, Daily};
    Plan plan;
    plan.Set = OneIn(2) ? Work : Home;
    plan.Handler = handlers[Random(0, 3)];
    plan.IsDropped = OneIn(4);
    Rule& rule = plan.When = Rule(periods[Random(0, 7)]);
    if (rule.PeriodType == Weekly) rule.TimingType = ByDayOfWeek;
    if (rule.PeriodType == Annually || rule.PeriodType == Monthly) rule.TimingType = ByDayOfMonth;
    rule.On(static_cast<int8>(Random(1, 28)), static_cast<int8>(Random(1, 12)));
    rule.DayOfWeek = static_cast<int8>(Random(0, 6));
    rule.At(static_cast<int32>(Random(0, 23)), static_cast<int32>(Random(0, 59)));
    if (rule.PeriodType == Once) {
      rule.EventTime = static_cast<int32>(Now + Random(60, 90 * Day));
      rule.TimeToApply = SecondsIntoDay(SystemZone.AtMoment(rule.EventTime));
    }
    plan.Expected = First(rule, Now);
    return plan;
  }

  /// The person changes something and saves it. A death on the way leaves the one or the other.
  void Edit(const char* what, const std::string& name, const Plan& wanted,
            const std::function<void(EventSet& set, Event* event)>& change) {
    const auto find = [&name](const EventSet& set) -> Event* {
      for (const auto& event : set.Events())
        if (event->GetName() == name) return event.get();
      return nullptr;
    };
    const auto happening = [&] {
      if (!IsRunning()) NewProcess({}, {});
      EventSet* const set = Set(wanted.Set);
      Hold(set || IsDead(), "the set is gone");
      if (!set) return;
      It->World.Time.JumpTo(Now);
      change(*set, find(*set));
      Run();
      set->SaveData();
    };
    const auto outcome = [&] {
      TestContext world(WorldParts{&Disk, OwnActions});
      LoadBuiltInHandlers(world.Core);
      const auto stored = ReadSet(world.Core, wanted.Set).Set;
      const Event* const event = stored ? find(*stored) : nullptr;
      const auto plan = plans_.find(name);
      const bool isWanted = event && event->Record().TimeToApply == wanted.When.TimeToApply;
      Hold(hasDied_ || (wanted.Expected == 0 ? !event : isWanted), "");
      const bool isAsBefore = event && plan != plans_.end() &&
                              plan->second.When.TimeToApply == event->Record().TimeToApply;
      if (isAsBefore) return;
      if (plan != plans_.end())
        for (const auto& [occurrence, reminder] : plan->second.Alerts)
          needless_.insert(reminder.Returns);
      if (isWanted)
        plans_[name] = wanted;
      else
        plans_.erase(name);
    };
    Attempt(what, happening, outcome);
  }

  void Plant() {
    if (plans_.size() >= MostPlans) return;
    const std::string name = "E" + std::to_string(++planted_);
    const Plan plan = Invent();
    Edit("made an event", name, plan, [&](EventSet& set, Event*) {
      EventRecord record;
      static_cast<TimingRule&>(record) = plan.When;
      record.Name = name;
      record.DeliverIfMissed = !plan.IsDropped;
      record.ShouldWindowOpen = false;
      Event& event = *set.AddEvent(std::make_unique<Event>(set, record));
      event.SetSelectedHandler(It->World.Handlers.Find(plan.Handler));
      if (auto* const command = dynamic_cast<CommandDataHandler*>(event.GetAddOnData()))
        command->SetCommand(name.c_str());
      event.UpdateEventTime();
    });
  }

  void Pull() {
    if (plans_.size() < 4) return;
    const auto [name, plan] =
        *std::next(plans_.begin(), Random(0, static_cast<int>(plans_.size()) - 1));
    Plan gone = plan;
    gone.Expected = 0;
    gone.When.TimeToApply = -1;
    Edit("deleted an event", name, gone, [](EventSet& set, Event* event) {
      if (event) set.RemoveEvent(event);
    });
  }

  /// To another time of the day.
  void Move() {
    if (plans_.empty()) return;
    const auto [name, plan] =
        *std::next(plans_.begin(), Random(0, static_cast<int>(plans_.size()) - 1));
    if (plan.When.PeriodType == Once) return;
    Plan moved = plan;
    moved.When.TimeToApply = static_cast<int32>(Random(0, 1439) * 60);
    moved.Expected = First(moved.When, Now);
    for (auto& [occurrence, reminder] : moved.Alerts)
      if (reminder.Returns != 0) reminder = {};
    Edit("moved an event", name, moved, [&](EventSet&, Event* event) {
      if (event) event->SetTimeToApply(moved.When.TimeToApply);
    });
  }

  /// The person answers what stands open, or puts it off.
  void Reply() {
    if (!IsRunning()) return;
    It->World.Time.JumpTo(Now);
    const auto open = Ui().Alerts;
    for (const auto& alert : open) {
      const AlertRequest& request = alert.Request;
      if (IsDead() || OneIn(3)) continue;
      const bool triesAgain = request.Text.find("the end of reading") != std::string::npos;
      const auto others = [&] {
        return std::count_if(Ui().Alerts.begin(), Ui().Alerts.end(), [&](const auto& other) {
          return other.Request.Occurrence == request.Occurrence && other.Id != alert.Id &&
                 other.Request.Face.EventName == request.Face.EventName;
        });
      };
      const bool isPutOff = request.IsReminder() && !triesAgain && OneIn(3) && others() == 0;
      const int64 when = isPutOff ? Now + Random(60, 3 * Day) : 0;
      const auto plan = plans_.find(request.Face.EventName);
      Reminder* const reminder =
          plan == plans_.end() ? nullptr : &plan->second.Alerts[request.Occurrence];
      if (reminder) *reminder = {false, true, when, when, reminder->SaysMore, false};
      if (!reminder && when != 0) needless_.insert(when);
      if (when != 0) {
        EXPECT_TRUE(
            It->World.Alerts.PutOff(alert.Id, {static_cast<int32>(when), false, {}}).empty() ||
            IsDead());
      } else {
        Ui().CloseAlert(alert.Id);
        It->World.Alerts.Answered(alert.Id, triesAgain ? 0 : request.HarmlessButton);
      }
      Run();
      if (reminder && !IsDead()) reminder->May = others() > 0;
    }
  }

  /// For one login it is wrong.
  void SetClock(int64 by) {
    isClockWrong_ = true;
    if (by < 0)
      for (auto& [name, plan] : plans_) plan.Resume = plan.Expected;
    Now += by;
    Attempt("the clock was wrong", [this] { LogIn(); });
    if (OneIn(2)) Attempt("answered", [this] { Reply(); });
    Now -= by;
    isClockWrong_ = false;
    for (auto& [name, plan] : plans_)
      if (const int64 expected = std::exchange(plan.Resume, 0))
        plan.Expected = expected;
      else
        ReadAgain(plan);
    Attempt("the clock was right again", [this] { OneIn(2) ? LogIn() : Deliver(3600); });
  }

  void Step() {
    if (IsRunning() && Ui().Alerts.size() > 12) return Attempt("answered", [this] { Reply(); });
    if (OneIn(wrongClocks_))
      return SetClock(OneIn(2) ? Random(1, 400) * Day : -Random(1, 4000) * Day);
    switch (Random(1, 24)) {
      case 1:
        return Plant();
      case 2:
        return Pull();
      case 3:
        return Move();
      case 4:
      case 5:
      case 6:
        return Attempt("answered", [this] { Reply(); });
      case 7:
        Now = std::max(Now, wake_) + Random(61, 20 * Day);
        return Attempt("slept", [this] { Deliver(3600); });
      case 8:
        if (IsRunning()) Attempt("logged out", [this] { Post(Message(FORCED_QUIT)); });
        Now += Random(0, 20 * Day);
        return Attempt("logged in", [this] { LogIn(); });
      case 9:
        if (deaths_ > 0) return Attempt("killed at rest", [this] { LogIn(); });
        [[fallthrough]];
      default:
        Now = wake_ == 0 ? Now + Day : std::max(Now, wake_);
        return Attempt("woke", [this] { Deliver(0); });
    }
  }

  void Live(unsigned seed, int64 years) {
    seed_ = seed;
    dice_.seed(seed);
    const unsigned digit = seed % 10;
    const bool more = std::getenv("KESTRIN_LIFE_MORE") != nullptr;
    deaths_ = digit > 2 ? 8 : 0;
    cuts_ = more && digit > 4 ? 3 : 0;
    wrongClocks_ = more && digit > 7 ? 40 : 0;
    const char* const zones[] = {
        "UTC",         "Europe/Berlin", "America/New_York", "America/Havana", "Australia/Lord_Howe",
        "Africa/Cairo"};
    const char* const zone = zones[Random(0, 5)];
    SystemZone = *Zone::Load(zone);
    ASSERT_TRUE(absl::LoadTimeZone(zone, &zone_));
    Now = Sunday;
    for (const char* const set : {Work, Home}) WriteSet(set, {});
    Remember({Work, Home});
    Attempt("began", [this] { LogIn(); });
    for (int i = 0; i < 5; ++i) Plant();
    const int64 end = Now + years * Year;
    while (Now < end && !HasFailure()) Step();
  }

  HandlerActions Actions;
  std::mt19937 dice_;
  unsigned seed_ = 0;
  int deaths_ = 0, cuts_ = 0, wrongClocks_ = 0;  ///< one in so many; 0: never
  int step_ = 0, planted_ = 0;
  std::string what_;
  absl::TimeZone zone_;
  std::map<std::string, Plan> plans_;
  std::multiset<int64> needless_;             ///< returns of what has ended, which may still wake
  size_t seenCommands_ = 0, seenAlerts_ = 0;  ///< of this process
  size_t lastCommands_ = 0, lastAlerts_ = 0, lastTimes_ = 0;  ///< what there was when it died
  int64 wake_ = 0;  ///< what the deliverer holds; 0 = nothing
  bool hasDied_ = false, isClockWrong_ = false;
};

TEST_P(LifeTest, TenYearsLoseNothingAndRepeatNothing) { Live(GetParam(), 10); }

std::vector<unsigned> Seeds() {
  const char* const first = std::getenv("KESTRIN_LIFE_SEED");
  const char* const count = std::getenv("KESTRIN_LIFE_COUNT");
  std::vector<unsigned> seeds(std::begin(KeptSeeds), std::end(KeptSeeds));
  if (first) {
    seeds.assign(count ? static_cast<size_t>(std::atoi(count)) : 1, 0);
    std::iota(seeds.begin(), seeds.end(), static_cast<unsigned>(std::atoi(first)));
  }
  return seeds;
}
INSTANTIATE_TEST_SUITE_P(Seeds, LifeTest, testing::ValuesIn(Seeds()));

}  // namespace
}  // namespace kestrin
