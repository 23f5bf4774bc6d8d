// A record of the journal, of the history or of what was put off, as values; docs/journal.md tells
// what they mean.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/journal/RecordLine.h"
#include "core/ports/Alert.h"
#include "core/ports/Processes.h"
#include "support/LocalTime.h"

namespace kestrin {

/// An event as its file knows it, whatever it is called in memory since.
struct EventName {
  std::string Name, Handler;
  int32 Place = 0;  ///< among the events of the set that share both, from the top
  auto operator<=>(const EventName&) const = default;
};

struct EventState {
  int32 Actual = 0, Next = 0, Status = 0;
  bool Gone = false;  ///< deleted once delivered
  bool operator==(const EventState&) const = default;
};

enum class RecordKind { Prewarning, Event, Nag };
enum class ActStage { None, Reading, Queued, Acting, Acted, Missed, Passed, Failed };
enum class AlertStage { None, Shown, Answered, PutOff };

/// What the watch leaves as its reason.
inline constexpr char Overrun[] = "overrun";

/// The part of an alert that outlives the process.
struct KeptAlert {
  AlertRole Role = AlertRole::Notice;
  AlertKind Kind = AlertKind::Information;
  std::string Title, Text;
  std::vector<std::string> Buttons;
  int HarmlessButton = 0, DefaultButton = 0;
  std::string Icon;  ///< the event's number and, for one of its own, ":" and the bitmaps
};
KeptAlert KeepAlert(const AlertRequest& request);
/// Without handles, continuation and the event's name. Buttons are never empty, the two numbers
/// within them.
AlertRequest AlertOf(const KeptAlert& kept);

struct JournalRecord {
  std::string Id;
  ProcessOwner By;
  std::string Set;  ///< canonical path of the set, or of the recovery copy of an untitled one
  EventName Event;
  uint32 Rule = 0;  ///< of the fields that decide its dates; 0: unknown
  RecordKind Kind = RecordKind::Event;
  std::optional<EventState> From, To;
  int64 At = 0;      ///< when it was begun
  int64 Looked = 0;  ///< of one that goes back: what the clock had been seen at before
  bool Missed = false;
  bool Trial = false;  ///< "Try now": changes no state
  ActStage Act = ActStage::None;
  std::string Why;
  std::string Run, Open;  ///< the command, or the file's path
  std::optional<int32> Exit;
  AlertStage AlertIs = AlertStage::None;
  int32 PutOffs = 0;  ///< how often
  KeptAlert Alert;
  std::optional<int32> Button;
  std::string Answer;  ///< the pressed button's text
  int64 Answered = 0;
  std::string Of;  ///< the record of whose delivery this alert is a further one

  bool IsAboutAnEvent() const { return !Set.empty() || !Event.Name.empty(); }
  /// Nobody has been told that the act, or the reading, has failed.
  bool IsUntold() const {
    return (Act == ActStage::Failed || Act == ActStage::Reading) &&
           (AlertIs == AlertStage::None || Why == Overrun);
  }
  /// It leads to an earlier occurrence: the clock was wrong when its state was worked out.
  bool GoesBack() const { return From && To && !To->Gone && To->Actual < From->Actual; }
  /// The time of the occurrence that it speaks of.
  int32 Occurrence() const { return From ? From->Actual : 0; }
};

RecordFields FieldsOf(const JournalRecord& record);
RecordFields FieldsOf(const KeptAlert& alert);
/// Fields that are missing or make no sense have their initial value.
JournalRecord RecordOf(const std::string& id, const RecordFields& fields);

std::string TextOf(const EventState& state);
std::string TextOf(const ProcessOwner& owner);
const char* NameOf(ActStage stage);
const char* NameOf(AlertStage stage);
const char* NameOf(RecordKind kind);

/// "2026-11-23 08:00:00" and back.
std::string TextOf(Civil time);
std::optional<Civil> CivilOf(const std::string& text);

}  // namespace kestrin
