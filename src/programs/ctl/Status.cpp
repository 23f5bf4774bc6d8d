// `kestrinctl status`: the way of a reminder to the person, link by link.
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <map>

#include "core/events/Event.h"
#include "core/events/EventSet.h"
#include "core/files/StoredSetFile.h"
#include "core/ports/Clock.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/DateTimeText.h"
#include "core/timing/EventRecord.h"
#include "programs/ctl/Commands.h"
#include "programs/ctl/JsonWriter.h"
#include "programs/ctl/LoginEntry.h"
#include "programs/ctl/Personal.h"
#include "programs/ctl/Probe.h"
#include "programs/ctl/TextTable.h"
#include "session/ProcessInfo.h"

namespace kestrin {

namespace {

constexpr int ExitBroken = 1;
constexpr int64 WakeUpPatience = 60;  // seconds that a wake-up may take
constexpr size_t TextWidth = 4096;

struct Link {
  const char* Name;
  std::string Text;
  std::string Mend = "";  ///< a shell command; empty when the link holds
};

/// The next delivery of the remembered sets, as their files have it; Time 0: none.
struct Next {
  int64 Time = 0;
  std::string Text;
};

class Chain {
 public:
  explicit Chain(VirtualEngine& engine) : engine_(engine) {}

  std::vector<Link> Links();

 private:
  bool Has(const char* key) const { return answers_.count(key) > 0; }
  std::string Answer(const char* key) const { return Has(key) ? answers_.at(key) : ""; }
  /// A path that a program of that name stands at, or empty.
  std::string Beside(const std::string& folder, const char* program) const;
  std::string Date(int64 time) const;

  Link BusLink() const;
  Link FoundLink() const;
  Link RunsLink() const;
  Link TimeLink() const;
  Link ApplicationLink() const;
  Link DisplayLink() const;
  Link LoginLink() const;
  Link SetsLink();
  bool ReadRemembered(std::string& fault, std::string& mend);
  void LookAhead(const EventSet& set, const std::string& path);

