#include "programs/ctl/Commands.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include "core/delivery/Agenda.h"
#include "core/events/OpenSets.h"
#include "core/journal/LookBack.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/DateTimeText.h"
#include "core/timing/EventRecord.h"
#include "core/timing/EventRuleCheck.h"
#include "core/timing/RuleSentence.h"
#include "programs/ctl/JsonWriter.h"
#include "programs/ctl/NextTable.h"
#include "programs/ctl/Personal.h"
#include "programs/ctl/TextTable.h"

namespace kestrin {

namespace {

constexpr size_t PathWidth = 4096, NameWidth = 4096;
/// An agenda in which the sets' paths take more bytes than this is not printed.
constexpr size_t MaxPathText = size_t{256} << 20;

const char* NameOf(DeliveryKind kind) {
  switch (kind) {
    case DeliveryKind::Prewarning:
      return "prewarning";
    case DeliveryKind::Nag:
      return "nag";
    default:
      return "event";
  }
}

/// Set files rarely hold one: the time of day belongs to an occurrence.
std::string TimeText(int64 time, bool withTime, const Context& context) {
  return GetDateTimeString(static_cast<int32>(time), withTime, context.zone,
                           context.settings.Time24Hour);
}

bool PrintNextJson(const EventSet& set) {
  JsonWriter json(stdout);
  json.BeginArray();
  for (const auto& event : set.Events()) {
    json.BeginObject();
    json.Key("Name");
    json.Text(event->GetName());
    json.Key("ActualEventTime");
    json.Number(event->GetActualEventTime());
    json.Key("NextEventTime");
    json.Number(event->GetNextEventTime());
    json.Key("Status");
    json.Number(event->GetStatus());
    json.EndObject();
  }
  json.EndArray();
  return json.Finish();
}

std::string EventForPeople(const EventRecord& record, int64 now, const Context& context) {
  constexpr size_t DatesShown = 5;
  const Zone& zone = context.zone;
  const bool use24Hours = context.settings.Time24Hour;
  std::string text = TextTable::Cell(record.Name, NameWidth) + "\n";
  if (!record.Active) text += "  Inactive: it is not delivered.\n";
  text += "  " + RuleSentence(record, zone, use24Hours) + "\n";
  for (const std::string& date : NextDateTexts(record, now, zone, DatesShown, use24Hours))
    text += "    " + date + "\n";
  return text;
}

/// By the set's handle, the path as given. What is put off has handles of its own, from here on.
using SetPaths = std::unordered_map<uint64, std::string>;
constexpr uint64 FirstLater = uint64{1} << 32;

const char* NameOf(const AgendaEntry& entry) {
  return entry.Set >= FirstLater ? "later" : NameOf(entry.Kind);
}

bool PrintAgendaJson(const std::vector<AgendaEntry>& entries, const SetPaths& sets) {
  JsonWriter json(stdout);
  json.BeginArray();
  for (const AgendaEntry& entry : entries) {
    json.BeginObject();
    json.Key("time");
    json.Number(entry.Time);
    json.Key("kind");
    json.String(NameOf(entry));
    json.Key("event");
    json.Text(entry.Event);
    json.Key("set");
    json.Text(sets.at(entry.Set));
    json.Key("missed");
    json.Boolean(entry.Missed);
    json.EndObject();
  }
  json.EndArray();
  return json.Finish();
}

bool PrintAgendaTable(const std::vector<AgendaEntry>& entries, const SetPaths& sets,
                      const Context& context) {
  if (entries.empty()) return std::puts("Nothing comes due in that time.") >= 0;
  TextTable::Row header = {"Time", "Delivery", "Event"};
  if (sets.size() > 1) header.emplace_back("Set");
  TextTable table(header);
  return table.Print(stdout, entries.size(), [&](size_t row, TextTable::Row& cells) {
    const AgendaEntry& entry = entries[row];
    std::string kind = NameOf(entry);
    if (entry.Missed) kind += " (missed)";
    cells[0] = TimeText(entry.Time, true, context);
    cells[1] = kind;
    cells[2] = TextTable::Cell(entry.Event);
    if (sets.size() > 1) cells[3] = TextTable::Cell(sets.at(entry.Set), PathWidth);
  });
}

/// What was put off, whatever its set; what should have returned already returns at once. False
/// after complaining.
bool AddLater(VirtualEngine& engine, const CtlArguments& arguments,
              std::vector<AgendaEntry>& entries, SetPaths& sets) {
  status_t status = StatusOk;
  uint64 handle = FirstLater;
  for (const PutOffAlert& alert : ReadPutOff(engine.files, JournalFolder(), status)) {
    const int64 due = alert.When.In(engine.context.zone), time = std::max(due, arguments.from);
    if (time >= arguments.to) continue;
    sets[++handle] = alert.Set;
    entries.push_back({time, DeliveryKind::Event, alert.Event.Name, handle, false, due});
  }
  if (status == StatusOk || status == -EBADMSG) return true;
  Complain(JournalFolder(), std::strerror(-status));
  return false;
}

/// The deliveries of every file, in order. One set at a time is in memory. False after complaining.
bool GatherAgenda(VirtualEngine& engine, const CtlArguments& arguments,
                  std::vector<AgendaEntry>& entries, SetPaths& sets) {
  const AgendaRequest request{arguments.from, arguments.to, arguments.startup};
  std::unordered_set<std::string> seen;
  size_t pathText = 0;
  engine.settings.WhichEventsToDeliver = DeliverRemembered;
  for (const std::string& file : arguments.files) {
    if (!seen.insert(engine.files.Canonical(file)).second) continue;
    engine.clock.Time = arguments.from;
    SetFileReport report;
    const EventSet* const set = ReadSet(engine, file, &report);
    if (!set) return false;
    sets[set->GetHandle()] = file;
    engine.settings.SetFileNames = {set->GetFileName()};
    const size_t before = entries.size();
    const bool whole = ComputeAgenda(engine, request, entries);
    pathText += (entries.size() - before) * file.size();
    if (!whole || pathText > MaxPathText) {
      Complain(file, "there would be too many deliveries in that time; ask for a shorter one");
      return false;
    }
    engine.openSets.Sets.clear();
  }
  if (arguments.later && !AddLater(engine, arguments, entries, sets)) return false;
  if (sets.size() > 1)
    std::stable_sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) {
      return std::tie(a.Time, a.Due) < std::tie(b.Time, b.Due);
    });
  return true;
}

