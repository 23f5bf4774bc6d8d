// kestrinctl run as a process, in a folder of the test's own, within the bounds it promises.
#pragma once

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "core/timing/EventRecord.h"
#include "harness/bus/Processes.h"

namespace kestrin {

inline const std::string DataFolder = KESTRIN_SOURCE_DIR "/tests/data/sets/";
inline const std::string TeaFile = DataFolder + "golden/tea.kestrin";

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool IsSanitized = true;  ///< slower, and with an address space without bounds
#else
inline constexpr bool IsSanitized = false;
#endif

struct Ran {
  int status = -1;  ///< minus the signal, if one ended it
  std::string out, err;
};

class CtlTest : public testing::Test {
 protected:
  /// Runs in the test's folder with at most 512 MB and 10 s. `keepOutput` false: it goes to
  /// /dev/null.
  Ran Run(std::vector<std::string> arguments, bool keepOutput = true) const;
  /// As `Run`, and expects success without a word on standard error.
  nlohmann::json RunJson(const std::vector<std::string>& arguments) const;
  /// Expects exit status 2, nothing on standard output, and one line on standard error that names
  /// `file` and says `fault`.
  void ExpectRefused(const std::vector<std::string>& arguments, const std::string& file,
                     const std::string& fault) const;
  /// Writes a set of these events to `name` in the folder, with the code's own writer.
  void MakeSet(const std::string& name, const std::vector<EventRecord>& records) const;
  std::string Path(const std::string& name) const { return home_.path + "/" + name; }

  std::string Zone = "Europe/Berlin";

 private:
  const TemporaryFolder home_;
};

}  // namespace kestrin
