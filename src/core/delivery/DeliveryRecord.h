// The lines of the journal around one delivery; docs/journal.md has the table.
#pragma once

#include <string>

#include "core/journal/JournalRecord.h"

namespace kestrin {

class Event;
class Journal;

/// Main thread. Without a journal everything may act, and nothing is written.
class DeliveryRecord {
 public:
  struct Delivery {
    RecordKind Kind = RecordKind::Event;
    EventState From, To;  ///< as the file has it, and what it leads to
    bool Missed = false;
    bool Trial = false;  ///< changes no state
    bool Skips = false;  ///< further occurrences that have passed are left out
  };

  /// The delivery is about to be made. The set is locked, or nobody else knows it.
  DeliveryRecord(Event& event, const Delivery& delivery);

  /// False when another session acts.
  bool MayAct() const { return mayAct_; }
  /// Empty when nothing is written.
  const std::string& Id() const { return id_; }
  /// The action has returned, and the event stands in that state now. An action that goes on by
  /// itself (queued, failed) has said so already.
  void Acted(const EventState& to);

  /// It was not delivered, by the rule for missed events.
  static void WriteMissed(Event& event, const EventState& from, bool skips);

 private:
  Journal* journal_;
  std::string id_;
  EventState to_;
  bool mayAct_ = true;
};

}  // namespace kestrin