/// `reason`: what the attempt gave, a sentence.
std::string WhyNotWritten(VirtualEngine& engine, const std::string& path, std::string reason) {
  switch (engine.files.Kind(path)) {
    case FileKind::Folder:
      return "it is a folder";
    case FileKind::Other:
      return "it is not a regular file";
    default:
      if (reason.ends_with('.')) reason.pop_back();
      return reason;
  }
}

}  // namespace

void Complain(const std::string& file, const std::string& fault) {
  std::string line = "kestrinctl: " + file + ": " + fault;
  for (char& c : line)
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = '?';
  std::fprintf(stderr, "%s\n", line.c_str());
}

EventSet* ReadSet(VirtualEngine& engine, const std::string& path, SetFileReport* report) {
  SetReading reading = ReadSet(engine.context, engine.files.Canonical(path), std::move(*report));
  *report = std::move(reading.Report);
  if (!reading.Set) {
    Complain(path, report->Fault);
    return nullptr;
  }
  engine.openSets.Sets.push_back(std::move(reading.Set));
  return engine.openSets.Sets.back().get();
}

int WrittenOut(bool written) {
  if (written) return ExitSuccess;
  Complain("standard output", std::strerror(errno));
  return ExitFailure;
}

int Next(VirtualEngine& engine, const CtlArguments& arguments) {
  engine.clock.Time = arguments.at;
  NextTable table(engine.context);
  SetFileReport report;
  if (!arguments.json)
    report.OnEvent = [&table](Event& event) {
      event.UpdateEventTime();
      table.Add(event.Record());
    };
  EventSet* const set = ReadSet(engine, arguments.files[0], &report);
  if (!set) return ExitFailure;
  for (const auto& event : set->Events()) event->UpdateEventTime();
  return WrittenOut(arguments.json ? PrintNextJson(*set) : table.Print());
}

int Show(VirtualEngine& engine, const CtlArguments& arguments) {
  SetFileReport report;
  const EventSet* const set = ReadSet(engine, arguments.files[0], &report);
  if (!set) return ExitFailure;
  if (set->Events().empty()) return WrittenOut(std::puts("No events.") >= 0);
  bool written = true;
  for (const auto& event : set->Events()) {
    const std::string text = EventForPeople(event->Record(), arguments.at, engine.context);
    written = written && std::fputs(text.c_str(), stdout) >= 0;
  }
  return WrittenOut(std::fflush(stdout) == 0 && written);
}

int AgendaCommand(VirtualEngine& engine, const CtlArguments& arguments) {
  SetPaths sets;
  std::vector<AgendaEntry> entries;
  if (!GatherAgenda(engine, arguments, entries, sets)) return ExitFailure;
  return WrittenOut(arguments.json ? PrintAgendaJson(entries, sets)
                                   : PrintAgendaTable(entries, sets, engine.context));
}

int Check(VirtualEngine& engine, const CtlArguments& arguments) {
  std::string lines;
  bool failed = false;
  for (const std::string& file : arguments.files) {
    SetFileReport report;
    EventSet* const set = ReadSet(engine, file, &report);
    failed |= !set;
    if (!set) continue;
    lines += TextTable::Cell(file, PathWidth) + ": " + std::to_string(set->CountEvents()) +
             " events, version " + report.Version + ", " +
             (report.BigEndian ? "big-endian" : "little-endian") + "\n";
    for (const auto& event : set->Events())
      if (const WhyNot why = WhyRuleNeverYields(event->Record()))
        lines += "  \"" + TextTable::Cell(event->GetName()) + "\": " + std::string(*why) + "\n";
    engine.openSets.Sets.clear();
  }
  if (failed) return ExitFailure;
  return WrittenOut(std::fputs(lines.c_str(), stdout) >= 0 && std::fflush(stdout) == 0);
}

int Rewrite(VirtualEngine& engine, const CtlArguments& arguments) {
  SetFileReport report;
  EventSet* const set = ReadSet(engine, arguments.files[0], &report);
  if (!set) return ExitFailure;
  if (set->SaveCopy(arguments.files[1])) {
    engine.files.SetAttribute(arguments.files[1], "user.mime_type", SetFileType);
    return ExitSuccess;
  }
  Complain(arguments.files[1],
           "cannot be written: " + WhyNotWritten(engine, arguments.files[1], set->WhyNotSaved()));
  return ExitFailure;
}

}  // namespace kestrin
