#include "handlers/DeliveryWork.h"

#include <optional>
#include <utility>

#include "core/delivery/CommandQueue.h"
#include "core/events/EventSet.h"
#include "core/journal/Journal.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/BackgroundWork.h"
#include "core/loop/Holds.h"
#include "core/loop/MessageCodes.h"
#include "core/ports/Desktop.h"
#include "core/ports/EventActions.h"
#include "core/settings/KestrinSettings.h"
#include "handlers/VisibleText.h"
#include "support/Message.h"

namespace kestrin {

namespace {

constexpr char NoThread[] = "no thread could be had for it";
constexpr char AskFirst[] = "the person is to be asked first";

std::string CommandQuestion(const DeliveryWork& work) {
  return work.Head + "\n\nKestrin is about to execute a shell command: \"" +
         VisibleText(work.Command) + "\".  Should the command be executed?";
}

std::string CommandFailure(const DeliveryWork& work) {
  return work.Head + "\n\nKestrin attempted to execute a shell command: \"" + work.Command +
         "\".  The command failed to execute.";
}

/// The application's own name, or the path where it has none.
std::string NameOf(const DeliveryWork& work, const FileDescription& file) {
  return file.ApplicationName.empty() ? work.File : file.ApplicationName;
}

/// "with the application X", or what stands for it where none is known.
std::string WithApplication(const FileDescription& file) {
  return file.ApplicationName.empty() ? "with its default application"
                                      : "with the application " + file.ApplicationName;
}

std::string FileQuestion(const DeliveryWork& work, const FileDescription& file) {
  const std::string about = work.Head + "\n\nKestrin is about to ";
  if (file.IsApplication)
    return about + "launch the application " + VisibleText(NameOf(work, file)) + ".";
  return about + "open the file \"" + VisibleText(work.File) + "\" " + WithApplication(file) + ".";
}

std::string FileFailure(const DeliveryWork& work, const FileDescription& file) {
  const std::string failed = work.Head + "\n\nKestrin failed to ";
  if (file.IsApplication) return failed + "launch the application  " + NameOf(work, file) + ".";
  return failed + "open the file \"" + work.File + "\" " + WithApplication(file) + ".";
}

Journal* JournalOf(const DeliveredEvent& delivered) {
  return delivered.Record.empty() ? nullptr : delivered.context->journal;
}

void Stage(const DeliveredEvent& delivered, ActStage act, const std::string& why = "") {
  if (Journal* const journal = JournalOf(delivered)) journal->Stage(delivered.Record, act, why);
}

/// Whether this session is the one that carries it out.
bool IsOurs(const DeliveredEvent& delivered) {
  Journal* const journal = JournalOf(delivered);
  return !journal || journal->ClaimAgain(delivered.Record);
}

void Tell(const DeliveredEvent& delivered, std::string text) {
  delivered.context->holds.ProcessHold();
  ShowDeliveryAlert(delivered, std::move(text));
}

void Run(const DeliveredEvent& delivered, const DeliveryWork& work) {
  delivered.context->commands->Run({work.Command, delivered.Record,
                                    [delivered, work] { Tell(delivered, CommandFailure(work)); }});
}

void Fail(const DeliveredEvent& delivered, const DeliveryWork& work, const FileDescription& file,
          const std::string& why) {
  Tell(delivered, FileFailure(work, file));  // whoever dies now has told it
  Stage(delivered, ActStage::Failed, why);
}

void Launch(const DeliveredEvent& delivered, const DeliveryWork& work,
            const FileDescription& file) {
  Context& context = *delivered.context;
  const auto launch = [&desktop = context.desktop, path = work.File] {
    Message answer;
    answer.Set("Launched", desktop.Launch(path));
    return answer;
  };
  const auto then = [delivered, work, file](const Message& answer) {
    if (answer.Get<bool>("Launched").value_or(false))
      Stage(delivered, ActStage::Acted);
    else
      Fail(delivered, work, file, "it could not be opened");
    delivered.context->holds.ProcessDone();
  };
  context.holds.ProcessHold();
  if (context.work->Start("ActOnFile", launch, then)) return;
  Fail(delivered, work, file, NoThread);
  context.holds.ProcessDone();
}

/// `question` in words. While it is open the hold belongs to the set; what runs after it belongs to
/// nobody.
void Ask(const DeliveredEvent& delivered, const DeliveryWork& work, std::string question,
         const std::function<void()>& then) {
  AlertRequest request = AlertAbout(delivered, AlertRole::Question, std::move(question));
  request.Buttons = {"Cancel", "Ok"};
  request.Run = work.Command;
  request.Open = work.File;
  request.HarmlessButton = 0;
  request.DefaultButton = 0;
  delivered.context->holds.ProcessHold();
  request.Done = [delivered, then](int which) {
    if (which == 1 && IsOurs(delivered)) then();
    delivered.context->queue.Post(PROCESS_HOLD_DONE);
  };
  delivered.context->alerts.Show(std::move(request));
}

/// A question of an earlier process that is not asked any more counts as answered.
void CloseQuestion(const DeliveredEvent& delivered) {
  Journal* const journal = JournalOf(delivered);
  const auto record = journal ? journal->Find(delivered.Record) : std::nullopt;
  if (record && record->AlertIs == AlertStage::Shown)
    journal->Answered(delivered.Record, 1, "Ok", ActStage::Queued);
}

void Described(const DeliveredEvent& delivered, const DeliveryWork& work,
               const FileDescription& file) {
  if (!file.Exists) {
    Stage(delivered, ActStage::Failed, "the file was not there");
    Tell(delivered, work.Head + "\n\nKestrin was about to act on a file: \"" + work.File +
                        "\".  Kestrin was unable to locate the file.");
    return;
  }
  if (work.Asks) {
    Stage(delivered, ActStage::Acted);
    Ask(delivered, work, FileQuestion(work, file),
        [delivered, work, file] { Launch(delivered, work, file); });
    return;
  }
  CloseQuestion(delivered);
  if (IsOurs(delivered)) Launch(delivered, work, file);
}

/// Until the disk has answered, the record waits as a command does: it is not lost, and says
/// whether the person is to be asked.
void Describe(const DeliveredEvent& delivered, const DeliveryWork& work) {
  Context& context = *delivered.context;
  const auto describe = [&desktop = context.desktop, path = work.File] {
    const FileDescription file = desktop.Describe(path);
    Message answer;
    answer.Set("Exists", file.Exists);
    answer.Set("IsApplication", file.IsApplication);
    answer.Set("Name", file.ApplicationName);
    return answer;
  };
  const auto then = [delivered, work](const Message& answer) {
    Described(delivered, work,
              {answer.Get<bool>("Exists").value_or(false),
               answer.Get<bool>("IsApplication").value_or(false),
               answer.Get<std::string>("Name").value_or("")});
    delivered.context->holds.ProcessDone();
  };
  Stage(delivered, ActStage::Queued, work.Asks ? AskFirst : "");
  context.holds.ProcessHold();
  if (context.work->Start("ActOnFile", describe, then)) return;
  Fail(delivered, work, {}, NoThread);
  context.holds.ProcessDone();
}

}  // namespace

void AskThenWork(const DeliveredEvent& delivered, const DeliveryWork& work) {
  if (!work.File.empty())
    Describe(delivered, work);
  else if (work.Asks)
    Ask(delivered, work, CommandQuestion(work), [delivered, work] { Run(delivered, work); });
  else
    Run(delivered, work);
}

void WorkOfRecord(Context& context, const std::string& record, const ActionPlan& plan) {
  const DeliveredEvent delivered(context, record);
  if (!IsOurs(delivered)) return;
  const auto known = context.journal ? context.journal->Find(record) : std::nullopt;
  const bool asks =
      known && known->Why == AskFirst && known->AlertIs == AlertStage::None && plan.Run.empty();
  const DeliveryWork work{"Kestrin event:  " + (known ? known->Event.Name : std::string()), asks,
                          plan.Run, plan.Run.empty() ? plan.Open : ""};
  if (!work.Command.empty() || !work.File.empty()) AskThenWork(delivered, work);
}

bool IsTrusted(const EventSet& set) {
  const Context& context = set.GetContext();
  if (set.File().IsDownloaded()) return false;
  if (set.IsUntitled() || set.File().IsOwn() || !context.ownSets) return true;
  // Without the settings' lock, since the set may be locked: the main thread alone changes them.
  return context.settings.IsFileRemembered(set.GetFileName());
}

std::string WhatItCarriesOut(const EventSet& set) {
  std::string lines;
  for (const auto& event : set.Events()) {
    const ActionPlan plan = set.GetContext().actions.PlanOf(*event);
    const std::string& deed = plan.Run.empty() ? plan.Open : plan.Run;
    if (!deed.empty()) lines += "\n\n" + VisibleText(event->GetName()) + ":  " + VisibleText(deed);
  }
  return lines;
}

}  // namespace kestrin
