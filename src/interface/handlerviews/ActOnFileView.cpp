#include "interface/handlerviews/ActOnFileView.h"

#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMimeData>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/events/EventSet.h"
#include "interface/common/DroppedFiles.h"
#include "interface/common/FilePanels.h"
#include "interface/common/ShownText.h"
#include "interface/handlerviews/PathLabel.h"
#include "interface/handlerviews/VerifyBox.h"

namespace kestrin {

ActOnFileView::ActOnFileView(ActOnFileDataHandler& handler)
    : handler_(handler), file_(new PathLabel("fileName")) {
  setAcceptDrops(true);
  auto* select = new QPushButton("&Select file");
  select->setObjectName("selectFile");
  select->setAutoDefault(false);
  connect(select, &QPushButton::clicked, this, &ActOnFileView::OpenPanel);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(file_);
  column->addWidget(select, 0, Qt::AlignLeft);
  column->addWidget(
      NewVerifyBox("verifyFile", "Verify with &user before acting on file", handler_));
  column->addStretch(1);
  ShowFile();
}

/// The panel goes on a later turn: somebody may be walking through all windows to close them.
ActOnFileView::~ActOnFileView() {
  if (!panel_) return;
  panel_->disconnect(this);
  panel_->hide();
  panel_->setParent(nullptr);
  panel_->deleteLater();
}

void ActOnFileView::ShowFile() {
  const QString path = ShownLine(handler_.GetFileName());
  file_->setText("File: " + (path.isEmpty() ? "<none selected>" : path));
}

void ActOnFileView::OpenPanel() {
  if (panel_) {
    panel_->raise();
    panel_->activateWindow();
    return;
  }
  if (desktopPanel_.IsOpen()) return;
  const QString current = QFile::decodeName(handler_.GetFileName());
  desktopPanel_.Ask(handler_.GetAttachedTo()->GetOwner()->GetContext().filePanels,
                    RequestFor(this, "Select file", current),
                    [this](const FilePanelAnswer& answer) {
                      if (answer.What == FilePanelAnswer::Kind::Unavailable) OpenOwnPanel();
                      if (answer.What == FilePanelAnswer::Kind::Chosen)
                        Choose(answer.Files.front());
                    });
}

void ActOnFileView::OpenOwnPanel() {
  panel_ = new QFileDialog(this, "Select file");
  panel_->setObjectName("filePanel");
  panel_->setAttribute(Qt::WA_DeleteOnClose);
  panel_->setFileMode(QFileDialog::ExistingFile);
  SetUpFilePanel(*panel_);
  const QFileInfo current(QFile::decodeName(handler_.GetFileName()));
  if (!current.filePath().isEmpty() && current.dir().exists()) {
    panel_->setDirectory(current.dir());
    if (current.exists()) panel_->selectFile(current.fileName());
  }
  connect(panel_, &QFileDialog::fileSelected, this, [this](const QString& path) {
    Choose(QFile::encodeName(QFileInfo(path).absoluteFilePath()).toStdString());
  });
  panel_->show();
}

void ActOnFileView::Choose(const std::string& path) {
  handler_.SetFileName(path.c_str());
  ShowFile();
}

void ActOnFileView::dragEnterEvent(QDragEnterEvent* event) {
  if (LocalFiles(*event->mimeData()).size() == 1) AcceptAsCopy(*event);
}

void ActOnFileView::dropEvent(QDropEvent* event) {
  const std::vector<std::string> files = LocalFiles(*event->mimeData());
  if (files.size() != 1) return;
  AcceptAsCopy(*event);
  Choose(files.front());
}

}  // namespace kestrin
