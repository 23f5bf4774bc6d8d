// The states of docs/reminders.md, "Windows and notifications", carried out row by row.
#include "core/delivery/ReminderFaces.h"

#include <map>

#include "core/loop/PutOffKeeper.h"
#include "harness/PageTable.h"
#include "harness/SetTestBase.h"

namespace kestrin {
namespace {

class Keeper final : public PutOffKeeper {
 public:
  std::string Keep(const AlertRequest&, const PutOffMoment& when) override {
    KeptFor = when.moment;
    return Why;
  }
  void Asked(AlertRequest&) override {}
  void Opening(AlertRequest&) override {}
  void Ended(const AlertRequest& request) override { Over.push_back(request.Text); }
  void EventDeleted(uint64, uint64) override {}

  std::string Why;
  int64 KeptFor = 0;
  std::vector<std::string> Over;
};

struct AlertWorld : SetTestBase {
  AlertWorld() { World.Alerts.KeepWith(&keeper_); }

  AlertRequest Request(const std::string& kind) {
    AlertRequest request;
    request.Text = "Tea is ready";
    request.Face.EventName = "Tea";
    request.Buttons = {"Stop", "OK"};
    request.HarmlessButton = 1;
    request.Role = kind.find("question") == kind.npos ? AlertRole::Nag : AlertRole::Question;
    if (kind.find("handler's") != kind.npos) request.Notify = UrgencyCritical;
    request.Set = Set->GetHandle();
    request.Event = event_->GetHandle();
    request.Done = [this](int which) { answers_.push_back(which); };
    return request;
  }
  void Show(const AlertRequest& request) {
    World.Alerts.Show(request);
    World.RunMessages();
  }
  std::string State() const {
    const bool window = !World.Ui.Alerts.empty() && World.Ui.Alerts[0].Place != NoPlace;
    const bool notification = !World.Notified.Open.empty();
    if (window) return notification ? "both" : "window";
    return notification ? "notification" : World.Ui.Alerts.empty() ? "gone" : "hidden";
  }
  /// What the alert of a row is at first.
  void Bring(const std::string& what) {
    const bool isNew = what.starts_with("new");
    const auto has = [&what](const char* word) { return what.find(word) != what.npos; };
    World.Settings.ShowRemindersAs = has("windows") ? 0 : has("notifications") ? 1 : 2;
    if (!isNew && what == "notification") World.Settings.ShowRemindersAs = 1;
    Show(Request(isNew ? what : ""));
    EXPECT_EQ(State() == what, !isNew);
  }
  void Meet(const std::string& what) {
    if (what.empty()) return;
    const auto press = [this](const char* label) {
      return [this, label] { World.Notified.Answer(NotificationReply::Kind::Action, label); };
    };
    const std::map<std::string, std::function<void()>> steps = {
        {"the notification is lost",
         [this] { World.Notified.Answer(NotificationReply::Kind::Lost); }},
        {"dismissed by the person",
         [this] { World.Notified.Answer(NotificationReply::Kind::Dismissed); }},
        {"\"OK\"", press("OK")},
        {"\"Later\"", press("Later")},
        {"\"Later\", which cannot be stored",
         [this, press] { keeper_.Why = "Disk full", press("Later")(); }},
        {"\"Open event\"", press("Open event")},
        {"a click", press("Show")},
        {"a button of the window", [this] { World.Ui.AnswerFirst(0); }},
        {"more of its event",
         [this] {
           AlertRequest more = Request("");
           more.Text = "Tea is cold";
           Show(more);
         }},
        {"so many that all are rows",
         [this] {
           World.Ui.MostBoxes = 1;
           AlertRequest other = Request("");
           other.Event = 0;
           other.Text = "Other";
           World.Settings.ShowRemindersAs = 0;
           Show(other);
           World.Ui.AnswerText("Other", 1);
         }},
        {"the end of the program", [this] { World.Alerts.EndByForce(); }},
    };
    ASSERT_TRUE(steps.contains(what)) << what;
    steps.at(what)();
    World.RunMessages();
  }
  bool Came(const std::string& what) {
    const std::map<std::string, std::function<bool()>> results = {
        {"", [] { return true; }},
        {"answered with the harmless button", [this] { return answers_ == std::vector{1}; }},
        {"answered with that button", [this] { return answers_ == std::vector{0}; }},
        {"it comes back in an hour",
         [this] {
           return keeper_.KeptFor == World.Time.Now() + 3600 && answers_ == std::vector{1};
         }},
        {"a notice says why",
         [this] { return World.Ui.Alerts.back().Request.Text == "Disk full"; }},
        {"the event's window opens", [this] { return World.Ui.EditorWindows.size() == 1; }},
        {"it is in front", [this] { return World.Ui.Calls.back() == "RaiseAlert"; }},
        {"the text is the new one",
         [this] {
           return World.Notified.Open.size() == 1 &&
                  World.Notified.Open[0].Shown.Text == "Tea is cold";
         }},
        {"its window would be a row",
         [this] {
           World.Notified.Answer(NotificationReply::Kind::Lost);
           return World.Ui.Alerts.back().Place == RowPlace;
         }},
    };
    EXPECT_TRUE(results.contains(what)) << what;
    return results.contains(what) && results.at(what)();
  }

  void TestBody() override {}

  Keeper keeper_;
  EventSet* Set = &NewSet();
  Event* event_ = &Add(*Set, DailyAt(Sunday));
  std::vector<int> answers_;
};

TEST_F(AlertWorld, WhatIsPutOffEndsWhatStoodInIt) {
  AlertRequest unread = Request(""), nag = Request("");
  unread.Role = AlertRole::Delivery;
  nag.Text = "nag";
  for (const AlertRequest& each : {unread, nag}) Show(each);
  EXPECT_EQ(World.Alerts.PutOff(World.Ui.Alerts.at(0).Id, {}), "");
  EXPECT_EQ(keeper_.Over, std::vector<std::string>{"nag"}) << "the other goes on, later";
}

TEST(ReminderFacesTest, EachRowOfThePageHolds) {
  const auto rows = TableOfPage("reminders.md", "| an alert that is |");
  ASSERT_GE(rows.size(), 20u);
  for (const auto& row : rows) {
    SCOPED_TRACE(row[0] + " | " + row[1]);
    AlertWorld world;
    world.Bring(row[0]);
    world.Meet(row[1]);
    EXPECT_EQ(world.State(), row[2]);
    EXPECT_TRUE(world.Came(row[3])) << row[3];
  }
}

}  // namespace
}  // namespace kestrin
