// The entry by which a desktop starts `kestrin -background` after each login.
#pragma once

#include <string>

namespace kestrin {

struct LoginEntry {
  std::string Path;   ///< the one that counts; empty when there is none
  std::string Fault;  ///< empty when it starts the program
  std::string Mend;   ///< a shell command that makes it do so; empty when none is needed
};

/// Looks where desktops look: the person's own folder, then the system's. `kestrin` is the program
/// that a new entry would start.
LoginEntry FindLoginEntry(const std::string& kestrin);

/// As one word of a shell command.
std::string ShellWord(const std::string& text);

}  // namespace kestrin
