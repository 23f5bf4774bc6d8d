// The process-wide flags that select the role in which the program runs.
#pragma once

#include <string>

namespace kestrin {

extern bool BackgroundOnlyStartup;  ///< started with "-background": hand the time over and leave
extern bool DeliverOnly;            ///< woken by the background deliverer: deliver and leave
extern bool AlreadyToldUser;        ///< that the background deliverer could not be started
extern bool FullQuitProcess;        ///< the background deliverer is to quit too
extern bool QuitProcess;            ///< a quit is under way
extern std::string KestrinDir;      ///< the folder of the application's executable

/// Everything process-wide (flags, settings, open sets, handler table) as at the start; for tests.
void ResetProcessState();

}  // namespace kestrin
