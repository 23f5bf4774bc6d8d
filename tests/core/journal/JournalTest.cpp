#include "core/journal/Journal.h"

#include <gmock/gmock.h>

#include <functional>

#include "core/journal/Later.h"
#include "harness/FailingFileDoor.h"
#include "harness/FakeClock.h"
#include "harness/FakeProcesses.h"
#include "harness/MemoryFileDoor.h"

namespace kestrin {
namespace {

using testing::ElementsAre, testing::IsEmpty, testing::SizeIs;

constexpr char WorkSet[] = "/sets/Work.kestrin";
constexpr char JournalFile[] = "/state/journal";

std::string Everything() {
  std::string bytes;
  for (int c = 0; c < 256; ++c) bytes += static_cast<char>(c);
  return bytes;
}

TEST(RecordLine, CarriesAnyBytesAndNoDamage) {
  RecordFields fields;
  fields.Set("text", Everything());
  fields.Set("number", int64{-7});
  fields.Set("empty", "");
  const std::string line = EncodeLine("id.1", fields);
  ASSERT_EQ(line.find('\n'), line.size() - 1);
  const auto back = DecodeLine(std::string_view(line).substr(0, line.size() - 1));
  ASSERT_TRUE(back);
  EXPECT_EQ(back->Id, "id.1");
  EXPECT_EQ(back->Fields, fields);
  for (size_t at = 0; at + 1 < line.size(); ++at) {
    EXPECT_FALSE(DecodeLine(std::string_view(line).substr(0, at))) << "cut at " << at;
    std::string flipped = line.substr(0, line.size() - 1);
    flipped[at] = static_cast<char>(flipped[at] ^ 1);
    EXPECT_FALSE(DecodeLine(flipped)) << "flipped at " << at;
  }
}

/// Several processes over the same files.
class JournalTest : public testing::Test {
 protected:
  struct Session {
    Session(JournalTest& test, int64 number)
        : Who(number, &test.Dead),
          It(test.Door, Who, test.Time, "/state",
             [&test](const std::string& words) { test.Told.push_back(words); }) {
      It.Read();
    }
    FakeProcesses Who;
    Journal It;
  };
  static JournalRecord Of(EventState from, EventState to, int32 place = 0, uint32 rule = 5) {
    JournalRecord record;
    record.Set = WorkSet;
    record.Event = {"Tea", "Command", place};
    record.Rule = rule;
    record.From = from;
    record.To = to;
    record.Act = ActStage::Acting;
    return record;
  }
  static EventState At(int32 day) { return {day * 100, day * 100, 2, false}; }
  std::string Deliver(Session& session, int32 day, int32 place = 0) {
    const std::string id = session.It.Begin(Of(At(day), At(day + 1), place));
    session.It.Stage(id, ActStage::Acted);
    return id;
  }
  std::vector<std::string> Ids(const std::vector<JournalRecord>& records) {
    std::vector<std::string> ids;
    for (const JournalRecord& record : records) ids.push_back(record.Id);
    return ids;
  }

