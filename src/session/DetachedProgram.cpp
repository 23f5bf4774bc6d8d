#include "session/DetachedProgram.h"

#include <utility>

#include "core/ports/Workers.h"
#include "session/Spawn.h"

namespace kestrin {

DetachedProgram::DetachedProgram(std::string path)
    : path_(std::move(path)),
      end_(std::make_shared<std::promise<void>>()),
      ended_(end_->get_future()) {}

std::optional<DetachedProgram> DetachedProgram::Start(const std::string& path) {
  const pid_t child = SpawnApart({path});
  if (child < 0) return std::nullopt;
  DetachedProgram program(path);
  ThreadWorkers().Start("Program's end", [child, end = program.end_] {
    WaitForEnd(child);
    end->set_value();
  });
  return program;
}

bool DetachedProgram::EndsWithin(std::chrono::milliseconds patience) const {
  return ended_.wait_for(patience) == std::future_status::ready;
}

}  // namespace kestrin
