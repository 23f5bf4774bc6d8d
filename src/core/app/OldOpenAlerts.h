// Open alerts as they were recorded before there was a journal.
#pragma once

#include <vector>

#include "core/events/Context.h"
#include "core/files/RecoveryFolder.h"
#include "core/journal/JournalRecord.h"

namespace kestrin {

/// Takes what is in the old file over into the journal and removes it. The records, which are this
/// process's own and shown by nobody yet.
std::vector<JournalRecord> TakeOverOldAlerts(Context& context, RecoveryFolder& recovery);

}  // namespace kestrin