  std::set<int64> Dead;
  std::vector<std::string> Told;
  MemoryFileDoor Disk;
  FailingFileDoor Door{Disk};
  FakeClock Time{1000};
};

TEST_F(JournalTest, IsThereAgainAfterACrashAndAfterAPowerCutWhenSynchronised) {
  std::string first, second;
  const KeptAlert alert = {
      AlertRole::Nag, AlertKind::Warning, "title", Everything(), {"No more nagging", ""}, 1, 1,
      "icon"};
  {
    Session session(*this, 1);
    first = session.It.Begin(Of(At(1), At(2)));
    session.It.Shown(first, alert);
    EXPECT_EQ(session.It.Sync(), StatusOk);
    second = Deliver(session, 2);
  }
  Dead = {1};
  EXPECT_THAT(Ids(Session(*this, 2).It.All()), ElementsAre(first, second));
  Disk.CutPower(false);
  Session session(*this, 3);
  ASSERT_THAT(Ids(session.It.All()), ElementsAre(first));
  JournalRecord expected = Of(At(1), At(2));
  expected.By = FakeProcesses(1).Self();
  expected.At = 1000;
  expected.AlertIs = AlertStage::Shown;
  expected.Alert = alert;
  EXPECT_EQ(FieldsOf(*session.It.Find(first)), FieldsOf(expected));
}

TEST_F(JournalTest, WorksInMemoryWhateverCallFailsAndWritesItLater) {
  for (const auto& [half, fromThen] : {std::pair(false, false), {true, false}, {true, true}})
    for (int call = 1;; ++call) {
      Disk = MemoryFileDoor();
      Door.FailAgain(call);
      Door.ShortWrite = half;
      Door.FailFromThen = fromThen;
      Session session(*this, 1);
      const std::vector<std::string> ids = {Deliver(session, 1), Deliver(session, 2)};
      EXPECT_EQ(Ids(session.It.All()), ids) << "call " << call << " " << Door.Failed;
      if (!Door.HasFailed()) break;
      Door.FailAt = 0;
      const bool rests = call % 2 == 0;
      rests ? session.It.EndHeap() : void(Deliver(session, 3));
      EXPECT_EQ(Told.size(), fromThen ? 1u : Told.size()) << "call " << call << " " << Door.Failed;
      Told.clear();
      EXPECT_THAT(Session(*this, 2).It.All(), SizeIs(rests ? 2 : 3))
          << "call " << call << " " << Door.Failed;
      EXPECT_THAT(Told, IsEmpty()) << "call " << call << " " << Door.Failed;
      EXPECT_LE(DecodeLines(*Disk.Bytes(JournalFile)).Lines.size(), 7u) << "no heap of repeats";
    }
}

TEST_F(JournalTest, WritesAHeapInFewLinesBeforeAnythingElse) {
  const struct {
    const char* name;
    std::function<void(Session& session, const std::string& last)> then;
  } rows[] = {
      {"a window opens", [](Session& session, const auto&) { session.It.EndHeap(); }},
      {"it is answered", [](Session& session, const auto& last) { session.It.PutOff(last); }},
      {"made durable", [](Session& session, const auto&) { session.It.Sync(); }},
      {"replaced", [](Session& session, const auto&) { session.It.Compaction()(); }},
      {"a thread writes", [](Session& session, const auto& last) { session.It.Ended(last, 3); }},
      {"claimed", [](Session& session, const auto&) { session.It.Claim(Of(At(9), At(9))); }}};
  for (const auto& row : rows) {
    Disk = MemoryFileDoor();
    Session session(*this, 1), other(*this, 2);
    std::vector<std::string> ids;
    for (int32 day = 0; day < 50; ++day) {
      ids.push_back(session.It.BeginInHeap(Of(At(day), At(day + 1))));
      session.It.Stage(ids.back(), ActStage::Acted);
      if (day == 40) ids.push_back(Deliver(other, 70));
    }
    const size_t before = DecodeLines(*Disk.Bytes(JournalFile)).Lines.size();
    EXPECT_TRUE(before > 25 && before < ids.size()) << before << ": some wait";
    row.then(session, ids.back());
    session.It.Adopt(ids[40]);
    Session third(*this, 3);
    for (Session* const reader : {&session, &third})
      for (const std::string& id : ids) {
        const std::optional<JournalRecord> record = reader->It.Find(id);
        EXPECT_TRUE(record && record->Act == ActStage::Acted && record->To) << row.name << id;
      }
    EXPECT_THAT(third.It.All(), SizeIs(testing::Ge(ids.size()))) << row.name;
  }
}

TEST_F(JournalTest, OneOfAHeapThatEndsTheProcessIsFoundWithinAFewStarts) {
  for (const int32 deadly : {0, 1, 2, 30, 99}) {
    Disk = MemoryFileDoor();
    std::vector<JournalRecord> begun;
    int64 starts = 0;
    for (; begun.size() <= static_cast<size_t>(deadly) && starts < 20; ++starts) {
      Session session(*this, starts + 1);
      for (int32 day = static_cast<int32>(begun.size()); day <= deadly; ++day) {
        const std::string id = session.It.BeginInHeap(Of(At(day), At(day + 1)));
        if (day < deadly) session.It.Stage(id, ActStage::Acted);
      }
      begun = Session(*this, 100).It.All();
    }
    EXPECT_LE(starts, 7) << deadly;
    EXPECT_EQ(begun.back().Act, ActStage::Acting) << "is told";
  }
}

TEST_F(JournalTest, SetsADamagedFileAsideAndGoesOnWithTheRest) {
  {
    Session session(*this, 1);
    Deliver(session, 1);
    Deliver(session, 2);
  }
  std::string bytes = *Disk.Bytes(JournalFile);
  bytes[bytes.find("from=200") + 5] = '9';
  Disk.Put(JournalFile, bytes);
  EXPECT_THAT(Session(*this, 2).It.All(), SizeIs(2)) << "the record's last line is whole";
  EXPECT_THAT(Told, SizeIs(1));
  EXPECT_EQ(Disk.Bytes("/state/journal (damaged)"), bytes);
  Session(*this, 3);
  EXPECT_THAT(Told, SizeIs(1));
}

TEST_F(JournalTest, IsReplacedUnderOthersWithoutLosingALine) {
  RecordLog mine(Door, JournalFile, "a", {}), theirs(Disk, JournalFile, "b", {});
  mine.Read(), theirs.Read();
  RecordFields fields;
  for (int i = 0; i < 5; ++i) fields.Set("n", int64{i}), mine.Append("a.1", fields);
  Door.OnRename = [&](const std::string& when) { theirs.Append("b." + when, fields); };
  const auto compaction = mine.Compaction();
  mine.Append("a.2", fields);
  compaction();
  theirs.Append("b.3", fields);
  mine.CatchUp();
  RecordLog fresh(Disk, JournalFile, "c", {});
  fresh.Read(), theirs.CatchUp();
  for (const RecordLog* log : {&mine, &theirs, &fresh}) {
    EXPECT_THAT(log->All(), SizeIs(5));
    EXPECT_EQ(log->Find("a.1")->Fields.Number("n"), 4);
  }
  EXPECT_EQ(DecodeLines(*Disk.Bytes(JournalFile)).Damaged, 0);
  Door.OnRename = nullptr;
  Door.FailAgain(1);
  EXPECT_NE(mine.Append("a.9", fields), StatusOk);
  theirs.Compaction()();
  mine.CatchUp();
  EXPECT_TRUE(mine.Find("a.9")) << "what could not be written yet";
}

TEST_F(JournalTest, FollowsWhatTheFileDoesNotKnow) {
  Session session(*this, 1);
  Deliver(session, 3), Deliver(session, 4), Deliver(session, 3, 1);
  Deliver(session, 4, 3), Deliver(session, 3, 3);
  session.It.Begin(Of(At(5), {0, 0, 0, true}, 2));
  session.It.Begin(Of(At(20), At(17), 4)), session.It.Begin(Of(At(17), At(20), 4));
  struct Case {
    const char* name;
    EventState state;
    int32 place;
    uint32 rule;
    std::optional<EventState> expected;
  };
  const std::vector<Case> table = {
      {"two deliveries", At(3), 0, 5, At(5)},
      {"one of them was saved", At(4), 0, 5, At(5)},
      {"both were saved", At(5), 0, 5, std::nullopt},
      {"a file of last week was put back", At(1), 0, 5, At(5)},
      {"its prewarning was still ahead", {400, 350, 1, false}, 0, 5, At(5)},
      {"the later one was written first", At(3), 3, 5, At(5)},
      {"a wrong clock led back, and on once more", At(17), 4, 5, At(20)},
      {"somebody chose another time", At(3), 0, 6, std::nullopt},
      {"an edit that leads past it", At(9), 0, 5, std::nullopt},
      {"its equal was delivered once", At(3), 1, 5, At(4)},
      {"it deleted itself", At(5), 2, 5, EventState{0, 0, 0, true}},
      {"it stands at another place now", At(5), 7, 5, EventState{0, 0, 0, true}},
      {"an equal that was never delivered", At(3), 8, 6, std::nullopt}};
  for (const Case& each : table)
    EXPECT_EQ(session.It.Follow(WorkSet, {{{"Tea", "Command", each.place}, each.rule, each.state}}),
              std::vector{each.expected})
        << each.name;
  const StoredEvent twin = {{"Tea", "Command", 7}, 5, At(5)},
                    other = {{"Tea", "Command", 8}, 5, At(5)};
  EXPECT_EQ(session.It.Follow(WorkSet, {twin, other})[1], std::nullopt)
      << "a record moves one event";
}

TEST_F(JournalTest, LetsOneSessionActWithAndWithoutTheLock) {
  for (const bool locked : {false, true}) {
    Disk = MemoryFileDoor();
    if (locked) Disk.Locked = {"/state/journal.lock"};
    Session a(*this, 1), b(*this, 2);
    const auto first = a.It.Claim(Of(At(1), At(2)));
    EXPECT_TRUE(first);
    EXPECT_FALSE(b.It.Claim(Of(At(1), At(2))));
    EXPECT_TRUE(b.It.Claim(Of(At(2), At(3))));
    EXPECT_TRUE(b.It.Claim(Of(At(1), At(2), 1))) << "its namesake";
    const std::string asked = b.It.Begin(Of(At(1), At(2)));
    EXPECT_FALSE(b.It.ClaimAgain(asked)) << "a question that another session has answered";
    if (locked) {
      Door.BeforeWrite = [&b] { EXPECT_TRUE(b.It.Claim(Of(At(5), At(6)))); };
      EXPECT_FALSE(a.It.Claim(Of(At(5), At(6)))) << "the one that stands first in the file counts";
    }
    Dead = {1, 2};
    Session c(*this, 3), d(*this, 4);
    EXPECT_EQ(c.It.Adopt(*first), !locked);
    EXPECT_FALSE(d.It.Adopt(*first)) << "its new owner lives";
    EXPECT_TRUE(d.It.Claim(Of(At(1), At(2)))) << "what was there at the start has been followed";
    Dead.clear();
  }
}

TEST_F(JournalTest, KeepsTheLastOfEachEventAndGivesTheRestToTheHistory) {
  Session session(*this, 1), other(*this, 2);
  const std::string first = Deliver(session, 1), second = Deliver(session, 2);
  const std::string gone = Deliver(session, 1, 1), theirs = Deliver(other, 2, 1);
  const std::string open = session.It.Begin(Of(At(3), At(4)));
  session.It.Stage(open, ActStage::Acted);
  session.It.Shown(open, {});
  session.It.Ended(second, 3);
  session.It.Settle(WorkSet, {{"Tea", "Command", 0}});
  EXPECT_THAT(Ids(session.It.All()), ElementsAre(second, theirs, open));
  session.It.Answered(open, 0, "OK");
  session.It.Settle(WorkSet, {{"Tea", "Command", 0}});
  session.It.Compaction()();
  EXPECT_THAT(Ids(Session(*this, 3).It.All()), ElementsAre(theirs, open));
  status_t status = 1;
  const std::vector<JournalRecord> past = session.It.Past().Read(status);
  EXPECT_THAT(Ids(past), ElementsAre(first, gone, second));
  EXPECT_EQ(past.back().Exit, 3) << "as another thread has written";
  EXPECT_EQ(status, StatusOk);
  for (const int64 upTo : {300, 299})
    EXPECT_EQ(session.It.LastOccurrence(WorkSet, {"Tea", "Command", 0}, upTo),
              upTo == 300 ? std::optional(300) : std::nullopt);
}

TEST_F(JournalTest, HasDataKeptUnreadFromADeathUntilSomebodyTriesAgain) {
  JournalRecord reading = Of(At(1), At(2));
  reading.Act = ActStage::Reading;
  const std::string id = Session(*this, 1).It.Begin(reading);
  Session session(*this, 2);
  const auto isKept = [&] { return session.It.IsKeptUnread(WorkSet, reading.Event); };
  EXPECT_FALSE(isKept()) << "it may come to its end yet";
  Dead = {1};
  EXPECT_TRUE(isKept());
  ASSERT_TRUE(session.It.Adopt(id));
  session.It.Stage(id, ActStage::Reading, "told");
  EXPECT_TRUE(isKept()) << "while the one that told lives, too";
  session.It.Forget(id);
  EXPECT_FALSE(isKept());
}

TEST_F(JournalTest, KeepsNinetyDaysOfHistory) {
  History history(Disk, "/state");
  const auto append = [&](int64 day, size_t size) {
    JournalRecord record;
    record.Id = "x." + std::to_string(day);
    record.At = day * SecondsPerDay;
    record.Why = std::string(size, 'x');
    EXPECT_EQ(history.Append({record}), StatusOk);
  };
  for (const int64 day : {1, 50, 100}) append(day, 10);
  EXPECT_FALSE(history.WantsPruning(91 * SecondsPerDay));
  EXPECT_TRUE(history.WantsPruning(100 * SecondsPerDay));
  history.Prune(100 * SecondsPerDay);
  status_t status = 1;
  EXPECT_THAT(Ids(history.Read(status)), ElementsAre("x.50", "x.100"));
  append(101, History::KeptBytes);
  Disk.Put("/state/history", *Disk.Bytes("/state/history") + "cut in the midd");
  append(102, 10);
  EXPECT_TRUE(history.WantsPruning(102 * SecondsPerDay));
  history.Prune(102 * SecondsPerDay);
  EXPECT_THAT(Ids(history.Read(status)), ElementsAre("x.102"));
}

TEST_F(JournalTest, HasWhatWasPutOffOnDiskOrSaysWhyNot) {
  for (int call = 1;; ++call) {
    Disk = MemoryFileDoor();
    Door.FailAgain(call);
    Later later(Door, "/state", "a", {});
    later.Read();
    PutOffAlert alert;
    alert.Set = WorkSet;
    alert.Event = {"Tea", "Message", 1};
    alert.Occurrence = 77;
    alert.IsBack = true;
    alert.Alert.Text = Everything();
    alert.When.Moment = 500;
    const status_t status = later.PutOff(alert);
    EXPECT_EQ(later.All().size(), status == StatusOk ? 1u : 0u);
    if (status == StatusOk) Disk.CutPower(false);
    const bool failed = Door.HasFailed();
    alert.When.Moment = 600;
    Door.FailAgain(failed ? 0 : 1);
    EXPECT_TRUE(failed || later.PutOff(alert) != StatusOk);
    Later again(Disk, "/state", "b", {});
    again.Read();
    const std::vector<PutOffAlert> found = again.Of(WorkSet, alert.Event);
    ASSERT_EQ(found.size(), status == StatusOk ? 1u : 0u) << "call " << call << Door.Failed;
    if (failed) continue;
    EXPECT_EQ(later.Find(alert.Id)->When.Moment, 500) << "as it was, if it cannot be put off again";
    EXPECT_EQ(found[0].Alert.Text, Everything());
    EXPECT_TRUE(found[0].IsBack);
    EXPECT_EQ(found[0].Occurrence, 77);
    break;
  }
}

TEST_F(JournalTest, BringsPutOffAlertsBackInTheirOrderOnTheWallClockOfTheDay) {
  Later later(Disk, "/state", "a", {}), other(Disk, "/state", "b", {});
  const Zone berlin = *Zone::Load("Europe/Berlin"), utc;
  PutOffAlert morning, soon;
  morning.When.Wall = ToCivil({2026, 10, 23, 8, 0, 0, 0});
  const int64 eight = utc.ToMoment(*morning.When.Wall);
  soon.When.Wall = morning.When.Wall;
  later.Read(), other.Read();
  ASSERT_EQ(later.PutOff(morning), StatusOk);
  ASSERT_EQ(later.PutOff(soon), StatusOk);
  soon.When = {eight - 1800, std::nullopt};
  ASSERT_EQ(later.PutOff(soon), StatusOk);
  EXPECT_EQ(later.NextReturn(utc), eight - 1800);
  EXPECT_EQ(later.NextReturn(utc, {soon.Id}), eight);
  later.IsBack(morning.Id);
  EXPECT_TRUE(later.Find(morning.Id)->IsBack);
  EXPECT_EQ(later.NextReturn(berlin), eight - 3600);
  EXPECT_THAT(later.Due(eight - 3601, berlin), IsEmpty());
  const std::vector<PutOffAlert> due = later.Due(eight, berlin);
  ASSERT_THAT(due, SizeIs(2));
  EXPECT_EQ(due[0].Id, morning.Id);
  other.CatchUp();
  other.End(morning.Id);
  soon.When.Moment = eight + 60;
  later.CatchUp();
  ASSERT_EQ(later.PutOff(soon), StatusOk);
  EXPECT_EQ(later.NextReturn(berlin), eight + 60);
  later.End(soon.Id);
  EXPECT_EQ(later.NextReturn(berlin), 0);
}

}  // namespace
}  // namespace kestrin
