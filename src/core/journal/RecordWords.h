// A delivery in words, the same in the History window and in kestrinctl; docs/journal.md has the
// table.
#pragma once

#include <string>

#include "core/journal/LookBack.h"
#include "support/LocalTime.h"

namespace kestrin {

struct RecordWords {
  std::string Due;        ///< when it was due
  std::string Delivered;  ///< when it was; empty when it was not
  std::string Kind;
  std::string Set;      ///< its file's name without the folder
  std::string Outcome;  ///< what became of it
};

RecordWords WordsOf(const PastDelivery& past, const Zone& zone, bool use24Hours);

/// What of an event is to come, as far as a sentence needs it.
struct ComesNext {
  int32 Time = 0;             ///< 0: never
  bool WithTime = true;       ///< Time is more than a bare day
  std::string WhyNever = "";  ///< after "since it "; may be empty
  std::string Unless = "";    ///< after "but ": why it may not ring then; may be empty
};

/// Why the event did or did not ring the last time, and when it rings next, in one sentence. `last`
/// is null when nothing is known.
std::string WhySentence(const std::string& name, const PastDelivery* last, const ComesNext& next,
                        const Zone& zone, bool use24Hours);

}  // namespace kestrin
