// A desktop that only writes down what it was asked for.
#pragma once

#include <errno.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "core/ports/Desktop.h"

namespace kestrin {

class FakeDesktop final : public Desktop {
 public:
  std::map<std::string, FileDescription> Files;  ///< what is not in here does not exist
  bool LaunchWorks = true, ShellWorks = true;
  int32 Exit = 0;  ///< of every command

  std::vector<std::string> Launched;
  std::vector<std::string> Commands;
  std::function<void()> WhenCommand = [] {};
  std::function<void()> AroundStart;  ///< before each command starts and after; may be null

  FileDescription Describe(const std::string& path) override {
    const auto found = Files.find(path);
    return found == Files.end() ? FileDescription{} : found->second;
  }
  bool Launch(const std::string& path) override {
    Launched.push_back(path);
    return LaunchWorks;
  }
  bool OpenPage(const std::string& path, const std::string& anchor) override {
    return Launch(anchor.empty() ? path : path + '#' + anchor);
  }
  int32 StartCommand(const std::string& command) override {
    WhenCommand();
    if (AroundStart) AroundStart();
    if (ShellWorks) Commands.push_back(command);
    if (AroundStart) AroundStart();
    return ShellWorks ? static_cast<int32>(Commands.size()) : -EAGAIN;
  }
  int32 WaitForCommand(int32) override { return Exit; }
};

}  // namespace kestrin
