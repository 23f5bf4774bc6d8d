#include "interface/sets/SaveNamePanel.h"

#include <QFile>
#include <QFileInfo>
#include <QWidget>

#include "interface/sets/SetFilePanel.h"

namespace kestrin {

SaveNamePanel::SaveNamePanel(QWidget& window, DesktopFilePanels* panels, const QString& file,
                             bool remember)
    : QObject(&window), window_(window), panels_(panels), file_(file), remember_(remember) {}

SaveNamePanel::~SaveNamePanel() { delete own_; }

void SaveNamePanel::Ask() {
  const QFileInfo proposed(file_);
  FilePanelRequest request = RequestFor(
      &window_, "Save event set", proposed.isAbsolute() ? proposed.path() : DefaultSetFolder());
  request.What = FilePanelRequest::Kind::Save;
  request.Name = WithSetSuffix(proposed.fileName()).toStdString();
  request.Filters = {{"Kestrin event sets", "*.kestrin"}, {"All files", "*"}};
  request.BoxLabel = "Remember for delivery";
  request.BoxTicked = remember_;
  desktop_.Ask(panels_, request, [this](const FilePanelAnswer& answer) { Answered(answer); });
}

void SaveNamePanel::Answered(const FilePanelAnswer& answer) {
  switch (answer.What) {
    case FilePanelAnswer::Kind::Unavailable:
      OpenOwn();
      break;
    case FilePanelAnswer::Kind::Cancelled:
      Cancel();
      break;
    case FilePanelAnswer::Kind::Chosen: {
      const QString confirmed = QFile::decodeName(answer.Files.front().c_str());
      remember_ = answer.BoxTicked;
      file_ = WithSetSuffix(confirmed);
      emit NameChosen(file_, file_ == confirmed);
    }
  }
}

void SaveNamePanel::OpenOwn() {
  own_ = new SetFilePanel(window_, file_, remember_);
  connect(own_, &SetFilePanel::NameChosen, this,
          [this](const QString& path) { emit NameChosen(path, false); });
  connect(own_, &SetFilePanel::rejected, this, &SaveNamePanel::Cancel);
  connect(own_, &SetFilePanel::finished, own_, &QObject::deleteLater);
  own_->open();
  Raise();
}

void SaveNamePanel::Raise() {
  if (!own_) return;
  own_->raise();
  own_->activateWindow();
}

bool SaveNamePanel::Remember() const { return own_ ? own_->Remember() : remember_; }

void SaveNamePanel::AskAgain() {
  if (!own_ && !desktop_.IsOpen()) Ask();
}

void SaveNamePanel::CloseAccepted() {
  if (own_) own_->CloseAccepted();
  own_ = nullptr;
  deleteLater();
}

void SaveNamePanel::Cancel() {
  own_ = nullptr;
  deleteLater();
  emit Cancelled();
}

}  // namespace kestrin
