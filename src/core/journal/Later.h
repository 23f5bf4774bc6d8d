// The alerts that were put off: on disk before their window closes, back at their moment.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/journal/JournalRecord.h"
#include "core/journal/RecordLog.h"
#include "support/LocalTime.h"

namespace kestrin {

/// When an alert returns: at a moment, or at a time on the wall clock (a named day), whatever the
/// zone is by then.
struct ReturnTime {
  int64 Moment = 0;
  std::optional<Civil> Wall;  ///< counts when it is there
  int64 In(const Zone& zone) const { return Wall ? zone.ToMoment(*Wall) : Moment; }
};

/// All that is needed to show it again.
struct PutOffAlert {
  std::string Id;      ///< given by Later
  std::string Record;  ///< of the delivery in the journal; may be empty
  std::string Set;     ///< as in JournalRecord
  EventName Event;
  uint32 Rule = 0;  ///< of the event when it was put off: a person who changes it ends the alert
  RecordKind Kind = RecordKind::Event;
  int32 Occurrence = 0;
  KeptAlert Alert;
  std::string Run, Open;  ///< what a question carries out if its event has gone
  ReturnTime When;
  bool IsBack = false;  ///< has returned and is not answered: only that ends it now
};

PutOffAlert PutOffAlertOf(const RecordLine& line);

/// Main thread. Shared by the sessions of one home: each change is a line that the others read.
class Later {
 public:
  /// `mark`: what tells this process from others; `report` gets sentences for the person.
  Later(FileDoor& files, const std::string& stateFolder, std::string mark,
        RecordLog::Report report);

  void Read();
  /// What other sessions put off or ended since.
  void CatchUp();

  /// StatusOk when it is on disk and will return; otherwise nothing is put off, and the reason is
  /// to be told. `alert.Id` is given here: a new one, or, for one that is there already, the same.
  status_t PutOff(PutOffAlert& alert);
  /// It stands open again. Not durable before the next Sync.
  void IsBack(const std::string& id);
  /// It was answered, or has nothing to return for. Likewise.
  void End(const std::string& id);

  /// What little it takes to find an alert's event.
  struct Subject {
    std::string Id;
    std::string Set;
    EventName Event;
  };
  bool IsEmpty() const { return log_.All().empty(); }
  std::vector<Subject> All() const;
  /// The records of their deliveries.
  std::set<std::string> Deliveries() const;
  std::vector<PutOffAlert> Of(const std::string& set, const EventName& event) const;
  std::optional<PutOffAlert> Find(const std::string& id) const;
  /// The earliest return of those without these ids, 0 for none.
  int64 NextReturn(const Zone& zone, const std::set<std::string>& without = {}) const;
  /// What returns now, earliest first. It stays until it is put off again or ended.
  std::vector<PutOffAlert> Due(int64 now, const Zone& zone) const;

  bool IsDirty() const { return log_.IsDirty(); }
  /// Any thread.
  status_t Sync() { return log_.Sync(); }
  std::function<void()> Compaction() { return log_.Compaction(); }
  bool WantsCompaction() const { return log_.WantsCompaction(); }

 private:
  RecordLog log_;
};

}  // namespace kestrin
