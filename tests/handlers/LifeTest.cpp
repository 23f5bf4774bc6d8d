// Years of simulated life, from a seed: a person's sets on a machine that sleeps, is switched off,
// is killed at any call to a file and within actions, loses its power and has its clock set, with
// edits and answers in between. A small model with a calendar of its own says what has to come:
// each occurrence once, or passed over by a rule, or told (docs/promise.md).
//
//   KESTRIN_LIFE_SEED=5000 KESTRIN_LIFE_COUNT=100 build/debug/bin/test_handlers
//   --gtest_filter='*Life*'
//
// lives so many lives from that seed on (one where no count is given), each in a world of its own;
// a life takes some five seconds. A seed's last digit says what may happen: 0 to 2 nobody dies,
// 3 and up processes do, 5 and up power fails as well. KESTRIN_LIFE_MORE=1 lets the clock be wrong
// from 8; there the model still differs from the program after some years.
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
#include <utility>

#include "core/events/EventSet.h"
#include "handlers/CommandDataHandler.h"
#include "handlers/HandlerActions.h"
#include "handlers/LoadEventHandlers.h"
#include "harness/AppTestBase.h"
#include "harness/Rule.h"

namespace kestrin {
namespace {

constexpr int64 Year = 365 * int64{Day};
/// Three that are quick, one of each kind. Others have found: an alert said no more which others it
/// had ended; one that had returned was lost when its event was moved; a deletion that was never
/// saved ended what was put off; a start delivered what it had missed as if it had come in time; a
/// failed action was told days later, or never.
constexpr unsigned KeptSeeds[] = {11, 21, 25};
constexpr size_t MostPlans = 12;

/// Acts, and then throws now and then.
class AddOnData final : public FakeHandlerData {
 public:
  static constexpr int32 ThrowsEach = 3;

  using FakeHandlerData::FakeHandlerData;
  void DealWithEvent(bool) override {
    const Event& event = *GetAttachedTo();
    if (event.GetOwner()->GetContext().desktop.StartCommand(event.GetName()) % ThrowsEach == 0)
      throw std::runtime_error("no luck today");
  }
};

/// An alert of one occurrence.
struct Reminder {
  bool Open = false;        ///< nobody has answered it: it stands
  bool May = false;         ///< stands, or does not
  int64 Returns = 0;        ///< when, while it is put off
  int64 PutOff = 0;         ///< the same, also after that
  bool IsDoubtful = false;  ///< need not return
  bool IsHalf = false;      ///< who put it off died: it returns, or stands still
  bool SaysMore = false;    ///< names others that it has ended

  bool IsDue(int64 now) const { return Returns != 0 && Returns <= now; }
};

/// What the model knows of an event.
struct Plan {
  Rule When{Daily};
  std::string Set;
  const char* Handler = "Message";
  bool IsDropped = false;  ///< not delivered late
  int64 Next = 0;          ///< the first occurrence of which nothing has come; 0: there is none
  std::map<int64, Reminder> Alerts;
  // In this step:
  int64 Before = 0;      ///< Next when it began
  std::set<int64> Came;  ///< by an alert
  bool Ran = false, Threw = false;

  void BeginStep() { Before = Next, Came.clear(), Ran = Threw = false; }
  bool Acts() const { return Handler != std::string_view("Message"); }
  bool IsDue(int64 now) const { return Next != 0 && Next <= now; }
};

/// What of a process has been looked at, and what there was of it when it died.
struct Seen {
  size_t Commands = 0, Alerts = 0, Times = 0;
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
    EXPECT_TRUE(holds) << words << "\nlife " << seed_ << ", step " << step_ << " (" << what_
                       << ") at " << Now << ", "
                       << absl::FormatTime(absl::FromUnixSeconds(Now), zone_);
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

  void Ran(const std::string& name, bool throws) {
    const auto found = plans_.find(name);
    if (found == plans_.end()) return;
    Plan& plan = found->second;
    Hold(plan.Acts() && plan.IsDue(Now), name + " ran, next is " + std::to_string(plan.Next));
    Hold(hasDied_ || !plan.IsDropped || plan.Next >= Now - 60, name + " ran late");
    plan.Ran = true;
    plan.Threw = plan.Threw || (throws && plan.Handler == std::string_view("Add-on"));
    plan.Next = First(plan.When, Now);
  }

