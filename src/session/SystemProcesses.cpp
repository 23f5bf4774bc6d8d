#include "session/SystemProcesses.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

namespace kestrin {

namespace {

std::string ContentOf(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// When the process began, in clock ticks after the boot; 0 when there is none that runs.
int64 StartOf(int64 process) {
  const std::string stat = ContentOf("/proc/" + std::to_string(process) + "/stat");
  const size_t name = stat.rfind(')');  // which may hold anything
  if (name == std::string::npos) return 0;
  std::istringstream fields(stat.substr(name + 1));
  std::string field;
  fields >> field;
  if (field == "Z" || field == "X") return 0;
  constexpr int StartField = 22, StateField = 3;
  for (int i = StateField; i < StartField; ++i) fields >> field;
  return std::strtoll(field.c_str(), nullptr, 10);
}

}  // namespace

SystemProcesses::SystemProcesses() {
  self_.Boot = ContentOf("/proc/sys/kernel/random/boot_id");
  while (!self_.Boot.empty() && self_.Boot.back() == '\n') self_.Boot.pop_back();
  self_.Process = getpid();
  self_.Started = StartOf(self_.Process);
}

bool SystemProcesses::Lives(const ProcessOwner& owner) const {
  if (owner == self_) return true;
  return owner.Boot == self_.Boot && owner.Process > 0 && StartOf(owner.Process) == owner.Started;
}

}  // namespace kestrin
