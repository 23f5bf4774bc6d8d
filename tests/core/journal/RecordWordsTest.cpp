// What people read of a delivery, and in which order: the table of docs/journal.md, and files as a
// crash may leave them.
#include "core/journal/RecordWords.h"

#include <gmock/gmock.h>

#include <sstream>

#include "core/journal/EventStateText.h"
#include "harness/MemoryFileDoor.h"
#include "harness/PageTable.h"

namespace kestrin {
namespace {

using testing::ElementsAre, testing::HasSubstr;

constexpr int64 Nine = 1794733200;  // Sunday, 15 November 2026, UTC

/// "act=acted run=x", as the page writes a record.
RecordFields FieldsOfText(const std::string& text) {
  RecordFields fields;
  std::istringstream words(text);
  for (std::string word; words >> word;)
    fields.Set(word.substr(0, word.find('=')), word.substr(word.find('=') + 1));
  return fields;
}

std::string Line(const std::string& id, const std::string& fields) {
  return EncodeLine(id, FieldsOfText(fields));
}

TEST(RecordWordsTest, ARecordIsTheSameAfterItsLine) {
  RecordFields fields = FieldsOfText(
      "by=boot/7/9 set=/s name=Tea handler=Command place=2 rule=5 kind=nag from=1,-2,3 to=gone "
      "at=4 missed=1 trial=1 act=failed why=late run=brew open=/pot exit=6 alert=putoff role=3 "
      "warning=1 title=T text=x buttons=x harmless=1 default=1 icon=8 putoffs=2 button=1 "
      "answer=y answered=11 of=a.1");
  fields.Set("buttons", "x\x1fy");
  EXPECT_EQ(FieldsOf(RecordOf("a.2", fields)), fields);
  for (const char* state : {"1,2", "1,2,3,4", "1;2,3", "1,2,x", ""})
    EXPECT_FALSE(EventStateOf(state)) << state;
}

TEST(RecordWordsTest, TheTableOnThePageIsWhatIsSaid) {
  int rows = 0;
  for (const auto& row : TableOfPage("journal.md", "| fields | said |")) {
    SCOPED_TRACE(row[0]);
    RecordFields fields = FieldsOfText(row[0].substr(1, row[0].size() - 2));
    fields.Set("at", Nine);
    fields.Set("set", "/sets/Work");
    const bool isNag = !fields.Has("kind");
    if (isNag) fields.Set("kind", "nag");
    PastDelivery past{RecordOf("a.1", fields), std::nullopt};
    if (fields.Has("moment")) past.Returns = ReturnTime{*fields.Number("moment"), std::nullopt};
    const RecordWords words = WordsOf(past, Zone(), false);
    EXPECT_EQ(words.Outcome, row[1]);
    EXPECT_EQ(words.Set, "Work");
    EXPECT_TRUE(!isNag || words.Kind == "Nag") << words.Kind;
    const bool delivered = row[1].find("Missed") != 0 && row[1].find("Passed") != 0;
    EXPECT_EQ(words.Delivered, delivered ? "Sun, Nov 15 2026, 09:00 AM" : "");
    ++rows;
  }
  EXPECT_EQ(rows, 26);
}

TEST(RecordWordsTest, OneSentenceSaysWhyAndWhatComesNext) {
  const auto why = [](const char* fields, const ComesNext& next) {
    PastDelivery last;
    if (fields) last.Record = RecordOf("a.1", FieldsOfText(fields));
    return WhySentence("Tea", fields ? &last : nullptr, next, Zone(), true);
  };
  const std::string due = "from=1794733200,1794733200,1 at=1794733201 ";
  EXPECT_EQ(why((due + "act=acted alert=answered answer=Ok missed=1").c_str(), {1794819600}),
            "\"Tea\" rang on Sun, Nov 15 2026, 09:00:01 (late, answered “Ok”), and rings next on "
            "Mon, Nov 16 2026, 09:00.");
  EXPECT_EQ(why((due + "act=missed why=asleep").c_str(), {0, true, "is inactive"}),
            "\"Tea\" did not ring on Sun, Nov 15 2026, 09:00 (missed: asleep), and does not ring "
            "again, since it is inactive.");
  EXPECT_EQ(why(nullptr, {1794787200, false, "", "its set is silent"}),
            "\"Tea\" has not rung as far as is known, and rings next on Mon, Nov 16 2026, but its "
            "set is silent.");
}

TEST(RecordWordsTest, LookingBackFindsEachDeliveryOnceAndLeavesTheFilesAsTheyStand) {
  MemoryFileDoor disk;
  const std::string settled = "name=Tea act=acted at=100 alert=answered answer=Ok";
  disk.Put("/s/history", Line("a.1", settled) + Line("a.2", "name=Milk at=50 act=missed"));
  // a.1 went to the history just before a crash; a.3 is put off; b.1 has ended.
  const std::string journal = Line("a.1", settled) + Line("a.3", "name=Bins at=300 act=acting") +
                              Line("b.1", "name=Gone at=400") + Line("a.3", "alert=putoff") +
                              Line("b.1", "ended=1") + "no line\n" +
                              Line("a.4", "name=Rent at=100");
  disk.Put("/s/journal", journal);
  disk.Put("/s/later", Line("l.1", "of=a.3 alert=putoff moment=900") +
                           Line("l.2", "name=Old alert=putoff moment=800 from=200,200,1"));
  status_t status = StatusOk;
  std::vector<std::string> found;
  for (const PastDelivery& past : LookBack(disk, "/s", status))
    found.push_back(past.Record.Event.Name +
                    (past.Returns ? std::to_string(past.Returns->Moment) : ""));
  EXPECT_THAT(found, ElementsAre("Bins900", "Old800", "Rent", "Tea", "Milk"));
  EXPECT_EQ(status, -EBADMSG);
  EXPECT_EQ(disk.Bytes("/s/journal"), journal);
  EXPECT_THAT(LookBack(disk, "/nowhere", status), testing::IsEmpty());
  EXPECT_EQ(status, StatusOk);
}

}  // namespace
}  // namespace kestrin
