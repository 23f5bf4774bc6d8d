// The remembered sets that could not be read: reported once, tried again, forgotten late.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <string>

#include "core/events/Context.h"

namespace kestrin {

/// Main thread. What is known of them outlives the process, in "absent-sets" below the state folder
/// (docs/settings.md), so that many short processes report a file once.
class AbsentSets {
 public:
  AbsentSets(Context& context, const std::string& stateFolder);

  /// The set of that path is among them.
  bool Contains(const std::string& path) const { return absent_.contains(path); }
  /// A remembered file could not be read at a start. False: it has been missing, while its folder
  /// was there, at two starts a day apart, and is to be forgotten.
  bool StaysRemembered(const std::string& path);
  /// It could be read, or is not remembered any more.
  void Forget(const std::string& path);
  /// Stores what has changed. A failure is told on standard error: at worst it is reported again.
  void Write();

  /// Looks for all of them in a worker. Each that can be opened is posted as OPEN_FILES, without a
  /// window.
  void TryAgain();
  /// When they are to be tried again by a process that is started for it; 0 if there are none.
  int64 NextTry() const;

 private:
  void Read();

  Context& context_;
  std::string file_;
  /// By path: the first start at which it was missing while its folder was there, or 0.
  std::map<std::string, int64> absent_;
  bool changed_ = false;
  int64 tried_ = 0;
  /// A worker is looking; shared with it.
  std::shared_ptr<std::atomic<bool>> trying_ = std::make_shared<std::atomic<bool>>(false);
};

}  // namespace kestrin
