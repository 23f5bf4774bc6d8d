// `kestrinctl history` and `why`: what was delivered, and what was not.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>

#include "core/events/Event.h"
#include "core/events/EventSet.h"
#include "core/files/EventSetFile.h"
#include "core/journal/JournalRecord.h"
#include "core/journal/RecordWords.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/EventRecord.h"
#include "core/timing/EventRuleCheck.h"
#include "core/timing/EventTiming.h"
#include "programs/ctl/Commands.h"
#include "programs/ctl/JsonWriter.h"
#include "programs/ctl/Personal.h"
#include "programs/ctl/TextTable.h"

namespace kestrin {

namespace {

constexpr size_t OutcomeWidth = 4096;

/// False after complaining. Damaged lines are only told.
bool Recall(VirtualEngine& engine, std::vector<PastDelivery>& past) {
  status_t status = StatusOk;
  past = LookBack(engine.files, JournalFolder(), status);
  if (status == -EBADMSG)
    Complain(JournalFolder(), "some lines are damaged and were left out");
  else if (status != StatusOk)
    Complain(JournalFolder(), std::strerror(-status));
  return status == StatusOk || status == -EBADMSG;
}

void Field(JsonWriter& json, const char* key, const std::string& text) {
  json.Key(key);
  json.Text(text);
}

void Field(JsonWriter& json, const char* key, int64 number, bool known = true) {
  json.Key(key);
  if (known)
    json.Number(number);
  else
    json.Null();
}

void WriteDelivery(JsonWriter& json, const PastDelivery& past, const Context& context) {
  const JournalRecord& record = past.Record;
  const RecordWords words = WordsOf(past, context.zone, context.settings.Time24Hour);
  json.BeginObject();
  Field(json, "event", record.Event.Name);
  Field(json, "set", record.Set);
  Field(json, "handler", record.Event.Handler);
  Field(json, "kind", NameOf(record.Kind));
  Field(json, "occurrence", record.Occurrence(), record.From.has_value());
  Field(json, "due", record.From ? record.From->Next : 0, record.From.has_value());
  Field(json, "delivered", record.At, !words.Delivered.empty());
  Field(json, "act", NameOf(record.Act));
  Field(json, "why", record.Why);
  json.Key("late");
  json.Boolean(record.Missed);
  json.Key("trial");
  json.Boolean(record.Trial);
  Field(json, "command", record.Run);
  Field(json, "file", record.Open);
  Field(json, "exit", record.Exit.value_or(0), record.Exit.has_value());
  Field(json, "alert", NameOf(record.AlertIs));
  Field(json, "answer", record.Answer);
  Field(json, "answered", record.Answered, record.Answered != 0);
  Field(json, "returns", past.Returns ? past.Returns->In(context.zone) : 0,
        past.Returns.has_value());
  Field(json, "outcome", words.Outcome);
  json.EndObject();
}

bool PrintTable(const std::vector<PastDelivery>& past, const Context& context) {
  if (past.empty()) return std::puts("Nothing was delivered yet.") >= 0;
  TextTable table({"Due", "Delivered", "Delivery", "Event", "Set", "Outcome"});
  return table.Print(stdout, past.size(), [&](size_t row, TextTable::Row& cells) {
    const RecordWords words = WordsOf(past[row], context.zone, context.settings.Time24Hour);
    cells[0] = words.Due;
    cells[1] = words.Delivered;
    cells[2] = words.Kind;
    cells[3] = TextTable::Cell(past[row].Record.Event.Name);
    cells[4] = TextTable::Cell(words.Set);
    cells[5] = TextTable::Cell(words.Outcome, OutcomeWidth);
  });
}

/// Its last delivery that was none for trial; null when none is known.
const PastDelivery* LastOf(const std::vector<PastDelivery>& past, const std::string& set,
                           const EventName& event) {
  const auto found = std::find_if(past.begin(), past.end(), [&](const PastDelivery& each) {
    return each.Record.Set == set && each.Record.Event == event && !each.Record.Trial;
  });
  return found == past.end() ? nullptr : &*found;
}

ComesNext NextOf(const Event& event, const KestrinSettings& settings) {
  const EventRecord& record = event.Record();
  ComesNext next;
  if (!record.Active)
    next.WhyNever = "is inactive";
  else if (WhyRuleNeverYields(record))
    next.WhyNever = "has a rule that never comes round";
  else if (record.NextEventTime == 0)
    next.WhyNever = "is over";
  else
    next.Time = record.NextEventTime;
  next.WithTime = MessageHasTimeOfDay(record);
  const std::string& file = event.GetOwner()->GetFileName();
  if (settings.WhichEventsToDeliver == DeliverNothing)
    next.Unless = "delivery is switched off in the settings";
  else if (!settings.IsFileRemembered(file))
    next.Unless = "only while its set is open, which is not remembered for delivery";
  return next;
}

}  // namespace

int HistoryCommand(VirtualEngine& engine, const CtlArguments& arguments) {
  ReadPersonalSettings(engine);
  std::vector<PastDelivery> past;
  if (!Recall(engine, past)) return ExitFailure;
  if (!arguments.json) return WrittenOut(PrintTable(past, engine.context));
  JsonWriter json(stdout);
  json.BeginArray();
  for (const PastDelivery& each : past) WriteDelivery(json, each, engine.context);
  json.EndArray();
  return WrittenOut(json.Finish());
}

int Why(VirtualEngine& engine, const CtlArguments& arguments) {
  ReadPersonalSettings(engine);
  const std::string& name = arguments.files[1];
  SetFileReport report;
  EventSet* const set = ReadSet(engine, arguments.files[0], &report);
  std::vector<PastDelivery> past;
  if (!set || !Recall(engine, past)) return ExitFailure;
  engine.clock.Time = arguments.at;
  std::map<EventName, int32> places;
  std::string lines;
  for (const auto& event : set->Events()) {
    if (event->GetName() != name) continue;
    EventName known{name, event->GetHandlerName(), 0};
    known.Place = places[known]++;
    event->UpdateEventTime();
    lines += TextTable::Cell(WhySentence(name, LastOf(past, set->GetFileName(), known),
                                         NextOf(*event, engine.settings), engine.context.zone,
                                         engine.settings.Time24Hour),
                             OutcomeWidth) +
             "\n";
  }
  if (lines.empty()) {
    Complain(arguments.files[0], "it has no event called \"" + name + "\"");
    return ExitFailure;
  }
  return WrittenOut(std::fputs(lines.c_str(), stdout) >= 0 && std::fflush(stdout) == 0);
}

}  // namespace kestrin
