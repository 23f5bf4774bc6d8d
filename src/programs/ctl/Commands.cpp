#include "programs/ctl/Commands.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "core/Agenda.h"
#include "core/DateTimeText.h"
#include "core/KestrinSettings.h"
#include "core/OpenSets.h"
#include "programs/ctl/JsonWriter.h"
#include "programs/ctl/TextTable.h"
#include "support/OwnedText.h"
#include "support/WholeFile.h"

namespace kestrin {

namespace {

constexpr size_t PathWidth = 4096;

std::string StatusText(const EventRecord& record) {
  if (!record.Active) return std::string(InactiveMessage);
  if (record.Status < 0 || record.Status >= static_cast<int32>(StatusMessages.size()))
    return "Status " + std::to_string(record.Status);
  return std::string(StatusMessages[static_cast<size_t>(record.Status)]);
}

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
std::string TimeText(int64 time, bool withTime, const Zone& zone) {
  return GetDateTimeString(static_cast<int32>(time), withTime, zone, KestrinSettings::Time24Hour);
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

bool PrintNextTable(const EventSet& set, const Zone& zone) {
  TextTable table({"Name", "Event time", "Next message time", "Status"});
  for (const auto& event : set.Events()) {
    const EventRecord& record = event->Record();
    table.AddRow({TextTable::Cell(record.Name),
                  TimeText(record.ActualEventTime, record.ApplyTime, zone),
                  TimeText(record.NextEventTime, record.ApplyTime, zone), StatusText(record)});
  }
  return table.Empty() ? std::puts("No events.") >= 0 : table.Print(stdout);
}

struct NamedSet {
  uint64 handle;
  std::string path;  ///< as given
};

const std::string& PathOf(const std::vector<NamedSet>& sets, uint64 handle) {
  static const std::string none;
  for (const NamedSet& set : sets)
    if (set.handle == handle) return set.path;
  return none;
}

bool PrintAgendaJson(const std::vector<AgendaEntry>& entries, const std::vector<NamedSet>& sets) {
  JsonWriter json(stdout);
  json.BeginArray();
  for (const AgendaEntry& entry : entries) {
    json.BeginObject();
    json.Key("time");
    json.Number(entry.Time);
    json.Key("kind");
    json.String(NameOf(entry.Kind));
    json.Key("event");
    json.Text(entry.Event);
    json.Key("set");
    json.Text(PathOf(sets, entry.Set));
    json.Key("missed");
    json.Boolean(entry.Missed);
    json.EndObject();
  }
  json.EndArray();
  return json.Finish();
}

bool PrintAgendaTable(const std::vector<AgendaEntry>& entries, const std::vector<NamedSet>& sets,
                      const Zone& zone) {
  if (entries.empty()) return std::puts("Nothing comes due in that time.") >= 0;
  std::vector<std::string> header = {"Time", "Delivery", "Event"};
  if (sets.size() > 1) header.emplace_back("Set");
  TextTable table(header);
  for (const AgendaEntry& entry : entries) {
    std::string kind = NameOf(entry.Kind);
    if (entry.Missed) kind += " (missed)";
    std::vector<std::string> row = {TimeText(entry.Time, true, zone), kind,
                                    TextTable::Cell(entry.Event)};
    if (sets.size() > 1) row.push_back(TextTable::Cell(PathOf(sets, entry.Set), PathWidth));
    table.AddRow(std::move(row));
  }
  return table.Print(stdout);
}

/// Opens every file as a remembered set. False after complaining about the first that cannot be
/// read.
bool OpenAll(VirtualEngine& engine, const std::vector<std::string>& files,
             std::vector<NamedSet>& sets) {
  KestrinSettings::WhichEventsToDeliver = DeliverRemembered;
  for (const std::string& file : files) {
    if (OpenSets::FindFile(engine.files.Canonical(file))) continue;
    SetFileReport report;
    const EventSet* const set = ReadSet(engine, file, &report);
    if (!set) return false;
    sets.push_back({set->GetHandle(), file});
    KestrinSettings::SetFileNames.push_back(set->GetFileName());
  }
  return true;
}

}  // namespace

void Complain(const std::string& file, const std::string& fault) {
  std::string line = "kestrinctl: " + file + ": " + fault;
  for (char& c : line)
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = '?';
  std::fprintf(stderr, "%s\n", line.c_str());
}

EventSet* ReadSet(VirtualEngine& engine, const std::string& path, SetFileReport* report) {
  ConstructorResult result = ConstructorResult::Success;
  bool versionOK = true;
  auto set = std::make_unique<EventSet>(engine.context, engine.files.Canonical(path), &result,
                                        &versionOK, report);
  if (result != ConstructorResult::Success || !versionOK) {
    Complain(path, report->Fault);
    return nullptr;
  }
  OpenSets::Sets.push_back(std::move(set));
  return OpenSets::Sets.back().get();
}

int WrittenOut(bool written) {
  if (written) return ExitSuccess;
  Complain("standard output", std::strerror(errno));
  return ExitFailure;
}

int Next(VirtualEngine& engine, const CtlArguments& arguments) {
  engine.clock.Time = arguments.at;
  SetFileReport report;
  EventSet* const set = ReadSet(engine, arguments.files[0], &report);
  if (!set) return ExitFailure;
  for (const auto& event : set->Events()) event->UpdateEventTime();
  return WrittenOut(arguments.json ? PrintNextJson(*set)
                                   : PrintNextTable(*set, engine.context.zone));
}

int AgendaCommand(VirtualEngine& engine, const CtlArguments& arguments) {
  engine.clock.Time = arguments.from;
  std::vector<NamedSet> sets;
  if (!OpenAll(engine, arguments.files, sets)) return ExitFailure;
  std::vector<AgendaEntry> entries;
  if (!ComputeAgenda(engine, {arguments.from, arguments.to, arguments.startup}, entries)) {
    Complain(arguments.files[0], "there would be more than " + std::to_string(MaxAgendaEntries) +
                                     " deliveries in that time; ask for a shorter one");
    return ExitFailure;
  }
  return WrittenOut(arguments.json ? PrintAgendaJson(entries, sets)
                                   : PrintAgendaTable(entries, sets, engine.context.zone));
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
      if (const char* why = WhyRuleNeverYields(event->Record()); why && *why)
        lines += "  \"" + TextTable::Cell(event->GetName()) + "\": " + why + "\n";
  }
  if (failed) return ExitFailure;
  return WrittenOut(std::fputs(lines.c_str(), stdout) >= 0 && std::fflush(stdout) == 0);
}

int Rewrite(VirtualEngine& engine, const CtlArguments& arguments) {
  SetFileReport report;
  EventSet* const set = ReadSet(engine, arguments.files[0], &report);
  if (!set) return ExitFailure;
  errno = 0;
  if (set->SaveCopy(arguments.files[1])) {
    engine.files.SetAttribute(arguments.files[1], "user.mime_type", SetFileType);
    return ExitSuccess;
  }
  Complain(arguments.files[1],
           std::string("cannot be written") +
               (errno ? std::string(": ") + std::strerror(errno) : std::string()));
  return ExitFailure;
}

}  // namespace kestrin
