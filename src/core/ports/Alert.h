// An alert as core asks for it: text and buttons, no window.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "kestrin/Types.h"
#include "support/Bitmap.h"

namespace kestrin {

using AlertId = uint64;

/// The place of an alert that is a row of the Reminders window.
inline constexpr int32 RowPlace = -1;
/// The place of one that is heard here and seen elsewhere.
inline constexpr int32 NoPlace = -2;

enum class AlertKind { Information, Warning, Question };

/// What an alert is for. A Prewarning or Nag brings the one that still stands open for the same
/// event up to date instead of joining it. A Prompt answers what the person just did: it opens
/// ahead of all others, takes the focus, and is not shown again by a later process.
enum class AlertRole { Notice, Prewarning, Nag, Delivery, Question, Prompt };

/// What the event of an alert looks like, so that it is known after the event has gone.
struct AlertFace {
  std::string EventName;  ///< empty: the alert speaks of no event
  int32 IconNumber = -1;  ///< as an event's: -2 = the bitmaps below, -1 = none
  IconPair OwnIcon;
};

struct AlertRequest {
  std::string Title;  ///< empty: the application's name
  std::string Text;
  std::vector<std::string> Buttons = {"OK"};
  int HarmlessButton = 0;  ///< what closing, Escape and a forced end count as
  int DefaultButton = 0;   ///< what Return presses once the alert has the focus
  AlertKind Kind = AlertKind::Information;
  AlertRole Role = AlertRole::Notice;
  uint64 Set = 0;  ///< handles of the set and event the alert is about; 0 = none
  uint64 Event = 0;
  int32 Occurrence = 0;  ///< the event's ActualEventTime when the alert was asked for
  AlertFace Face;
  bool OccursAtTime = false;  ///< Occurrence is more than a bare day
  bool NamesTime = false;     ///< Text says when the event occurred or will occur
  bool Away = false;          ///< came due over a minute before anybody could be reminded
  int32 Begins = 0;           ///< of a prewarning: after that it cannot be put off; 0 = no bound
  std::string KeptId;         ///< what the keeper of put-off alerts knows it by; may be empty
  std::string Record;         ///< of the journal: which delivery it belongs to; may be empty
  bool IsRecorded = false;    ///< for AlertDesk alone
  bool IsReturning = false;   ///< shown before, and shown again unanswered
  std::string Run, Open;      ///< of a question: the command, or the file, that Ok carries out
  int32 ComesAgain = 0;       ///< of a nag: when the next one comes; 0 = no more of them
  /// Of a message: it is to be a notification, whatever the settings say.
  std::optional<NotificationUrgency> Notify;
  /// Called once, in the main thread, with the index of the pressed button.
  std::function<void(int which)> Done;

  /// Whether it speaks of something that came due, and so can wait in a list and be put off.
  bool IsReminder() const { return Role != AlertRole::Notice && Role != AlertRole::Prompt; }
};

}  // namespace kestrin
