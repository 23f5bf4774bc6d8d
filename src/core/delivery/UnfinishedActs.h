// What earlier processes began and did not end: a command that waited is carried out, everything
// else is not done again unasked, and the person is told.
#pragma once

#include <string>
#include <vector>

#include "core/events/Context.h"
#include "core/journal/JournalRecord.h"

namespace kestrin {

/// What earlier processes have left, in order. At a start, before anybody adopts a record for its
/// alert: whose act it was cannot be told any more then.
std::vector<JournalRecord> FindUnfinishedActs(const Context& context);
/// Once the sets have been read. Main thread, with no set locked.
void GoOnWithUnfinishedActs(Context& context, const std::vector<JournalRecord>& unfinished);

/// The alert about an act that has failed, with the button that tries again; its answer is written
/// down in the record `alert`, which has the text where it was shown before.
void ShowFailure(Context& context, const JournalRecord& act, const JournalRecord& alert);
/// Whether it is such a one.
bool IsFailureAlert(const KeptAlert& alert);
/// What its button does for that event; `alertRecord`: of the journal, as for ShowFailure.
void TryAgain(Context& context, const std::string& alertRecord, uint64 set, uint64 event);

}  // namespace kestrin
