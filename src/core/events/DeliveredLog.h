// What was delivered of a set and is not in its file yet.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>

#include "kestrin/Types.h"

namespace kestrin {

class Event;
class EventSet;

/// Keeps the state in which each event was first delivered since the set was last saved, under the
/// name that the file has for it.
class DeliveredLog {
 public:
  /// The event is about to get another name: the file goes on calling it by the one it has.
  void RecordRename(const Event& event);
  /// `status`: in which the event was found.
  void RecordDelivered(const Event& event, int32 status);

  size_t Count() const { return delivered_.size(); }
  /// The file knows of the deliveries now.
  void ForgetDelivered() { delivered_.clear(); }
  /// The file knows of everything now.
  void Clear();

  /// Moves on every event of `set`, read from the file, that is due at `now` although it was
  /// delivered. Each entry stands for one event.
  void MoveOnDelivered(EventSet& set, int64 now) const;

 private:
  struct Delivered {
    std::string name;
    int32 occurrence;
    int32 status;
    bool operator==(const Delivered&) const = default;
  };
  // Both by the event's handle.
  std::unordered_map<uint64, Delivered> delivered_;
  std::unordered_map<uint64, std::string> namesInFile_;
};

}  // namespace kestrin
