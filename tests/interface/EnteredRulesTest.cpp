#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include "core/timing/DateTimeText.h"
#include "harness/EditorDriver.h"

namespace kestrin {
namespace {

constexpr const char* ZoneName = "Europe/Berlin";

struct Entered {
  const char* period;
  std::vector<const char*> acts;  // of a person in the editor
  const char* actual;             // as the editor then shows it
};

const std::vector<Entered> Rules = {
    {"Once", {"enter date March 28 2027, 2:30 am"}, "Sun, Mar 28 2027, 03:00:00 AM"},
    {"Once", {"enter date yesterday"}, "Sat, Nov 14 2026"},
    {"Annually",
     {"enter date Feb 29 2024", "click useTime", "enter time 9:15"},
     "Mon, Mar 01 2027, 09:15:00 AM"},
    {"Annually",
     {"choose timingType By day of month", "choose month April", "choose dayOfMonth 31st"},
     "Fri, Apr 30 2027"},
    {"Annually",
     {"choose timingType By day of week", "choose month March", "choose weekOfMonth Last",
      "choose weekday Sunday", "click useTime", "enter time 02:30"},
     "Sun, Mar 28 2027, 03:00:00 AM"},
    {"Monthly",
     {"choose timingType By day of month", "choose dayOfMonth 2nd to last"},
     "Sun, Nov 29 2026"},
    {"Monthly", {"choose weekOfMonth 2nd", "choose weekday Tuesday"}, "Tue, Dec 08 2026"},
    {"Weekly",
     {"choose weekday Sunday", "click useTime", "enter time 8 pm"},
     "Sun, Nov 15 2026, 08:00:00 PM"},
    {"Daily", {"click useTime", "enter time 7am"}, "Mon, Nov 16 2026, 07:00:00 AM"},
    {"Weekdays", {}, "Mon, Nov 16 2026"},
    {"Weekends", {"click useTime", "enter time 23:59"}, "Sun, Nov 15 2026, 11:59:00 PM"},
    {"MultiAnnually",
     {"enter interval 5", "enter date Nov 10 2019", "enter startDate Jan 1 2020"},
     "Sun, Nov 10 2030"},
    {"MultiMonthly",
     {"enter interval 7", "choose weekOfMonth 1st", "choose weekday Friday",
      "enter startDate Jan 1 2026"},
     "Fri, Mar 05 2027"},
    {"MultiWeekly",
     {"enter interval 3", "choose weekday Thursday", "enter startDate Oct 1 2026"},
     "Thu, Dec 03 2026"},
    {"MultiDaily", {"enter interval 10", "enter startDate Nov 1 2026, noon"}, "Sun, Nov 22 2026"},
    {"SubDaily",
     {"enter interval 45", "choose intervalUnit minutes", "enter startDate Nov 1 2026, 8:00",
      "click useStop", "enter stopTime 17:00"},
     "Sun, Nov 15 2026, 09:30:00 AM"},
};

/// An editor over files of the system, in a folder of the test's own.
struct EnteredRulesTest : EditorTest {
  ~EnteredRulesTest() override { context.Open.Sets.clear(); }

  void EnterRule(const Entered& rule) {
    OpenNew();
    ASSERT_TRUE(Choose("periodType", rule.period));
    for (const char* act : rule.acts) {
      EXPECT_TRUE(Do(act)) << rule.period << ": " << act;
      ASSERT_EQ(Complaint(), "") << rule.period << ": " << act;
    }
    QCoreApplication::sendPostedEvents(window);
    shown.push_back({TextOf("actualTime"), TextOf("nextTime"), TextOf("status")});
    EXPECT_EQ(shown.back()[0], rule.actual) << rule.period;
    window->close();
  }

  /// What kestrinctl says of the saved file, as the editor would show it.
  std::vector<std::array<std::string, 3>> AskCtl(const QString& path) {
    QProcess ctl;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TZ", ZoneName);
    ctl.setProcessEnvironment(environment);
    ctl.start(KESTRINCTL, {"next", "--json", "--at", QString::number(context.Time.Now()), path});
    EXPECT_TRUE(ctl.waitForFinished(20000));
    EXPECT_EQ(ctl.exitCode(), 0) << ctl.readAllStandardError().toStdString();
    std::vector<std::array<std::string, 3>> all;
    for (const QJsonValue& value : QJsonDocument::fromJson(ctl.readAllStandardOutput()).array()) {
      const bool withTime = set->Events()[all.size()]->GetApplyTime();
      const auto text = [&](const char* key) {
        return GetDateTimeString(value[QString(key)].toInt(), withTime, zone, false);
      };
      const int status = value[QString("Status")].toInt();
      all.push_back({text("ActualEventTime"), text("NextEventTime"),
                     std::string(StatusMessages.at(static_cast<size_t>(status)))});
    }
    return all;
  }

  Zone zone = *Zone::Load(ZoneName);
  SystemFileDoor files;
  QTemporaryDir folder;
  Context disk{context.Time,
               files,
               context.Queue,
               context.Holding,
               context.Ui,
               context.Alerts,
               context.Notes,
               context.Machine,
               context.Threads,
               context.Actions,
               context.Open,
               context.Settings,
               context.Handlers,
               zone,
               1};
  std::vector<std::array<std::string, 3>> shown;
};

TEST_F(EnteredRulesTest, TheSavedFileComesWhenTheEditorSaid) {
  const QString path = folder.filePath("Entered.kestrin");
  context.Open.Sets.push_back(std::make_unique<EventSet>(disk, path.toStdString()));
  set = context.Open.Sets.back().get();
  std::set<std::string> periods;
  for (const Entered& rule : Rules) {
    EnterRule(rule);
    periods.insert(rule.period);
  }
  EXPECT_EQ(periods.size(), 12U);
  ASSERT_TRUE(set->SaveData());
  const auto told = AskCtl(path);
  ASSERT_EQ(told.size(), Rules.size());
  for (size_t row = 0; row < told.size(); ++row) EXPECT_EQ(told[row], shown[row]) << row;
}

}  // namespace
}  // namespace kestrin
