// A desktop that only writes down what it was asked for.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/ports/Desktop.h"

namespace kestrin {

class FakeDesktop final : public Desktop {
 public:
  std::map<std::string, FileDescription> Files;  ///< what is not in here does not exist
  bool LaunchWorks = true;

  std::vector<std::string> Launched;
  std::vector<std::string> Commands;

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
  void RunCommand(const std::string& command) override { Commands.push_back(command); }
};

}  // namespace kestrin
