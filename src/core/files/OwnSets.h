// Which event sets a person has saved here, and what they held then: only those act unasked.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "support/FileDoor.h"

namespace kestrin {

/// Main thread. Lies in "mine" below the state folder; docs/trust.md tells what follows from it.
class OwnSets {
 public:
  /// `report` gets a sentence for the person.
  using Report = std::function<void(const std::string& words)>;
  OwnSets(FileDoor& files, const std::string& stateFolder, Report report);

  /// At the start. Where nothing was ever written down, what is remembered counts as saved here.
  void Read(const std::vector<std::string>& remembered);

  /// There is an entry for that path, whatever the file holds by now.
  bool Knows(const std::string& path) const { return entries_.contains(path); }
  /// The file, which holds those bytes, is as it was saved here.
  bool IsOwn(const std::string& path, std::string_view bytes) const;
  /// A person, or the program in an entry that stands, has saved these bytes there.
  void Saved(const std::string& path, std::string_view bytes);

 private:
  void ReadFile();
  void SetAside();
  void Write();

  FileDoor& files_;
  std::string file_;
  Report report_;
  std::map<std::string, std::string> entries_;  ///< digest by path
  bool isNew_ = false;
  bool keptFile_ = true;  ///< false: the file could not be read just now, and is left alone
};

}  // namespace kestrin
