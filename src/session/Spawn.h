// Starting programs that live apart from the application.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace kestrin {

/// Starts the program named by the first argument (a full path) in a session of its own, in the
/// home folder, with standard input empty, signals as at the start of a process and no open files
/// but standard output and error. Returns its process id, to be waited for, or -errno.
pid_t SpawnApart(const std::vector<std::string>& arguments);

/// Returns when the process has ended: its exit status, or 128 and the signal that ended it.
int WaitForEnd(pid_t process);

/// Waits in a thread of its own.
void ReapLater(pid_t process);

/// The user's home folder, or "/" when there is none that exists.
std::string HomeFolder();

}  // namespace kestrin
