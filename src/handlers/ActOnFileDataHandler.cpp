#include "handlers/ActOnFileDataHandler.h"

#include <memory>
#include <utility>

#include "core/events/EventSet.h"
#include "core/ports/Desktop.h"
#include "handlers/DeliveryWork.h"

namespace kestrin {

namespace {

Desktop& DesktopOf(const Event& event) { return event.GetOwner()->GetContext().desktop; }

/// "with the application X", or what stands for it where none is known.
std::string WithApplication(const FileDescription& file) {
  return file.ApplicationName.empty() ? "with its default application"
                                      : "with the application " + file.ApplicationName;
}

std::string QuestionText(const Event& event, bool missed, const char* path,
                         const FileDescription& file) {
  if (file.IsApplication) {
    const char* const application =
        file.ApplicationName.empty() ? path : file.ApplicationName.c_str();
    return MessageAlertText(event, missed,
                            {"\n\nKestrin is about to launch the application ", application, "."});
  }
  const std::string with = WithApplication(file);
  return MessageAlertText(
      event, missed, {"\n\nKestrin is about to open the file \"", path, "\" ", with.c_str(), "."});
}

std::string FailureText(const Event& event, bool missed, const char* path,
                        const FileDescription& file) {
  if (file.IsApplication) {
    const char* const application =
        file.ApplicationName.empty() ? path : file.ApplicationName.c_str();
    return MessageAlertText(event, missed,
                            {"\n\nKestrin failed to launch the application  ", application, "."});
  }
  const std::string with = WithApplication(file);
  return MessageAlertText(
      event, missed, {"\n\nKestrin failed to open the file \"", path, "\" ", with.c_str(), "."});
}

}  // namespace

void ActOnFileDataHandler::SetFileName(const char* path) {
  content_.SetText(path);
  Changed();
}

bool ActOnFileDataHandler::MustAsk() const { return GetVerify() || IsDownloaded(*GetAttachedTo()); }

bool ActOnFileDataHandler::NeedsScreen() const {
  if (content_.Text.Empty()) return false;
  return MustAsk() || !DesktopOf(*GetAttachedTo()).Describe(GetFileName()).Exists;
}

void ActOnFileDataHandler::DealWithEvent(bool missed) {
  if (content_.Text.Empty()) return;
  const Event& event = *GetAttachedTo();
  const char* path = GetFileName();
  const FileDescription file = DesktopOf(event).Describe(path);
  if (!file.Exists) {
    TellOfDelivery(event, missed,
                   {"\n\nKestrin was about to act on a file: \"", path,
                    "\".  Kestrin was unable to locate the file."});
    return;
  }
  DeliveryWork work;
  work.ThreadName = "ActOnFile";
  if (MustAsk()) work.Question = QuestionText(event, missed, path, file);
  work.FailureText = FailureText(event, missed, path, file);
  work.File = path;
  work.Run = [target = std::string(path)](Desktop& desktop) { return desktop.Launch(target); };
  AskThenWork(DeliveredEvent(event, missed), std::move(work));
}

EventAddOnData* DefHandActOnFile_NewAddOnData(Event* event, EndianIndependentFile* file, bool* ok) {
  auto data = std::make_unique<ActOnFileDataHandler>(event);
  *ok = !file || data->ReadData(*file);
  return data.release();
}

}  // namespace kestrin
