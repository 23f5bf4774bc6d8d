#include "interface/sets/SetFilePanel.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QLineEdit>
#include <QStandardPaths>

#include "core/files/EventSetFile.h"
#include "interface/common/FilePanels.h"

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

/// The toolkit takes quotation marks for the bounds of several names; here there is one. A dot
/// within a name begins no suffix: only the sets' own counts.
QString SetFilePanel::ChosenFile() const {
  const auto* edit = findChild<QLineEdit*>("fileNameEdit");
  const QString typed = edit ? edit->text() : QString();
  const QString file =
      typed.contains(u'"') ? directory().absoluteFilePath(typed) : selectedFiles().value(0);
  const QString suffix = QString::fromLatin1(SetFileSuffix);
  const bool isWhole = file.isEmpty() || file.endsWith(suffix) || QFileInfo(file).isDir();
  return isWhole ? file : file + suffix;
}

void SetFilePanel::accept() {
  const QString file = ChosenFile();
  if (file.isEmpty()) return;
  if (QFileInfo(file).isDir()) {
    QFileDialog::accept();  // goes there
    return;
  }
  emit NameChosen(file);
}

void SetFilePanel::CloseAccepted() { done(Accepted); }

}  // namespace kestrin
