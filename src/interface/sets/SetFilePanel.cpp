#include "interface/sets/SetFilePanel.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QStandardPaths>

#include "interface/FilePanels.h"

namespace kestrin {

QStringList SetFileFilters() {
  return {QStringLiteral("Kestrin event sets (*.kestrin)"), QStringLiteral("All files (*)")};
}

QString DefaultSetFolder() {
  const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  return QFileInfo(documents).isDir()
             ? documents
             : QStandardPaths::writableLocation(QStandardPaths::HomeLocation);
}

SetFilePanel::SetFilePanel(QWidget& window, const QString& file, bool remember)
    : QFileDialog(&window, "Save event set"), remember_(new QCheckBox("&Remember for delivery")) {
  setObjectName("savePanel");
  setAcceptMode(AcceptSave);
  setFileMode(AnyFile);
  SetUpFilePanel(*this);
  setNameFilters(SetFileFilters());
  setDefaultSuffix("kestrin");
  const QFileInfo proposed(file);
  setDirectory(proposed.isAbsolute() ? proposed.path() : DefaultSetFolder());
  selectFile(proposed.fileName());
  remember_->setObjectName("rememberForDelivery");
  remember_->setChecked(remember);
  remember_->setToolTip("Its reminders come also while no window shows it");
  if (auto* grid = qobject_cast<QGridLayout*>(layout()))
    grid->addWidget(remember_, grid->rowCount(), 1, 1, -1);
}

bool SetFilePanel::Remember() const { return remember_->isChecked(); }

void SetFilePanel::accept() {
  const QStringList files = selectedFiles();
  if (files.isEmpty() || files.first().isEmpty()) return;
  if (QFileInfo(files.first()).isDir()) {
    QFileDialog::accept();  // goes there
    return;
  }
  emit NameChosen(files.first());
}

void SetFilePanel::CloseAccepted() { done(Accepted); }

}  // namespace kestrin
