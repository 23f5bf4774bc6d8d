// KestrinProbe: what the session bus knows of Kestrin, a line each, for kestrinctl; see
// docs/bus.md.
#include <stdlib.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "programs/Asked.h"
#include "programs/probe/Displays.h"
#include "session/ActivationFile.h"
#include "session/BusNames.h"
#include "session/ProcessInfo.h"
#include "session/ToldDisplay.h"
#include "support/FileDoor.h"

namespace kestrin {
namespace {

constexpr char Help[] =
    "usage: KestrinProbe             what the session bus knows of Kestrin; kestrinctl starts it\n"
    "       KestrinProbe --help | --version\n";
constexpr char Version[] = "KestrinProbe " KESTRIN_VERSION "\n";

constexpr uint64 AnswerWithin = 2'000'000;  // microseconds
constexpr char Bus[] = "org.freedesktop.DBus", BusObject[] = "/org/freedesktop/DBus";
constexpr char Systemd[] = "org.freedesktop.systemd1";

/// Text from outside stays on its line.
void Tell(const char* key, std::string value) {
  std::replace(value.begin(), value.end(), '\n', '?');
  std::printf("%s=%s\n", key, value.c_str());
}

std::vector<std::string> Owned(char** texts) {
  std::vector<std::string> result;
  for (char** text = texts; text && *text; ++text) {
    result.emplace_back(*text);
    free(*text);
  }
  free(texts);
  return result;
}

/// 0 when nobody owns the name.
pid_t OwnerOf(sd_bus* bus, const char* name) {
  sd_bus_creds* owner = nullptr;
  pid_t process = 0;
  if (sd_bus_get_name_creds(bus, name, SD_BUS_CREDS_PID, &owner) >= 0)
    sd_bus_creds_get_pid(owner, &process);
  sd_bus_creds_unref(owner);
  return process;
}

std::string IdOf(sd_bus* bus) {
  sd_bus_message* reply = nullptr;
  const char* id = nullptr;
  std::string result;
  if (sd_bus_call_method(bus, Bus, BusObject, Bus, "GetId", nullptr, &reply, "") >= 0 &&
      sd_bus_message_read(reply, "s", &id) >= 0)
    result = id;
  sd_bus_message_unref(reply);
  return result;
}

void TellDeliverer(sd_bus* bus) {
  const pid_t process = OwnerOf(bus, BackgroundBusName);
  if (process == 0) return;
  Tell("deliverer", std::to_string(process));
  char program[4096];
  const std::string link = "/proc/" + std::to_string(process) + "/exe";
  const ssize_t length = readlink(link.c_str(), program, sizeof program);
  if (length > 0) Tell("deliverer-runs", std::string(program, static_cast<size_t>(length)));
  int32 when = 0;
  if (sd_bus_get_property_trivial(bus, BackgroundBusName, BackgroundObject, MessagesInterface,
                                  "When", nullptr, 'i', &when) >= 0)
    Tell("when", std::to_string(when));
}

void TellActivation(sd_bus* bus) {
  char** listed = nullptr;
  if (sd_bus_list_names(bus, nullptr, &listed) < 0) return;
  const std::vector<std::string> names = Owned(listed);
  SystemFileDoor files;
  const struct {
    const char *name, *key, *missing;
  } programs[] = {{BackgroundBusName, "starts-deliverer", "missing-deliverer"},
                  {ApplicationBusName, "starts-application", "missing-application"}};
  for (const auto& program : programs) {
    if (std::find(names.begin(), names.end(), program.name) == names.end()) continue;
    // A file in a folder of the bus's own configuration is the bus's business.
    const auto path = FindActivatedProgram(files, program.name);
    const bool gone = path && access(path->c_str(), X_OK) != 0;
    Tell(gone ? program.missing : program.key, path.value_or("a program of its own"));
  }
}

/// What Kestrin has told this bus, what systemd knows, and what the bus itself was started with.
std::vector<Assignment> KnownDisplays(sd_bus* bus) {
  std::vector<std::string> lines = PartsOfFile(RuntimeFolder() + ToldDisplayFile, '\n');
  if (lines.empty() || lines[0] != IdOf(bus)) lines.clear();
  char** known = nullptr;
  if (OwnerOf(bus, Systemd) != 0 &&
      sd_bus_get_property_strv(bus, Systemd, "/org/freedesktop/systemd1",
                               "org.freedesktop.systemd1.Manager", "Environment", nullptr,
                               &known) >= 0)
    for (std::string& line : Owned(known)) lines.push_back(std::move(line));
  if (const pid_t process = OwnerOf(bus, Bus))
    for (std::string& line : PartsOfFile("/proc/" + std::to_string(process) + "/environ", '\0'))
      lines.push_back(std::move(line));
  return DisplaysAmong(lines);
}

void TellDisplay(sd_bus* bus) {
  const std::vector<Assignment> known = KnownDisplays(bus);
  const auto reached = std::find_if(known.begin(), known.end(), IsReachable);
  if (reached != known.end())
    Tell("display", *reached);
  else if (!known.empty())
    Tell("lost-display", known.front());
}

int Run() {
  sd_bus* bus = nullptr;
  if (const int result = sd_bus_open_user(&bus); result < 0) {
    Tell("no-bus", result == -ENOMEDIUM ? "nothing says where it is" : std::strerror(-result));
    return 0;
  }
  sd_bus_set_method_call_timeout(bus, AnswerWithin);
  const std::string id = IdOf(bus);
  if (id.empty()) {
    Tell("no-bus", "it does not answer");
    return 0;
  }
  Tell("bus", id);
  TellDeliverer(bus);
  TellActivation(bus);
  TellDisplay(bus);
  sd_bus_flush_close_unref(bus);
  return std::fflush(stdout) == 0 ? 0 : 1;
}

}  // namespace
}  // namespace kestrin

int main(int argc, char** argv) {
  if (const char* const answer = kestrin::AnswerTo(argc, argv, kestrin::Help, kestrin::Version))
    return kestrin::Say(answer);
  return kestrin::Run();
}
