#include "core/app/SetOpening.h"

#include <cstdio>

#include "core/delivery/ClockHealing.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/files/StoredSetFile.h"
#include "core/loop/MessageQueue.h"
#include "core/loop/Notices.h"
#include "core/ports/UserInterface.h"
#include "core/settings/KestrinSettings.h"

namespace kestrin {

namespace {

constexpr char SampleName[] = "Sample";

}  // namespace

std::string SetOpening::GetNextUntitledWindowName() {
  return "Untitled event set " + std::to_string(nextUntitled_++);
}

void SetOpening::ReportOpening(ConstructorResult result, const std::string& path) {
  switch (result) {
    case ConstructorResult::Success:
      break;
    case ConstructorResult::CouldNotOpen:
      context_.notices.ReportCompoundError("Kestrin: Attempt to open event set ", path, " failed.");
      break;
    case ConstructorResult::CouldNotRead:
      context_.notices.ReportCompoundError(
          "Kestrin: Attempt to read event set ", path,
          " failed because a file error occurred.  The file may be corrupted.");
      break;
    default:
      context_.notices.ReportCompoundError("Kestrin: Attempt to create event set ", path,
                                           " failed because of an unknown error.");
  }
}

void SetOpening::OpenSet(const std::string& path, bool openWindow) {
  if (path.empty()) {
    context_.openSets.Sets.push_back(NewSet(context_, GetNextUntitledWindowName()));
    if (openWindow) Show(*context_.openSets.Sets.back());
    return;
  }
  const std::string file = context_.files.Canonical(path);
  if (EventSet* const open = context_.openSets.FindFile(file)) {
    if (openWindow) Show(*open), Used(*open), TakeUpCopyOf(file);
    return;
  }
  // A person who asks for a file gets an answer each time.
  EventSet* const set = LoadSet(file, !openWindow && absent_.Contains(file));
  if (!set) return;
  absent_.Forget(file);
  if (openWindow) set->OpenWindow(), Used(*set), TakeUpCopyOf(file);
  // What was due when the set was opened meets the rule for missed events.
  if (running_) context_.queue.Post(SETS_OPENED);
}

/// A set may deliver because it is shown: a new window is like an opened set.
void SetOpening::Show(EventSet& set) {
  if (!set.GetWindow() && running_) context_.queue.Post(SETS_OPENED);
  set.OpenWindow();
}

void SetOpening::Used(const EventSet& set) {
  if (!set.IsUntitled()) context_.settings.UsedSet(set.GetFileName());
}

void SetOpening::ShowSample() {
  if (EventSet* const open = context_.openSets.FindFile(SampleName)) {
    Show(*open);
    return;
  }
  std::unique_ptr<EventSet> sample = NewSet(context_, SampleName);
  addSampleEvents_(*sample);
  context_.openSets.Sets.push_back(std::move(sample));
  Show(*context_.openSets.Sets.back());
}

EventSet* SetOpening::LoadSet(const std::string& file, bool quietly) {
  SetFileReport known;
  known.IsKnown = quietly;
  SetReading reading = ReadSet(context_, file, known);
  if (!reading.Set && !quietly)
    std::fprintf(stderr, "kestrin: %s: %s\n", file.c_str(), reading.Report.Fault.c_str());
  if (!quietly) ReportOpening(reading.Result, file);
  if (!reading.Set) return nullptr;
  HealTimes(*reading.Set, isPutOff_);
  context_.openSets.Sets.push_back(std::move(reading.Set));
  return context_.openSets.Sets.back().get();
}

void SetOpening::HealOpenSets() {
  const AutoLock open(context_.openSets.Protect);
  for (const auto& set : context_.openSets.Sets) HealTimes(*set, isPutOff_);
}

void SetOpening::ReadSelectedSets() {
  std::vector<std::string>& names = context_.settings.SetFileNames;
  for (size_t i = 0; i < names.size();) {
    names[i] = context_.files.Canonical(names[i]);
    const std::string name = names[i];
    OpenSet(name, false);
    if (context_.openSets.FindFile(name) || absent_.StaysRemembered(name))
      ++i;
    else
      ForgetGone(name);
  }
  absent_.Write();
}

void SetOpening::ForgetGone(const std::string& path) {
  context_.settings.ForgetSet(path);
  context_.notices.ReportCompoundError("The event set ", path,
                                       " has been missing for more than a day.  Kestrin does not "
                                       "remember it any longer.");
}

bool SetOpening::AnyWindow() const {
  const AutoLock open(context_.openSets.Protect);
  for (const auto& set : context_.openSets.Sets)
    if (set->GetWindow()) return true;
  return false;
}

void SetOpening::OpenRecovered() {
  for (const RecoveredCopy& copy : recovery_.Copies())
    if (EventSet* const set = TakeUp(copy)) Show(*set);
}

/// The copy of a set that has a file is that set with unsaved edits. One that somebody has edited
/// since waits for the next start.
EventSet* SetOpening::TakeUp(const RecoveredCopy& copy) {
  if (copy.File.empty()) return TakeUpUntitled(copy);
  EventSet* set = context_.openSets.FindFile(copy.File);
  if (!set) set = LoadSet(copy.File, true);
  if (!set) return TakeUpUntitled(copy);
  const bool isEdited = set->HasBeenModified() && !set->OnlyDeliveriesChanged();
  if (!isEdited && recovery_.IsInFile(copy))
    recovery_.Discard(copy);
  else if (!isEdited && set->File().TakeUnsaved(copy.Path, copy.Digest))
    recovery_.TakeOver(copy, *set);
  return set;
}

EventSet* SetOpening::TakeUpUntitled(const RecoveredCopy& copy) {
  EventSet* const set = LoadSet(copy.Path);
  if (!set) return nullptr;
  set->File().BecomeRecovered(GetNextUntitledWindowName());
  recovery_.TakeOver(copy, *set);
  return set;
}

void SetOpening::TakeUpCopyOf(const std::string& file) {
  for (const RecoveredCopy& copy : recovery_.Copies())
    if (copy.File == file) TakeUp(copy);
}

void SetOpening::OpenUserInterface() {
  const int32 handling = context_.settings.SelectedSetHandling;
  if (handling < ShowNever && (handling == ShowAlways || !AnyWindow()))
    for (const std::string& name : context_.settings.SetFileNames)
      if (EventSet* const set = context_.openSets.FindFile(name)) Show(*set);
  OpenRecovered();
  if (!AnyWindow() && context_.settings.WhenNoSetIsOpen == ShowLastUsed)
    if (const std::string last = LastUsed(); !last.empty()) OpenSet(last, true);
  if (!AnyWindow()) OpenSet("", true);
}

/// A file that is gone, or on a disk that is not there, is passed over.
std::string SetOpening::LastUsed() const {
  for (const std::string& path : context_.settings.RecentSets)
    if (context_.files.Kind(path) == FileKind::Regular) return path;
  return "";
}

void SetOpening::Activate() {
  for (const auto& set : context_.openSets.Sets)
    if (set->GetWindow()) {
      set->OpenWindow();
      return;
    }
  OpenUserInterface();
}

void SetOpening::RevertToSaved(const std::string& path) {
  OpenSets& open = context_.openSets;
  EventSet* const set = open.FindFile(path);
  if (!set) return;
  const uint64 handle = set->GetHandle();
  SetWindow* const window = set->GetWindow();
  if (window) window->CloseNow();  // which may be the end of the set
  open.Destroy(open.FindHandle(handle));
  EventSet* const fresh = LoadSet(path);
  if (!fresh) return;
  if (window) fresh->OpenWindow();
}

}  // namespace kestrin
