// The desktop port over the system's own.
#pragma once

#include "core/ports/Desktop.h"
#include "session/DesktopFiles.h"
#include "session/ShellCommand.h"

namespace kestrin {

class SystemDesktop final : public Desktop {
 public:
  FileDescription Describe(const std::string& path) override { return DescribeFile(path); }
  bool Launch(const std::string& path) override { return LaunchFile(path); }
  bool OpenPage(const std::string& path, const std::string& anchor) override {
    return OpenFileAt(path, anchor);
  }
  void RunCommand(const std::string& command) override { RunShellCommand(command); }
};

}  // namespace kestrin
