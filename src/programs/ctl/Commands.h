// The commands of kestrinctl. Each returns the exit status: 0, or 2 after one line on standard
// error and nothing on standard output.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/delivery/VirtualEngine.h"
#include "core/events/EventSet.h"
#include "core/files/StoredSetFile.h"

namespace kestrin {

inline constexpr int ExitSuccess = 0, ExitUsage = 1, ExitFailure = 2;

struct CtlArguments {
  std::vector<std::string> files;
  bool json = false;
  bool startup = false;
  bool later = false;
  int64 at = 0;    ///< next, show, why
  int64 from = 0;  ///< agenda
  int64 to = 0;
};

int Dump(VirtualEngine& engine, const CtlArguments& arguments);
int Next(VirtualEngine& engine, const CtlArguments& arguments);
int Show(VirtualEngine& engine, const CtlArguments& arguments);
int AgendaCommand(VirtualEngine& engine, const CtlArguments& arguments);
int Check(VirtualEngine& engine, const CtlArguments& arguments);
int Rewrite(VirtualEngine& engine, const CtlArguments& arguments);
int HistoryCommand(VirtualEngine& engine, const CtlArguments& arguments);
/// The second of the files is an event's name.
int Why(VirtualEngine& engine, const CtlArguments& arguments);
/// 1 when a reminder would not reach the person.
int Status(VirtualEngine& engine, const CtlArguments& arguments);

/// "kestrinctl: FILE: FAULT" on standard error, with line breaks and the like made harmless.
void Complain(const std::string& file, const std::string& fault);

/// Adds the set to the open sets, or returns null after complaining.
EventSet* ReadSet(VirtualEngine& engine, const std::string& path, SetFileReport* report);

/// Complains about standard output if `written` is false.
int WrittenOut(bool written);

}  // namespace kestrin
