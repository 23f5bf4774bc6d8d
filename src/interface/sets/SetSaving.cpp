#include "interface/sets/SetSaving.h"

#include <QApplication>
#include <QFile>
#include <QWidget>
#include <cstdio>
#include <utility>

#include "core/app/DocumentApp.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/AppMessages.h"
#include "core/loop/Notices.h"
#include "core/settings/KestrinSettings.h"
#include "handlers/DeliveryWork.h"
#include "interface/sets/SaveNamePanel.h"
#include "interface/sets/StatusLine.h"
#include "support/FileDoor.h"

namespace kestrin {

namespace {

enum SaveAnswer { DoNotSave = 0, Cancel = 1, SaveChanges = 2 };
enum ReplaceAnswer { KeepFile = 0, ReplaceFile = 1 };

}  // namespace

SetSaving::SetSaving(EventSet& set, DocumentApp& application, QWidget& window)
    : QObject(&window), set_(&set), application_(application), window_(window) {}

void SetSaving::Forget() {
  set_ = nullptr;
  delete panel_;
}

void SetSaving::Save() {
  if (!set_) return;
  if (set_->IsUntitled()) {
    OpenPanel(true);
    return;
  }
  set_->CommitEdits();
  Done(set_->SaveData());
}

void SetSaving::SaveAs() {
  if (!set_) return;
  OpenPanel(set_->IsUntitled() || IsRemembered(*set_));
}

void SetSaving::RememberOrForget() {
  if (!set_) return;
  if (set_->IsUntitled())
    OpenPanel(true);
  else
    RememberIfTrusted();
}

/// A set from elsewhere says once what it will carry out unasked.
void SetSaving::RememberIfTrusted() {
  const bool remembers = !IsRemembered(*set_);
  const std::string deeds =
      remembers && !IsTrusted(*set_) ? WhatItCarriesOut(*set_) : std::string();
  if (deeds.empty()) {
    set_->Remember(remembers);
    return;
  }
  AlertRequest request;
  request.Text = "The event set \"" + set_->GetLeaf() +
                 "\" was not saved here.  Once it is remembered for delivery, Kestrin carries out "
                 "what is due in it without asking:" +
                 deeds;
  request.Buttons = {"Cancel", "Remember"};
  request.HarmlessButton = request.DefaultButton = 0;
  request.Kind = AlertKind::Warning;
  request.Role = AlertRole::Prompt;
  request.Done = [saving = QPointer(this)](int which) {
    if (saving && saving->set_ && which == 1) saving->set_->Remember(true);
  };
  set_->GetContext().alerts.Show(std::move(request));
}

bool SetSaving::MayClose() {
  if (!set_) return true;
  set_->CommitEdits();
  if (!set_->HasBeenModified()) return true;
  // A set that no person has touched, the sample, has nothing that could be lost.
  if (set_->OnlyDeliveriesChanged() && (set_->IsUntitled() || SaveDeliveries())) return true;
  AskToSave();
  return false;
}

/// A set that lives on without its window is saved once its alerts are closed.
bool SetSaving::SaveDeliveries() {
  return set_->DeliversUnseen() || set_->SaveData(EventSet::SavedBy::Itself);
}

void SetSaving::AskToSave() {
  AlertDesk& alerts = set_->GetContext().alerts;
  if (alerts.RaisePrompt(set_->GetHandle())) return;
  AlertRequest request;
  request.Text = "Save changes to the document \"" + set_->GetLeaf() + "\"?";
  request.Buttons = {"Don't save", "Cancel", "Save"};
  request.HarmlessButton = Cancel;
  request.DefaultButton = SaveChanges;
  request.Kind = AlertKind::Question;
  request.Role = AlertRole::Prompt;
  request.Set = set_->GetHandle();
  request.Done = [saving = QPointer(this)](int which) {
    if (saving) saving->Answered(which);
  };
  alerts.Show(std::move(request));
}

void SetSaving::Answered(int which) {
  if (!set_) return;
  if (which == DoNotSave) {
    Discard();
  } else if (which == SaveChanges) {
    quitOnceSaved_ = true;
    Save();
  } else {
    GiveUpClosing();
  }
}

/// What deliveries changed stays; a set that goes on without its window is read again.
void SetSaving::Discard() {
  set_->File().DiscardRecovered();
  if (!set_->IsUntitled()) {
    set_->SaveDeliveriesAlone();
    set_->GetContext().queue.Post(SetDiscarded(set_->GetFileName()));
  }
  AllowClosing();
}

void SetSaving::OpenPanel(bool remember) {
  if (panel_) {
    panel_->Raise();
    return;
  }
  const QString file = QFile::decodeName(QByteArray::fromStdString(set_->GetFileName()));
  asker_ = QApplication::activeWindow();
  panel_ = new SaveNamePanel(window_, set_->GetContext().filePanels, file, remember);
  connect(panel_, &SaveNamePanel::NameChosen, this, [this](const QString& path, bool confirmed) {
    NameChosen(set_->GetContext().files.Canonical(PathBytes(path)), confirmed);
  });
  connect(panel_, &SaveNamePanel::Cancelled, this, &SetSaving::PanelCancelled);
  panel_->Ask();
}

void SetSaving::NameChosen(const std::string& file, bool confirmed) {
  const bool isOwn = !set_->IsUntitled() && file == set_->GetFileName();
  const bool exists = set_->GetContext().files.Kind(file) != FileKind::Missing;
  if (IsAnothers(file))
    Refuse(file);
  else if (!isOwn && !confirmed && exists)
    AskToReplace(file);
  else
    SaveInto(file);
}

bool SetSaving::IsAnothers(const std::string& file) const {
  const AutoLock open(set_->GetContext().openSets.Protect);
  const EventSet* const holder = set_->GetContext().openSets.FindFile(file);
  return holder && holder != set_;
}

void SetSaving::Refuse(const std::string& file) {
  AlertRequest request;
  request.Text = "\"" + EventSet::LeafOf(file) +
                 "\" is the file of another event set that Kestrin has loaded.  Please choose "
                 "another name.";
  request.Kind = AlertKind::Warning;
  request.Role = AlertRole::Prompt;
  request.Done = [panel = panel_](int) {
    if (panel) panel->AskAgain();
  };
  set_->GetContext().alerts.Show(std::move(request));
}

void SetSaving::AskToReplace(const std::string& file) {
  AlertRequest request;
  request.Text = "There already is a file called \"" + EventSet::LeafOf(file) +
                 "\" there.  Replacing it destroys what it holds.";
  request.Buttons = {"Cancel", "Replace"};
  request.HarmlessButton = request.DefaultButton = KeepFile;
  request.Kind = AlertKind::Warning;
  request.Role = AlertRole::Prompt;
  request.Done = [this, panel = panel_, file](int which) {
    // With the panel, who asked has gone.
    if (!panel) return;
    if (which != ReplaceFile)
      panel->AskAgain();
    else if (IsAnothers(file))
      Refuse(file);
    else
      SaveInto(file);
  };
  set_->GetContext().alerts.Show(std::move(request));
}

void SetSaving::SaveInto(const std::string& file) {
  const bool remember = panel_->Remember();
  const QPointer<SaveNamePanel> panel = std::exchange(panel_, nullptr);
  panel->CloseAccepted();
  ReturnFocus();
  set_->CommitEdits();
  Done(set_->SaveAs(file, remember));
}

void SetSaving::PanelCancelled() {
  panel_ = nullptr;
  ReturnFocus();
  if (quitOnceSaved_) GiveUpClosing();
}

/// An editor asks through its set's window, which the panel belongs to.
void SetSaving::ReturnFocus() {
  if (asker_ && asker_->isVisible()) asker_->activateWindow();
  asker_ = nullptr;
}

void SetSaving::Done(bool saved) {
  if (!saved) {
    std::fprintf(stderr, "kestrin: %s was not saved: %s\n", set_->GetFileName().c_str(),
                 set_->WhyNotSaved().c_str());
    set_->GetContext().notices.ReportCompoundError(
        "There was an error attempting to save the event set \"", set_->GetLeaf(),
        "\"." + Because(set_->WhyNotSaved()));
    if (quitOnceSaved_) GiveUpClosing();
    return;
  }
  {
    const AutoLock settings(set_->GetContext().settings.Protect);
    set_->GetContext().settings.UsedSet(set_->GetFileName());
  }
  if (std::exchange(quitOnceSaved_, false)) {
    AllowClosing();
  }
}

/// A quit that waited for this window goes on.
void SetSaving::AllowClosing() {
  MessageQueue& queue = set_->GetContext().queue;
  const bool quits = application_.IsQuitInProgress();
  emit CloseAllowed();
  if (!quits) return;
  queue.Post(QuitOnceMore(false));
}

/// And with it a quit that waits for this window.
void SetSaving::GiveUpClosing() {
  quitOnceSaved_ = false;
  application_.CancelQuitProcess();
}

}  // namespace kestrin
