// The application's messages that have fields, each made in one place; MessageCodes.h says what
// they mean.
#pragma once

#include <string>
#include <vector>

#include "core/loop/MessageCodes.h"

namespace kestrin {

/// QUIT_REQUESTED: an end only while nothing holds the application.
Message QuitIfIdle();
/// QUIT_REQUESTED: a quit that has begun goes on, unless it was given up since.
Message QuitOnceMore(bool ifIdle);

/// PREWARN_ALERT_REPLY or NAG_ALERT_REPLY about that occurrence of the event; `which` button.
Message AlertReply(MessageCode code, uint64 set, uint64 event, int32 occurrence, int which);

/// OPEN_FILES, with windows or without.
Message OpenFiles(const std::vector<std::string>& paths, bool window = true);

/// HELP_REQUESTED for a chapter: the id of a heading of the page.
Message HelpAt(const std::string& chapter);

/// ERROR_FOUND: reported on a later turn.
Message ErrorFound(const std::string& text);

/// SET_DISCARDED.
Message SetDiscarded(const std::string& path);

}  // namespace kestrin
