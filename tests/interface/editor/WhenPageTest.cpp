#include <QCalendarWidget>
#include <QCheckBox>
#include <QLayout>
#include <QTableView>

#include "core/timing/DateTimeText.h"
#include "harness/EditorDriver.h"
#include "interface/fields/Region.h"

namespace kestrin {
namespace {

constexpr int32 Monday = 1794787200;  // Mon, Nov 16 2026, 00:00 UTC; it is the day before, 08:00
constexpr int32 Hour = 3600, Day = 86400;

struct WhenPageTest : EditorTest {
  /// The controls that are shown, row by row; "GAP" where rows are not evenly apart.
  std::string Shown() const {
    window->layout()->activate();
    QWidget* page = Find<QTabWidget>("tabs").currentWidget();
    std::map<int, std::map<int, std::string>> rows;
    for (const char* name : {"periodType", "interval", "intervalUnitLabel", "intervalUnit",
                             "timingType", "date", "dayOfMonth", "weekOfMonth", "weekday", "month",
                             "ofTheMonth", "startDate", "useStop", "useTime"}) {
      const QWidget& control = Find(name);
      if (!control.isVisible()) continue;
      const QPoint middle = control.mapTo(page, control.rect().center());
      rows[middle.y() / 10][middle.x()] =
          name == std::string("intervalUnitLabel") ? TextOf(name) : name;
    }
    std::string text;
    int last = 0, step = 0;
    for (const auto& [y, row] : rows) {
      const bool isGap = step != 0 && std::abs(y - last - step) > 1;
      if (last != 0 && step == 0) step = y - last;
      text += text.empty() ? "" : isGap ? " GAP " : " | ";
      for (const auto& [x, name] : row) text += (x == row.begin()->first ? "" : " ") + name;
      last = y;
    }
    return text;
  }
};

TEST_F(WhenPageTest, EachRuleShowsItsRowsWithoutGaps) {
  const std::string every = " | interval ", type = " | timingType", start = " | startDate";
  const std::string date = type + " | date";
  const std::string day = type + " | dayOfMonth", weekday = type + " | weekOfMonth weekday";
  const struct {
    const char* period;
    std::array<std::string, 3> rows;  // by timing type; empty where the menu does not offer it
  } cases[] = {
      {"Annually", {date, day + " month", weekday + " month"}},
      {"Once", {" | date", "", ""}},
      {"Monthly", {"", day + " ofTheMonth", weekday + " ofTheMonth"}},
      {"Weekly", {"", "", " | weekday"}},
      {"SubDaily", {every + "intervalUnit" + start + " | useStop", "", ""}},
      {"Daily", {"none", "", ""}},
      {"MultiAnnually",
       {every + "years" + date + start, every + "years" + day + " month" + start,
        every + "years" + weekday + " month" + start}},
      {"Weekdays", {"none", "", ""}},
      {"MultiMonthly",
       {"", every + "months" + day + " ofTheMonth" + start,
        every + "months" + weekday + " ofTheMonth" + start}},
      {"MultiWeekly", {"", "", every + "weeks | weekday" + start}},
      {"Weekends", {"none", "", ""}},
      {"MultiDaily", {every + "days" + start, "", ""}},
  };
  OpenNew();
  const QSize size = window->size();
  for (const auto& c : cases) {
    ASSERT_TRUE(Choose("periodType", c.period));
    const bool hasMenu = c.rows[1].find("timingType") != std::string::npos;
    for (size_t timing = 0; timing < 3; ++timing) {
      const char* const names[] = {"By date", "By day of month", "By day of week"};
      const bool isOffered = hasMenu && Choose("timingType", names[timing]);
      ASSERT_EQ(isOffered, hasMenu && !c.rows[timing].empty()) << c.period;
      if (c.rows[timing].empty()) continue;
      const std::string rows = c.rows[timing] == "none" ? "" : c.rows[timing];
      EXPECT_EQ(Shown(), "periodType" + rows + " | useTime") << c.period << " " << names[timing];
    }
    EXPECT_EQ(window->size(), size) << c.period;
  }
}

TEST_F(WhenPageTest, EveryControlWritesItsFieldAtOnce) {
  EventRecord record;
  record.PeriodType = MultiAnnually;
  record.EventTime = record.MultiStartTime = Monday + 8 * Hour;
  OpenRecord(record);
  const struct {
    const char* act;
    std::function<bool(const EventRecord&)> holds;
  } cases[] = {
      {"enter interval 3", [](const auto& r) { return r.Multiple == 3; }},
      {"enter date Dec 24 2026",
       [](const auto& r) { return r.EventTime == Monday + 38 * Day && !r.ApplyTime; }},
      {"enter date Dec 24 2026, 6 pm",
       [](const auto& r) {
         return r.EventTime == Monday + 38 * Day + 18 * Hour && r.ApplyTime &&
                r.TimeToApply == 18 * Hour;
       }},
      {"choose timingType By day of month",
       [](const auto& r) { return r.TimingType == ByDayOfMonth; }},
      {"choose dayOfMonth 2nd to last", [](const auto& r) { return r.DayOfMonth == 33; }},
      {"choose month December", [](const auto& r) { return r.Month == 11; }},
      {"choose periodType MultiMonthly",
       [](const auto& r) { return r.PeriodType == MultiMonthly; }},
      {"choose timingType By day of week",
       [](const auto& r) { return r.TimingType == ByDayOfWeek; }},
      {"choose weekOfMonth Last", [](const auto& r) { return r.WeekOfMonth == 4; }},
      {"choose weekday Saturday", [](const auto& r) { return r.DayOfWeek == 6; }},
      {"choose periodType SubDaily", [](const auto& r) { return r.PeriodType == SubDaily; }},
      {"choose intervalUnit minutes", [](const auto& r) { return r.SubIntType == Minutes; }},
      {"enter startDate Nov 20 2026, 07:30",
       [](const auto& r) { return r.MultiStartTime == Monday + 4 * Day + 27000; }},
      {"enter startDate Nov 21 2026",
       [](const auto& r) { return r.MultiStartTime == Monday + 5 * Day + 27000; }},
      {"click useStop", [](const auto& r) { return r.ApplyStop; }},
      {"enter stopTime 5:15 pm", [](const auto& r) { return r.StopTime == 62100; }},
      {"choose periodType Daily", [](const auto& r) { return r.PeriodType == Daily; }},
      {"click useTime", [](const auto& r) { return !r.ApplyTime; }},
      {"click useTime", [](const auto& r) { return r.ApplyTime; }},
      {"enter time noon", [](const auto& r) { return r.TimeToApply == 12 * Hour; }},
  };
  for (const auto& [act, holds] : cases) {
    EXPECT_TRUE(Do(act)) << act;
    EXPECT_TRUE(holds(Record())) << act << ": " << Complaint();
    EXPECT_THAT(Complaint(), IsEmpty());
  }
  EXPECT_TRUE(set->HasBeenModified());
  EXPECT_EQ(Find<QComboBox>("intervalUnit").count(), 2);
}

TEST_F(WhenPageTest, ADayIsRefusedThatHasNoRoomForItsTimeOfDay) {
  OpenNew();
  ASSERT_TRUE(Choose("periodType", "SubDaily"));
  Enter("startDate", "Nov 20 2026, 07:30");
  Enter("startDate", "Jan 19 2038");
  EXPECT_THAT(Complaint(), HasSubstr("January 18, 2038"));
  EXPECT_EQ(Record().MultiStartTime, Monday + 4 * Day + 27000);
  ASSERT_TRUE(Choose("periodType", "Once"));
  Enter("date", "Jan 19 2038, 03:00");
  EXPECT_THAT(Complaint(), IsEmpty());
  Enter("time", "4 am");
  EXPECT_THAT(Complaint(), HasSubstr("January 18, 2038"));
  EXPECT_EQ(Record().TimeToApply, 10800);
}

TEST_F(WhenPageTest, DatesAreReadAsTypedAndShownInFullInTheZone) {
  context.Core.zone = *Zone::Load("Europe/Berlin");
  OpenNew();
  const auto wall = [](int day, int hour) {  // of November 2026
    return Zone::Load("Europe/Berlin")->ToMoment(ToCivil({2026, 10, day, hour, 0, 0}));
  };
  struct {
    const char* typed;
    const char* shown;
    int64 time;  // 0: refused
  } const cases[] = {
      {"tomorrow", "Mon, Nov 16 2026", wall(16, 0)},
      {"next friday", "Fri, Nov 20 2026", wall(20, 0)},
      {"Fri, Nov 21 2026", "Sat, Nov 21 2026", wall(21, 0)},  // the weekday was left as shown
      {"Mon, Nov 22 2026", "", 0},
      {"", "", 0},
      {"Nov 27 2026 6 pm", "Fri, Nov 27 2026, 06:00:00 PM", wall(27, 18)},
      {"29 Nov 2026", "Sun, Nov 29 2026, 06:00:00 PM", wall(29, 18)},
      {"Jan 19 2038", "", 0},  // 6 pm of that day cannot be kept
  };
  std::string lastShown = FieldText("date");
  for (const auto& c : cases) {
    const int32 before = Record().EventTime;
    Enter("date", c.typed);
    EXPECT_EQ(Record().EventTime, c.time ? c.time : before) << c.typed;
    EXPECT_EQ(Complaint().empty(), c.time != 0) << c.typed;
    if (c.time == 0) {
      EXPECT_THAT(Complaint(), HasSubstr(c.typed));
      EXPECT_EQ(FieldText("date"), c.typed);
      QTest::keyClick(&Find("date"), Qt::Key_Escape);
      EXPECT_TRUE(window->isVisible()) << "the first Escape is the field's";
    }
    EXPECT_EQ(FieldText("date"), c.time ? c.shown : lastShown) << c.typed;
    EXPECT_THAT(Complaint(), IsEmpty());
    lastShown = FieldText("date");
  }
}

TEST_F(WhenPageTest, TheCalendarPicksADayAndKeepsTheTimeOfDay) {
  EventRecord record;
  record.PeriodType = MultiDaily;
  record.MultiStartTime = Monday + 8 * Hour + 61;
  OpenRecord(record);
  auto& field = Find<TypedField>("startDate");
  const auto days = [&field]() -> QTableView& {
    if (auto* calendar = field.parent()->findChild<QCalendarWidget*>())
      return *calendar->findChild<QTableView*>();
    throw std::runtime_error("no calendar");
  };
  Type("startDate", "no date");
  QTest::keyClick(&field, Qt::Key_Down, Qt::AltModifier);
  QTest::keyClick(&days(), Qt::Key_Right);
  QTest::keyClick(&days(), Qt::Key_Return);
  EXPECT_EQ(Record().MultiStartTime, Monday + Day + 8 * Hour + 61);
  EXPECT_EQ(FieldText("startDate"), "Tue, Nov 17 2026, 08:01:01 AM");
  EXPECT_THAT(Complaint(), IsEmpty()) << "the pick takes the place of what could not be read";

  DeleteClosed();
  QTest::mouseClick(&Find("startDateCalendar"), Qt::LeftButton);
  const QModelIndex shown = days().currentIndex(), below = shown.siblingAtRow(shown.row() + 1);
  QTest::mouseClick(days().viewport(), Qt::LeftButton, {}, days().visualRect(below).center());
  EXPECT_EQ(Record().MultiStartTime, Monday + 8 * Day + 8 * Hour + 61);

  DeleteClosed();
  Type("startDate", "Nov 18 2026 9 am");
  QTest::keyClick(&field, Qt::Key_F4);
  EXPECT_EQ(field.parent()->findChild<QCalendarWidget*>()->selectedDate().day(), 18);
  QTest::keyClick(&days(), Qt::Key_Escape);
  EXPECT_EQ(Record().MultiStartTime, Monday + 2 * Day + 9 * Hour) << "what was typed counts first";

  DeleteClosed();
  Type("startDate", "no date");
  QTest::keyClick(&field, Qt::Key_F4);
  QTest::keyClick(&days(), Qt::Key_Return);
  EXPECT_EQ(FieldText("startDate"), "Wed, Nov 18 2026, 09:00:00 AM") << "the day it has";
  EXPECT_EQ(Record().MultiStartTime, Monday + 2 * Day + 9 * Hour);
  EXPECT_TRUE(window->isVisible());
}

TEST_F(WhenPageTest, SecondsThatAreNotZeroAreShownAndKept) {
  EventRecord record;
  record.PeriodType = SubDaily;
  record.ApplyStop = record.ApplyTime = true;
  record.StopTime = 17 * Hour + 59;
  OpenRecord(record);
  EXPECT_FALSE(Find("time").isEnabled()) << "the start has it";
  EXPECT_EQ(FieldText("stopTime"), "05:00:59 PM");
  Enter("stopTime", "05:00:59 PM");
  EXPECT_EQ(Record().StopTime, 17 * Hour + 59);
  EXPECT_FALSE(set->HasBeenModified());
  Enter("stopTime", "25:00");
  EXPECT_THAT(Complaint(), HasSubstr("25:00"));
  Click("useStop");
  EXPECT_THAT(Complaint(), IsEmpty()) << "nobody could correct it";
  EXPECT_EQ(FieldText("stopTime"), "05:00:59 PM");
}

TEST_F(WhenPageTest, TheLineSaysWhatStandsInTheWay) {
  OpenNew();
  Choose("periodType", "SubDaily");
  Enter("startDate", "someday");
  Enter("interval", "0");
  EXPECT_THAT(Complaint(), HasSubstr("never comes round"));
  EXPECT_EQ(Record().Multiple, 2U);
  Find("startDate").setFocus();
  EXPECT_THAT(Complaint(), HasSubstr("someday")) << "the field that the person is in";
  Enter("startDate", "Nov 20 2026");
  EXPECT_THAT(Complaint(), HasSubstr("never comes round")) << "is not settled";
  Choose("periodType", "Daily");
  EXPECT_THAT(Complaint(), IsEmpty()) << "the row is hidden, and its fault with it";
  EXPECT_EQ(FieldText("interval"), "2");
}

TEST_F(WhenPageTest, OddValuesOfFilesAreShownAndKept) {
  EventRecord record;
  record.PeriodType = MultiAnnually;
  record.TimingType = ByDayOfMonth;
  record.DayOfMonth = 45;
  record.Month = -7;
  record.EventTime = INT32_MIN;
  OpenRecord(record);
  EXPECT_EQ(Find<QComboBox>("dayOfMonth").currentText(), "14th to last");
  EXPECT_EQ(Find<QComboBox>("month").currentText(), "Unknown (-7)");
  EXPECT_FALSE(set->HasBeenModified());
  Enter("interval", "5");
  EXPECT_THAT(Complaint(), IsEmpty()) << "the month is another matter";
  Choose("dayOfMonth", "12th");
  EXPECT_EQ(Find<QComboBox>("dayOfMonth").findText("14th to last"), -1);

  record.PeriodType = 99;
  OpenRecord(record);
  EXPECT_EQ(Shown(), "periodType | useTime");
  EXPECT_EQ(Find<QComboBox>("periodType").currentText(), "Unknown (99)");
  Choose("periodType", "Weekly");
  EXPECT_EQ(Shown(), "periodType | weekday | useTime");
}

TEST_F(WhenPageTest, DatesSayWhatBecomesOfThem) {
  OpenNew();
  EXPECT_FALSE(Find("dateHint").isVisible()) << "no gap";
  const struct {
    const char *act, *shown, *hint, *complaint;
  } rows[] = {
      {"enter date 7.30", "Mon, Nov 16 2026, 07:30:00 AM",
       "That time has passed today, so it is tomorrow's", ""},
      {"enter date 9:15", "Sun, Nov 15 2026, 09:15:00 AM", "", ""},
      {"enter date 5 pm", "Sun, Nov 15 2026, 05:00:00 PM", "", ""},
      {"enter date yesterday", "Sat, Nov 14 2026, 05:00:00 PM",
       "This moment has passed; it will not ring", ""},
      {"enter date May 3 1938", "May 3 1938", "This moment has passed; it will not ring", "1970"},
      {"choose periodType Annually", "May 3 1938", "", "1970"},
      {"enter date May 3 1938", "Tue, May 03 1938, 05:00:00 PM", "", ""},
      {"enter date 7.30", "Tue, May 03 1938, 07:30:00 AM", "", ""},
      {"enter date May 3 1901", "May 3 1901", "", "1901"},
  };
  for (const auto& row : rows) {
    EXPECT_TRUE(Do(row.act));
    EXPECT_EQ(FieldText("date"), row.shown) << row.act;
    EXPECT_EQ(TextOf("dateHint"), row.hint) << row.act;
    EXPECT_EQ(Find("dateHint").isVisible(), *row.hint != 0) << row.act;
    EXPECT_EQ(Complaint().empty(), !*row.complaint) << row.act;
    EXPECT_THAT(Complaint(), HasSubstr(row.complaint)) << row.act;
  }
}

TEST_F(WhenPageTest, TheRuleIsSaidWithItsNextFiveDates) {
  OpenNew();
  EXPECT_TRUE(Find("midnight").isVisible());
  Choose("periodType", "Daily");
  EXPECT_EQ(TextOf("ruleSentence"), "Every day.");
  Click("useTime");
  EXPECT_EQ(Record().TimeToApply, 9 * Hour) << "the next full hour";
  EXPECT_FALSE(Find("midnight").isVisible());
  EXPECT_EQ(TextOf("ruleSentence"), "Every day at 9:00 AM.");
  EXPECT_TRUE(Find<QLabel>("nextDates")
                  .text()
                  .endsWith("; Thu,\u00a0Nov\u00a019\u00a02026,\u00a009:00\u00a0AM"));
  Click("useTime");
  Choose("periodType", "SubDaily");
  EXPECT_TRUE(Find<QCheckBox>("useTime").isChecked());
  EXPECT_FALSE(Find("useTime").isEnabled());
}

TEST_F(WhenPageTest, TheLastWeekdayCountsFromEachMonthsEndOnceItIsChosen) {
  EventRecord record;
  record.PeriodType = Monthly;
  record.TimingType = ByDayOfWeek;
  record.WeekOfMonth = 4;
  record.DayOfWeek = 5;
  record.EventTime = Monday;
  OpenRecord(record);
  EXPECT_THAT(TextOf("countsFrom"), HasSubstr("31st"));
  const struct {
    const char* act;
    int month;
    bool offered;  // to count from each month's end
  } rows[] = {{"choose weekday Tuesday", 0, true},
              {"click countFromEnd", 12, false},
              {"choose periodType Annually", 10, false},
              {"choose month May", 4, false},
              {"choose periodType Monthly", 12, false},
              {"choose weekOfMonth 1st", 12, false},
              {"choose periodType MultiAnnually", 10, false},
              {"choose weekOfMonth Last", 10, false},
              {"choose periodType MultiMonthly", 12, false}};
  for (const auto& row : rows) {
    EXPECT_TRUE(Do(row.act));
    EXPECT_EQ(Record().Month, row.month) << row.act;
    EXPECT_EQ(Find("countFromEnd").isVisible(), row.offered) << row.act;
  }
  record.WeekOfMonth = 0;
  OpenRecord(record);
  EXPECT_TRUE(Do("choose weekOfMonth Last"));
  EXPECT_EQ(Record().Month, 12);
}

TEST_F(WhenPageTest, AFieldReadsTheRegionsWordsAndWhateverItShows) {
  OpenNew();
  window->setLocale(QLocale("de_DE"));
  Enter("date", "3/4/2027");
  EXPECT_EQ(FieldText("date"), "Sat, Apr 03 2027");
  Enter("date", "MORGEN um 9 Uhr");
  EXPECT_EQ(FieldText("date"), "Mon, Nov 16 2026, 09:00:00 AM");
  QTest::keyClick(&Find("date"), Qt::Key_F4);
  EXPECT_EQ(window->findChild<QCalendarWidget*>()->firstDayOfWeek(), Qt::Monday);

  for (const char* name : {"en_US", "en_GB", "de_DE", "fr_FR", "es_ES", "it_IT", "fi_FI", "sv_SE",
                           "tr_TR", "pl_PL", "ru_RU", "ja_JP", "ar_EG", "nl_NL"}) {
    const DateLanguage language = LanguageOf(QLocale(name));
    for (int32 moment = Monday + 8 * Hour + 61; moment < Monday + 366 * Day; moment += Day)
      for (const bool use24Hours : {false, true}) {
        const std::string text = GetDateTimeString(moment, true, Zone(), use24Hours);
        ASSERT_EQ(ReadTypedDate(text, Monday, Zone(), language).moment, moment) << name << text;
      }
    if (std::string_view("ja_JP ar_EG").find(name) != std::string_view::npos)
      continue;  // own digits
    const QDate day(2027, 3, 9);
    const QString own = QLocale(name).toString(day, "ddd d MMMM yyyy").toLower();
    EXPECT_EQ(ReadTypedDate(own.toStdString(), Monday, Zone(), language).moment, Monday + 113 * Day)
        << name << ": " << own.toStdString();
  }
}

TEST(RegionTest, TheClockIsTheRegions) {
  const std::pair<const char*, bool> rows[] = {
      {"de_DE", true}, {"en_GB", true}, {"fr_FR", true}, {"en_US", false}, {"C", false}};
  for (const auto& [region, hours24] : rows)
    EXPECT_EQ(UsesClock24(QLocale(region)), hours24) << region;
}

}  // namespace
}  // namespace kestrin
