// The desktop port over the system's own.
#pragma once

#include "core/ports/Desktop.h"
#include "session/DesktopFiles.h"
#include "session/ShellCommand.h"
#include "session/Spawn.h"

namespace kestrin {

class SystemDesktop final : public Desktop {
 public:
  FileDescription Describe(const std::string& path) override { return DescribeFile(path); }
  bool Launch(const std::string& path) override { return LaunchFile(path); }
  bool OpenPage(const std::string& path, const std::string& anchor) override {
    return OpenFileAt(path, anchor);
  }
  int32 StartCommand(const std::string& command) override { return StartShell(command); }
  int32 WaitForCommand(int32 shell) override { return WaitForEnd(shell); }
};

}  // namespace kestrin
