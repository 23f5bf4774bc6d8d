#include "interface/sets/OpenFilePanel.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "core/events/Context.h"
#include "core/events/EventSet.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/AppMessages.h"
#include "core/loop/Holds.h"
#include "interface/common/FilePanels.h"
#include "interface/sets/EventSetWindow.h"
#include "interface/sets/SetFilePanel.h"

namespace kestrin {

namespace {

/// Beside the set that the person works with.
QString StartFolder() {
  const auto* window = qobject_cast<EventSetWindow*>(QApplication::activeWindow());
  const EventSet* set = window ? window->GetEventSet() : nullptr;
  if (!set || set->IsUntitled()) return DefaultSetFolder();
  return QFileInfo(QFile::decodeName(set->GetFileName().c_str())).path();
}

}  // namespace

void PostOpenFiles(Context& context, const std::vector<std::string>& files) {
  context.queue.Post(OpenFiles(files));
}

FilePanelRequest RequestForSets() {
  FilePanelRequest request =
      RequestFor(QApplication::activeWindow(), "Open event sets", StartFolder());
  request.What = FilePanelRequest::Kind::OpenSeveral;
  request.Filters = {{"Kestrin event sets", "*.kestrin"}, {"All files", "*"}};
  return request;
}

OpenFilePanel::OpenFilePanel(Context& context)
    : QFileDialog(nullptr, "Open event sets"), context_(context) {
  setObjectName("openPanel");
  setFileMode(ExistingFiles);
  SetUpFilePanel(*this);
  setNameFilters(SetFileFilters());
  setDirectory(StartFolder());
  context_.holds.ProcessHold();
}

OpenFilePanel::~OpenFilePanel() {
  if (holds_) context_.holds.ProcessDone();
}

void OpenFilePanel::Ask() {
  QWidget* const active = QApplication::activeWindow();
  if (active && active->window() != this) asker_ = active;
  show();
  raise();
  activateWindow();
}

void OpenFilePanel::accept() {
  const QStringList files = selectedFiles();
  const auto missing = std::find_if(files.begin(), files.end(),
                                    [](const QString& file) { return !QFileInfo::exists(file); });
  if (missing == files.end()) {
    QFileDialog::accept();
    return;
  }
  AlertRequest request;
  request.Text = "There is no file called \"" + missing->toStdString() + "\".";
  request.Role = AlertRole::Prompt;
  context_.alerts.Show(std::move(request));
}

void OpenFilePanel::done(int result) {
  QFileDialog::done(result);
  if (!holds_) return;
  if (asker_ && asker_->isVisible()) asker_->activateWindow();
  if (result == Accepted) {
    std::vector<std::string> files;
    for (const QString& file : selectedFiles())
      files.push_back(QFile::encodeName(file).toStdString());
    PostOpenFiles(context_, files);
  }
  holds_ = false;
  context_.holds.ProcessDone();
  deleteLater();
}

}  // namespace kestrin