  /// The next occurrence says that what was put off is unanswered. Who dies may have said so only.
  void EndOthers(Plan& plan, int64 occurrence) {
    for (auto& [of, earlier] : plan.Alerts) {
      if (of == occurrence || (earlier.Returns <= Now && !(hasDied_ && earlier.Returns != 0)))
        continue;
      if (hasDied_)
        earlier.IsDoubtful = true;
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
    const bool tellsOfDeath = says("did not come to its end"), saysMore = says("Also unanswered");
    const bool tellsOfReading = says("did not come to the end of reading");
    Hold(!plan.Acts() || tellsOfDeath || tellsOfReading || says("failed to deal") ||
             (says("not loaded") && deaths_ > 0),
         name + " says: " + alert.Text);
    const bool isKnown = plan.Alerts.contains(occurrence);
    Reminder& reminder = plan.Alerts[occurrence];
    const bool isOccurrence = occurrence <= Now && First(plan.When, occurrence - 1) == occurrence;
    const bool isNext = occurrence != 0 && occurrence == plan.Before && isOccurrence;
    const bool mayBeNext = hasDied_ && plan.Before != 0 && occurrence > plan.Before && isOccurrence;
    const bool tellsAnew = tellsOfReading && hasDied_;
    Hold(isKnown || isNext || mayBeNext || tellsAnew,
         name + " came for " + std::to_string(occurrence) + ", next is " +
             std::to_string(plan.Before));
    Hold(!isKnown || isNext || tellsAnew || reminder.May || reminder.IsDue(Now),
         name + " came again");
    Hold(isKnown || hasDied_ || !plan.IsDropped || occurrence >= Now - 60, name + " came late");
    Hold(isKnown || hasDied_ || !tellsOfDeath, name + " failed for nothing");
    Hold(saysMore || !reminder.SaysMore || wasCut_, name + " says no more what else is unanswered");
    if (isNext || mayBeNext || !isKnown) plan.Came.insert(occurrence);
    if (tellsOfDeath && !isKnown && plan.Next == occurrence && plan.IsDue(Now))
      plan.Next = First(plan.When, occurrence);
    reminder.Open = reminder.May = true;
    reminder.SaysMore = saysMore;
    if (reminder.IsDue(Now)) reminder.Returns = 0, reminder.IsDoubtful = false;
    if (saysMore && !(isKnown && alert.IsReturning)) EndOthers(plan, occurrence);
  }

  /// What the process has done since the last look.
  void Observe() {
    if (!It) return;
    if (!IsDead()) NoteEnd();
    std::vector<AlertRequest> alerts;  // what returns may open after what is new
    while (seen_.Alerts < last_.Alerts) alerts.push_back(Ui().History[seen_.Alerts++]);
    std::stable_sort(alerts.begin(), alerts.end(),
                     [](const auto& a, const auto& b) { return a.Occurrence < b.Occurrence; });
    for (const AlertRequest& alert : alerts) Showed(alert);
    while (seen_.Commands < last_.Commands) {
      const std::string& name = It->World.Machine.Commands[seen_.Commands++];
      Ran(name, seen_.Commands % AddOnData::ThrowsEach == 0);
    }
    if (last_.Times > 0) wake_ = It->Background.Times[last_.Times - 1];
  }

  void CheckAlerts(const std::string& name, Plan& plan) {
    for (auto& [occurrence, reminder] : plan.Alerts) {
      const auto isIt = [&name = name, of = occurrence](const auto& alert) {
        return alert.Request.Face.EventName == name && alert.Request.Occurrence == of;
      };
      const bool stands = IsRunning() && std::any_of(Ui().Alerts.begin(), Ui().Alerts.end(), isIt);
      const bool isBack = reminder.IsDue(Now) && !reminder.IsDoubtful;
      const std::string which = name + ": its alert of " + std::to_string(occurrence);
      Hold(stands || !(reminder.Open || isBack), which + " is gone");
      Hold(!stands || reminder.Open || reminder.May || reminder.IsDue(Now),
           which + " should not stand");
      reminder.Open = reminder.May = stands;
      if (std::exchange(reminder.IsHalf, false) && stands) reminder.Returns = reminder.PutOff = 0;
      if (reminder.IsDue(Now)) reminder.Returns = 0, reminder.IsDoubtful = false;
    }
  }

  /// The deliverer holds a time that lies ahead, and never one too late.
  void CheckWakeUp() {
    int64 next = 0;
    const auto at = [&next](int64 time) {
      if (time != 0 && (next == 0 || time < next)) next = time;
    };
    for (const auto& [name, plan] : plans_) {
      at(plan.Next);
      for (const auto& [occurrence, reminder] : plan.Alerts)
        if (!reminder.IsDoubtful) at(reminder.Returns);
    }
    Hold(wake_ == 0 ? next == 0 : wake_ > Now && (next == 0 || wake_ <= next),
         "wakes at " + std::to_string(wake_) + ", next is " + std::to_string(next));
  }

  /// At rest nothing that is due has been left out, and nothing that nobody has answered is gone.
  void Check(bool isLoggedOut, bool isSynced) {
    for (auto& [name, plan] : plans_) {
      if (plan.IsDue(Now)) {
        const bool isPassedOver = plan.IsDropped && plan.Before < Now - 60;
        Hold(plan.Ran || plan.Came.contains(plan.Before) || isPassedOver,
             name + " has not come for " + std::to_string(plan.Next));
        plan.Next = First(plan.When, Now);
      }
      Hold(!plan.Threw || !plan.Came.empty() || wasCut_, name + " failed, and nobody was told");
      if (isLoggedOut) continue;
      CheckAlerts(name, plan);
      if (isSynced)
        std::erase_if(plan.Alerts, [](const auto& entry) {
          return !entry.second.May && entry.second.Returns == 0;
        });
    }
    if (!isClockWrong_) CheckWakeUp();
  }

  /// What counts of a process: from now on its files refuse everything.
  void NoteEnd() {
    if (It)
      last_ = {It->World.Machine.Commands.size(), Ui().History.size(), It->Background.Times.size()};
  }

  /// Power takes along what has not been synchronised: of this step, and answers of the last one.
  void Died() {
    hasDied_ = true;
    const bool isCut = OneIn(cuts_);
    wasCut_ = wasCut_ || isCut;
    if (isCut)
      for (auto& [name, plan] : plans_) {
        plan.Next = plan.Before;
        for (auto& [occurrence, reminder] : plan.Alerts) {
          // Brought again, it may be passed over, come as one with others, or come to its end.
          const bool mayGo = plan.Acts() || plan.IsDropped || occurrence != plan.Before;
          if (mayGo && plan.Came.contains(occurrence)) reminder.Open = false;
          reminder.May = true;
          if (reminder.Returns == 0 && reminder.PutOff > Now)
            reminder.Returns = reminder.PutOff, reminder.IsDoubtful = true;
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
    hasDied_ = wasCut_ = false;
    for (auto& [name, plan] : plans_) plan.BeginStep();
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
    seen_ = last_ = {};
    for (auto& [name, plan] : plans_)  // what returned by a wrong clock goes back
      for (auto& [occurrence, reminder] : plan.Alerts)
        if (reminder.Open && reminder.PutOff > Now)
          reminder.Open = false, reminder.May = true, reminder.Returns = reminder.PutOff;
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
    plan.Next = First(rule, Now);
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
      Hold(hasDied_ || (wanted.Next == 0 ? !event : isWanted), "");
      const bool isAsBefore = event && plan != plans_.end() &&
                              plan->second.When.TimeToApply == event->Record().TimeToApply;
      if (isAsBefore) return;
      if (!isWanted) return void(plans_.erase(name));
      plans_[name] = wanted;
      plans_[name].BeginStep();
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
    gone.Next = 0;
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
    moved.Next = First(moved.When, Now);
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
      if (reminder)
        *reminder = {false,
                     true,
                     when,
                     when != 0 ? when : reminder->PutOff,
                     false,
                     false,
                     reminder->SaysMore};
      if (when != 0) {
        EXPECT_TRUE(
            It->World.Alerts.PutOff(alert.Id, {static_cast<int32>(when), false, {}}).empty() ||
            IsDead());
      } else {
        Ui().CloseAlert(alert.Id);
        It->World.Alerts.Answered(alert.Id, triesAgain ? 0 : request.HarmlessButton);
      }
      Run();
      if (!reminder) continue;
      if (IsDead())
        reminder->IsHalf = true;
      else
        reminder->May = others() > 0;
    }
  }

  /// For one login it is wrong. A single event that it brings does not come again; of a repeating
  /// one, what it brings over a day too early comes again at its time. It is wrong once more only
  /// when what it showed has been reached.
  void SetClock(int64 by) {
    if (Now < furthest_) return;
    furthest_ = Now + by;
    std::map<std::string, int64> nexts;
    for (const auto& [name, plan] : plans_) nexts[name] = plan.Next;
    isClockWrong_ = true;
    Now += by;
    Attempt("the clock was wrong", [this] { LogIn(); });
    if (OneIn(2)) Attempt("answered", [this] { Reply(); });
    Now -= by;
    isClockWrong_ = false;
    for (auto& [name, plan] : plans_) {
      const int64 next = plan.Next = nexts[name];
      if (next == 0 || next > Now + by) continue;
      if (plan.When.PeriodType == Once || next <= Now + Day) plan.Next = First(plan.When, next);
    }
    Attempt("the clock was right again", [this] { OneIn(2) ? LogIn() : Deliver(3600); });
  }

  void Step() {
    if (IsRunning() && Ui().Alerts.size() > 12) return Attempt("answered", [this] { Reply(); });
    if (OneIn(wrongClocks_)) {
      const int64 most = INT32_MAX - 10 * Day - Now;
      const int64 ahead = OneIn(4) ? std::min(20 * Year, most) : Random(40, 400) * Day;
      return SetClock(OneIn(2) ? ahead : -Random(1, 4000) * Day);
    }
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
    deaths_ = digit > 2 ? 8 : 0;
    cuts_ = digit > 4 ? 3 : 0;
    wrongClocks_ = std::getenv("KESTRIN_LIFE_MORE") && digit > 7 ? 40 : 0;
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
  Seen seen_, last_;                       ///< of this process
  int64 furthest_ = 0;                     ///< what a wrong clock showed
  int64 wake_ = 0;                         ///< what the deliverer holds; 0 = nothing
  bool hasDied_ = false, wasCut_ = false;  ///< in this step
  bool isClockWrong_ = false;
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
