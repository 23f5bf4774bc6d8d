// What was begun or done for events and is not settled yet: nothing is lost between two starts, and
// nothing comes twice. docs/journal.md tells how.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/journal/History.h"
#include "core/journal/JournalRecord.h"
#include "core/journal/LastSeen.h"
#include "core/journal/RecordLog.h"
#include "core/ports/Clock.h"

namespace kestrin {

/// An event that was read from its file.
struct StoredEvent {
  EventName Name;
  uint32 Rule = 0;
  EventState State;
};

/// Main thread, but for what says otherwise. A journal that cannot be written works in memory.
class Journal {
 public:
  /// `stateFolder` is made when it is missing. `report` gets sentences for the person.
  Journal(FileDoor& files, const Processes& processes, const Clock& clock,
          const std::string& stateFolder, RecordLog::Report report);

  void Read();
  History& Past() { return history_; }
  LastSeen& Seen() { return seen_; }

  // Writing. Every id is one that Begin or Further gave.

  /// Appends the record as this process's own, begun now, and returns its id.
  std::string Begin(JournalRecord record) { return Add(std::move(record), false); }
  /// The same for one that nothing but a window follows: of a heap of them most wait for the next
  /// line that is written, what is said of them meanwhile too.
  std::string BeginInHeap(JournalRecord record) { return Add(std::move(record), true); }
  /// What has waited is written: its window opens, or the passes rest.
  void EndHeap() { log_.EndHeap(); }
  /// The same for an act that only one session may make. Nothing when another one has it.
  std::optional<std::string> Claim(JournalRecord record);
  /// Goes on with a record that asked first or waited; false when another session has begun it.
  bool ClaimAgain(const std::string& id);
  void Stage(const std::string& id, ActStage act, const std::string& why = "");
  /// The delivery has led to another state than was foreseen.
  void Became(const std::string& id, const EventState& to);
  void Shown(const std::string& id, const KeptAlert& alert);
  /// The alert is a further one of that record's delivery.
  std::string Further(const std::string& id, const KeptAlert& alert);
  /// `act`: what the answer starts, in the same line.
  void Answered(const std::string& id, int32 button, const std::string& text,
                ActStage act = ActStage::None);
  void PutOff(const std::string& id);
  /// The act of another process's record, or its alert, is this one's from now on. False when
  /// somebody who lives has it.
  bool Adopt(const std::string& id);
  /// Any thread. How the command ended.
  void Ended(const std::string& id, int32 exit);
  /// Any thread: the act failed, and the program may not live to say so later.
  void FailedNow(const std::string& id, const std::string& why);
  /// The same record, of another event: an add-on reads one after another.
  void GoesOnWith(const std::string& id, const EventName& event);
  /// The record is of no use to anybody, nor to the history.
  void Forget(const std::string& id) { log_.End(id); }

  // Reading.

  std::optional<JournalRecord> Find(const std::string& id) const;
  /// Whether there is such a record, and is that far; without taking it apart.
  bool Has(const std::string& id) const { return log_.Find(id) != nullptr; }
  bool Is(const std::string& id, ActStage act) const { return Says(id, "act", NameOf(act)); }
  bool Is(const std::string& id, AlertStage is) const { return Says(id, "alert", NameOf(is)); }
  bool IsMine(const JournalRecord& record) const { return record.By == self_; }
  /// Records whose owner no longer lives and that want something yet, in order: an act that has not
  /// come to its end or failed, an alert that is not answered. Those that satisfy `which`.
  std::vector<JournalRecord> Orphans(const std::function<bool(const JournalRecord&)>& which) const;
  /// All records, or those of one event, in order.
  std::vector<JournalRecord> All() const;
  std::vector<JournalRecord> About(const std::string& set, const EventName& event) const;
  /// Whether reading the event's data has ended a process, and nobody has wished it tried again.
  bool IsKeptUnread(const std::string& set, const EventName& event) const;
  /// Whether there is any record about the set.
  bool Knows(const std::string& set) const { return bySet_.contains(set); }
  /// The latest occurrence that was delivered, passed over or missed, but for those after that
  /// moment; nothing when none is known.
  std::optional<int32> LastOccurrence(const std::string& set, const EventName& event,
                                      int64 notAfter = INT32_MAX) const;

  /// The state that each event of a set that was just read is really in; nothing for those that
  /// stand as the file says.
  std::vector<std::optional<EventState>> Follow(const std::string& set,
                                                const std::vector<StoredEvent>& events) const;

  // The file.

  /// The set goes by another path from now on.
  void Renamed(const std::string& from, const std::string& to);
  /// The event is called otherwise in the file from now on.
  void Renamed(const std::string& set, const EventName& from, const EventName& to);
  /// The set's file holds all that the records say; `events` are those in it. What is settled and
  /// followed by a later record, or whose event is gone, goes to the history.
  void Settle(const std::string& set, const std::vector<EventName>& events);
  bool IsDirty() const { return log_.IsDirty(); }
  /// Any thread.
  status_t Sync() { return log_.Sync(); }
  bool WantsCompaction() const { return log_.WantsCompaction(); }
  std::function<void()> Compaction() { return log_.Compaction(); }

 private:
  using Places = std::vector<RecordLog::Place>;
  static std::string EventKey(const std::string& set, const std::string& name,
                              const std::string& handler);
  static std::string KeyOf(const RecordFields& fields);
  std::string Add(JournalRecord record, bool isInHeap);
  void Index(RecordLog::Place place, const RecordLine* earlier, const RecordLine* now);
  JournalRecord At(RecordLog::Place place) const;
  bool Says(const std::string& id, const char* key, const char* value) const;
  bool IsSettled(const JournalRecord& record) const;
  struct Rivals {
    bool newsOnly = false;     ///< those that came after this process has read the journal
    bool earlierOnly = false;  ///< those that stand before the record
  };
  bool HasRival(const JournalRecord& record, Rivals which) const;
  void GiveUp(const std::string& id);

  const Processes& processes_;
  const Clock& clock_;
  ProcessOwner self_;
  RecordLog log_;
  History history_;
  LastSeen seen_{log_};
  std::unordered_map<std::string, Places> byEvent_;  ///< by set, name and handler
  std::unordered_map<std::string, size_t> bySet_;    ///< how many
  std::set<RecordLog::Place> open_;                  ///< of records that may want something yet
  RecordLog::Place lastAtStart_ = 0;                 ///< of what Read found
};

}  // namespace kestrin
