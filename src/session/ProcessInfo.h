// How this process was started, and the folders of the person it works for.
#pragma once

#include <string>
#include <vector>

namespace kestrin {

/// The folder of the real executable, links followed; empty when the system does not say.
std::string ExecutableFolder();

/// The folders of the desktop's standard, read from the environment at each call. A value that is
/// not absolute counts as unset.
std::string ConfigFolder();
std::string DataFolder();
std::string StateFolder();
/// Empty when there is none that belongs to this user alone.
std::string RuntimeFolder();
/// DataFolder() first, then the system's.
std::vector<std::string> DataFolders();

/// The arguments, without the program's own name and without what a session manager adds when it
/// starts a program of an earlier session again: those name no files.
std::vector<std::string> ArgumentsOf(int argc, char** argv);

/// Whether the bus started this process. A shell that the bus once started, and a command typed
/// there, carry the same marks in the environment, but have a terminal.
bool StartedByBus();

/// What lets a window take the focus for the click that started this process; may be empty.
/// Toolkits take it out of the environment, so read it before one is built.
std::string ActivationToken();

/// Takes the bus's marks out of the environment, so that no child takes them for its own. The token
/// stays for the toolkit, which takes it out itself. No other thread may use the environment
/// meanwhile.
void ForgetHowStarted();

}  // namespace kestrin