  VirtualEngine& engine_;
  const int64 now_ = SystemClock().Now();
  const std::string folder_ = ExecutableFolder();
  const std::string kestrin_ = ShellWord(folder_ + "/kestrin");
  const std::string start_ = kestrin_ + " -background";
  /// Whatever brought the programs brings them again.
  const std::string reinstall_ = folder_ == "/usr/lib/kestrin"
                                     ? "apt-get install --reinstall kestrin"
                                     : "cmake --install build/release";
  std::map<std::string, std::string> answers_;
  Next next_;
};

std::string Chain::Beside(const std::string& folder, const char* program) const {
  std::string path = folder + "/" + program;
  const bool found =
      engine_.files.Kind(path) == FileKind::Regular && access(path.c_str(), X_OK) == 0;
  return found ? path : std::string();
}

std::string Chain::Date(int64 time) const {
  return GetDateTimeString(static_cast<int32>(time), true, engine_.context.zone,
                           engine_.settings.Time24Hour);
}

Link Chain::BusLink() const {
  if (Has("bus")) return {"Session bus", "answers"};
  if (answers_.empty())
    return {"Session bus", "KestrinProbe, which asks it, cannot be started", reinstall_};
  return {"Session bus", "cannot be reached: " + Answer("no-bus"),
          "dbus-run-session -- " + kestrin_};
}

Link Chain::FoundLink() const {
  if (Has("starts-deliverer"))
    return {"Deliverer found", "the bus starts " + Answer("starts-deliverer")};
  const std::string beside = Beside(folder_, "KestrinBackground");
  if (!beside.empty()) return {"Deliverer found", "kestrin starts " + beside};
  return {"Deliverer found",
          Has("missing-deliverer") ? Answer("missing-deliverer") + " is gone"
                                   : "there is no " + folder_ + "/KestrinBackground",
          reinstall_};
}

Link Chain::RunsLink() const {
  if (Has("deliverer")) return {"Deliverer runs", "as process " + Answer("deliverer")};
  return {"Deliverer runs", "it does not", start_};
}

Link Chain::TimeLink() const {
  constexpr const char* name = "Time it waits for";
  if (!Has("when"))
    return {name, "it does not answer", "kill -KILL " + Answer("deliverer") + "; " + start_};
  const std::string text = Answer("when");
  int64 when = 0;
  std::from_chars(text.data(), text.data() + text.size(), when);
  const bool later = next_.Time > now_ && (when == 0 || when > next_.Time);
  const std::string waits = when == 0 ? "nothing" : Date(when);
  if (later) return {name, waits + ", although there comes " + next_.Text, start_};
  if (when != 0 && when < now_ - WakeUpPatience)
    return {name, waits + ", and has not woken kestrin yet", start_};
  return {name, waits};
}

Link Chain::ApplicationLink() const {
  constexpr const char* name = "Application";
  if (Has("starts-application")) return {name, "the bus starts " + Answer("starts-application")};
  const std::string deliverer = Answer("deliverer-runs");
  const std::string beside =
      Beside(deliverer.empty() ? folder_ : deliverer.substr(0, deliverer.rfind('/')), "kestrin");
  if (!beside.empty()) return {name, "the deliverer starts " + beside};
  return {name,
          Has("missing-application") ? Answer("missing-application") + " is gone"
                                     : "nobody knows where it is",
          reinstall_};
}

Link Chain::DisplayLink() const {
  if (Has("display")) return {"Display", Answer("display")};
  return {"Display",
          Has("lost-display") ? Answer("lost-display") + " cannot be reached"
                              : "the bus knows none to open a window on",
          start_};
}

Link Chain::LoginLink() const {
  const LoginEntry entry = FindLoginEntry(folder_ + "/kestrin");
  const bool both = !entry.Path.empty() && !entry.Fault.empty();
  const std::string text = entry.Path + (both ? " " : "") + entry.Fault;
  return {"Start at login", text, entry.Mend};
}

void Chain::LookAhead(const EventSet& set, const std::string& path) {
  for (const auto& event : set.Events()) {
    const EventRecord& record = event->Record();
    const int64 time = record.NextEventTime;
    if (!record.Active || time <= 0 || (next_.Time != 0 && time >= next_.Time)) continue;
    next_ = {time, "\"" + TextTable::Cell(record.Name) + "\" (" + path + "), " + Date(time)};
  }
}

bool Chain::ReadRemembered(std::string& fault, std::string& mend) {
  for (const std::string& path : engine_.settings.SetFileNames) {
    const SetReading reading = ReadSet(engine_.context, path);
    if (reading.Set) {
      LookAhead(*reading.Set, path);
      continue;
    }
    fault = path + ": " + reading.Report.Fault;
    mend = ShellWord(folder_ + "/kestrinctl") + " check " + ShellWord(path);
  }
  return mend.empty();
}

Link Chain::SetsLink() {
  constexpr const char* name = "Sets that deliver";
  std::string fault, mend;
  if (!ReadPersonalSettings(engine_, &fault))
    return {name, "the settings cannot be read: " + fault, kestrin_};
  const bool readable = ReadRemembered(fault, mend);
  const int32 mode = engine_.settings.WhichEventsToDeliver;
  if (mode == DeliverNothing) return {name, "none, so say the settings", kestrin_};
  if (mode == DeliverShown) {
    next_ = {};
    return {name, "only sets that are shown, so say the settings", kestrin_};
  }
  if (!readable) return {name, fault, mend};
  std::string sets;
  for (const std::string& path : engine_.settings.SetFileNames)
    sets += (sets.empty() ? "" : ", ") + path;
  if (sets.empty()) return {name, "none is remembered", kestrin_};
  return {name, sets};
}

std::vector<Link> Chain::Links() {
  answers_ = AskProbe(folder_).value_or(std::map<std::string, std::string>());
  const Link sets = SetsLink();  // before the time, which is compared with what comes next
  std::vector<Link> links = {BusLink(), FoundLink()};
  if (Has("bus")) {
    links.push_back(RunsLink());
    if (Has("deliverer")) links.push_back(TimeLink());
    links.push_back(ApplicationLink());
    links.push_back(DisplayLink());
  }
  links.push_back(LoginLink());
  links.push_back(sets);
  links.push_back({"Comes next", next_.Time == 0 ? "nothing" : next_.Text});
  return links;
}

bool PrintJson(const std::vector<Link>& links) {
  JsonWriter json(stdout);
  json.BeginArray();
  for (const Link& link : links) {
    json.BeginObject();
    json.Key("link");
    json.String(link.Name);
    json.Key("found");
    json.String(link.Text);
    json.Key("mend");
    json.Text(link.Mend);
    json.EndObject();
  }
  json.EndArray();
  return json.Finish();
}

bool PrintTable(const std::vector<Link>& links, bool broken) {
  TextTable table({"Link", "", "What was found"});
  bool written = table.Print(stdout, links.size(), [&](size_t row, TextTable::Row& cells) {
    cells[0] = links[row].Name;
    cells[1] = links[row].Mend.empty() ? "ok" : "BROKEN";
    cells[2] = TextTable::Cell(links[row].Text, TextWidth);
  });
  for (const Link& link : links)
    if (!link.Mend.empty())
      written = written && std::printf("\nBroken: %s. This mends it:\n%s\n", link.Name,
                                       link.Mend.c_str()) >= 0;
  return written && (broken || std::puts("\nA reminder would reach you.") >= 0);
}

}  // namespace

int Status(VirtualEngine& engine, const CtlArguments& arguments) {
  const std::vector<Link> links = Chain(engine).Links();
  const bool broken =
      std::any_of(links.begin(), links.end(), [](const Link& link) { return !link.Mend.empty(); });
  const bool written = arguments.json ? PrintJson(links) : PrintTable(links, broken);
  const int status = WrittenOut(written && std::fflush(stdout) == 0);
  return status == ExitSuccess && broken ? ExitBroken : status;
}

}  // namespace kestrin
