// An alert as core asks for it: text and buttons, no window.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kestrin/Types.h"

namespace kestrin {

using AlertId = uint64;

enum class AlertKind { Information, Warning };

/// What an alert is for. A Prewarning or Nag brings the one that still stands open for the same
/// event up to date instead of joining it. A Prompt answers what the person just did: it opens
/// ahead of all others, takes the focus, and is not shown again by a later process.
enum class AlertRole { Notice, Prewarning, Nag, Delivery, Question, Prompt };

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
  /// Called once, in the main thread, with the index of the pressed button.
  std::function<void(int which)> Done;
};

}  // namespace kestrin
