// Reading a set in and writing it out.
#include <cstdio>

#include "core/events/EventSet.h"
#include "core/files/EventSetFile.h"
#include "core/loop/AppMessages.h"
#include "core/loop/MessageQueue.h"
#include "core/loop/Notices.h"
#include "core/ports/Clock.h"
#include "core/ports/UserInterface.h"
#include "core/settings/KestrinSettings.h"
#include "kestrin/BufferedFile.h"
#include "support/LocalTime.h"
#include "support/Opened.h"
#include "support/WholeFile.h"

namespace kestrin {

namespace {

constexpr char OriginAttribute[] = "user.xdg.origin.url";
constexpr char TypeAttribute[] = "user.mime_type";
constexpr int32 WriteBuffer = 65536;

}  // namespace

void EventSet::Read(ConstructorResult* result, bool* versionOK, SetFileReport* report) {
  *versionOK = true;
  stamp_ = context_.files.Stamp(fileName_);
  *result = ReadSetFile(*this, fileName_, versionOK, report);
  if (!*versionOK)
    context_.notices.ReportError(
        "The EventSet file " + fileName_ +
        " was written by an unknown version of Kestrin.  It was written by version " +
        report->Version + ", and the current version is " + SetFileVersion +
        ".  The set will not be able to be opened until you get a newer version of Kestrin.");
  if (!report->Complaint.empty()) context_.notices.ReportError(report->Complaint);
  origin_ = context_.files.GetAttribute(fileName_, OriginAttribute);
}

bool EventSet::WriteTo(const std::string& path) {
  const AutoLock lock(*this);
  Opened<EndianIndependentFile> file(context_.files, path, OpenWriteOnly | OpenCreate | OpenErase,
                                     WriteBuffer);
  return file.InitCheck() == StatusOk && WriteSetFile(*this, file);
}

bool EventSet::SaveCopy(const std::string& path) {
  std::optional<FileStamp> written;
  return Replace(path, &written);
}

/// `written` tells the new file from all others, also where it came into place but the rest failed.
bool EventSet::Replace(const std::string& path, std::optional<FileStamp>* written) {
  FileDoor& files = context_.files;
  const auto write = [&](const std::string& temporary) {
    if (!WriteTo(temporary)) return false;
    *written = files.Stamp(temporary);
    return true;
  };
  if (ReplaceFile(files, path, write) != StatusOk) return false;
  if (origin_) files.SetAttribute(path, OriginAttribute, *origin_);
  return true;
}

/// A name beside the file that says why it is there and that nobody has taken yet.
std::string EventSet::NameBeside() const {
  std::string stem = fileName_;
  const std::string suffix = SetFileSuffix;
  if (stem.size() > suffix.size() && stem.ends_with(suffix))
    stem.resize(stem.size() - suffix.size());
  const CivilFields now = ToFields(context_.zone.AtMoment(context_.clock.Now()));
  char when[64];
  std::snprintf(when, sizeof when, " (kept apart %04d-%02d-%02d %02d.%02d.%02d",
                static_cast<int>(now.year), static_cast<int>(now.month + 1),
                static_cast<int>(now.day), static_cast<int>(now.hour), static_cast<int>(now.minute),
                static_cast<int>(now.second));
  for (int number = 1;; ++number) {
    std::string name =
        stem + when + (number > 1 ? ", " + std::to_string(number) : "") + ")" + suffix;
    if (context_.files.Kind(name) == FileKind::Missing) return name;
  }
}

bool EventSet::SaveData(SavedBy by) {
  const std::string earlier = fileName_;
  const std::optional<FileStamp> onDisk = context_.files.Stamp(fileName_);
  if (attempted_ && attempted_ == onDisk) stamp_ = attempted_;
  const bool changedByOthers = stamp_ && onDisk && *stamp_ != *onDisk;
  const std::string target = changedByOthers ? NameBeside() : fileName_;
  attempted_.reset();
  if (!Replace(target, &attempted_)) return false;
  if (by == SavedBy::User) {
    context_.files.RemoveAttribute(target, OriginAttribute);
    origin_.reset();
  }
  context_.files.SetAttribute(target, TypeAttribute, SetFileType);
  stamp_ = attempted_ ? attempted_ : context_.files.Stamp(target);
  fileName_ = target;
  modified_ = deliveryModified_ = false;
  delivered_.clear();
  namesInFile_.clear();
  if (untitled_) {
    untitled_ = false;
    DiscardRecovered();
  }
  if (changedByOthers) {
    const AutoLock lock(context_.settings.Protect);
    if (context_.settings.IsFileRemembered(earlier)) context_.settings.RememberSet(fileName_);
    context_.notices.InformUser("The event set \"" + LeafOf(earlier) +
                                "\" was changed by another program since Kestrin read it.  Your "
                                "events were saved beside it as \"" +
                                GetLeaf() + "\", and the set now goes by that name.");
    TellEditors();
  }
  if (window_) window_->SetChanged();
  return true;
}

bool EventSet::SaveAs(const std::string& path, bool remember) {
  const std::string earlier = fileName_;
  const bool hadFile = !untitled_ && path != earlier;
  const bool wasRemembered = Delivers(false);
  if (hadFile && !remember) SaveDeliveriesAlone();
  const std::optional<FileStamp> stamp = stamp_, attempted = attempted_;
  SetFileName(path);
  if (!SaveData()) {
    if (path != earlier) {
      SetFileName(earlier);
      stamp_ = stamp;
      attempted_ = attempted;
    }
    return false;
  }
  Remember(remember);
  if (!hadFile) return true;
  const AutoLock lock(context_.settings.Protect);
  if (remember) {
    context_.settings.ForgetSet(earlier);
  } else if (wasRemembered && context_.settings.IsFileRemembered(earlier)) {
    context_.queue.Post(OpenFiles({earlier}, false));
  }
  return true;
}

void EventSet::Remember(bool remember) {
  const AutoLock lock(context_.settings.Protect);
  if (remember == context_.settings.IsFileRemembered(fileName_)) return;
  if (remember)
    context_.settings.RememberSet(fileName_);
  else
    context_.settings.ForgetSet(fileName_);
  // A set that delivers from now on is like an opened one.
  context_.queue.Post(remember ? SETS_OPENED : EVENT_SETS_CHANGED);
  if (window_) window_->SetChanged();
}

void EventSet::SaveDeliveriesAlone() {
  if (delivered_.empty() || untitled_ || stamp_ != context_.files.Stamp(fileName_)) return;
  ConstructorResult result = ConstructorResult::Success;
  bool versionOK = true;
  SetFileReport report;
  EventSet inFile(context_, fileName_, &result, &versionOK, &report);
  if (result != ConstructorResult::Success || !versionOK) return;
  inFile.MoveOnDelivered(delivered_, context_.clock.Now());
  if (inFile.HasBeenModified() && inFile.SaveData(SavedBy::Itself)) {
    stamp_ = inFile.stamp_;
    delivered_.clear();  // the file knows
  }
}

void EventSet::SetFileName(const std::string& path) {
  if (path == fileName_) return;
  fileName_ = path;
  stamp_.reset();
  attempted_.reset();
  TellEditors();
}

void EventSet::TellEditors() {
  for (const auto& event : events_)
    if (EditorWindow* editor = event->GetWindow()) editor->EventChanged();
}

void EventSet::BecomeRecovered(const std::string& untitledName) {
  recoveredFrom_ = fileName_;
  fileName_ = untitledName;
  untitled_ = true;
  stamp_.reset();
  modified_ = true;
}

void EventSet::DiscardRecovered() {
  if (recoveredFrom_.empty()) return;
  if (recoveredFrom_ != fileName_) context_.files.Remove(recoveredFrom_);
  recoveredFrom_.clear();
}

}  // namespace kestrin
