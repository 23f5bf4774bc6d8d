// Which data an add-on reads, or shows for editing, written down while it does: if that ends the
// process, the next one leaves these data unread.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "core/events/Context.h"
#include "core/journal/JournalRecord.h"

namespace kestrin {

/// Of one set, for as long as it is read. Main thread.
class AddOnReading {
 public:
  /// `path`: by which the journal knows the set.
  AddOnReading(Context& context, std::string path);
  ~AddOnReading();
  AddOnReading(const AddOnReading&) = delete;
  AddOnReading& operator=(const AddOnReading&) = delete;

  /// The add-on begins with the next event of that name, in the order of the file. False when its
  /// data have ended a process: they are to be kept unread.
  bool Begin(const std::string& name, const std::string& handler);
  void Begin(const EventName& event);

 private:
  Context& context_;
  const std::string path_;
  std::map<std::pair<std::string, std::string>, int32> counts_;
  std::string id_;
};

}  // namespace kestrin
