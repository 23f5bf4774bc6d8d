#include "interface/sets/SetFilePanel.h"

#include <QCheckBox>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
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

/// A dot within a name begins no suffix: only the sets' own counts.
QString WithSetSuffix(const QString& name) {
  const QString suffix = QString::fromLatin1(SetFileSuffix);
  return name.endsWith(suffix) ? name : name + suffix;
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
  if (auto* grid = qobject_cast<QGridLayout*>(layout())) {
    const int row = grid->rowCount();
    grid->addWidget(remember_, row, 1);
    auto* newFolder = new QPushButton("New &folder…");
    newFolder->setObjectName("newFolder");
    newFolder->setAutoDefault(false);
    connect(newFolder, &QPushButton::clicked, this, &SetFilePanel::AskForFolder);
    grid->addWidget(newFolder, row, 2);
  }
}

/// The toolkit's own button would wait in an event loop when it fails.
void SetFilePanel::AskForFolder() {
  auto* question = new QInputDialog(this);
  question->setAttribute(Qt::WA_DeleteOnClose);
  question->setObjectName("newFolderName");
  question->setWindowTitle("New folder");
  question->setLabelText("&Name of the new folder:");
  connect(question, &QInputDialog::textValueSelected, this, &SetFilePanel::MakeFolder);
  question->open();
}

void SetFilePanel::MakeFolder(const QString& name) {
  QDir here = directory();
  const bool isPlain = !name.isEmpty() && !name.contains(u'/') && name != u"." && name != u"..";
  if (isPlain && (here.mkdir(name) || here.exists(name))) {
    setDirectory(here.filePath(name));
    return;
  }
  auto* refusal = new QMessageBox(QMessageBox::Warning, "New folder",
                                  "The folder \"" + name + "\" could not be made in \"" +
                                      QDir::toNativeSeparators(here.path()) + "\".",
                                  QMessageBox::Ok, this);
  refusal->setAttribute(Qt::WA_DeleteOnClose);
  refusal->setTextFormat(Qt::PlainText);
  refusal->open();
}

bool SetFilePanel::Remember() const { return remember_->isChecked(); }

/// The toolkit takes quotation marks for the bounds of several names; here there is one.
QString SetFilePanel::ChosenFile() const {
  const auto* edit = findChild<QLineEdit*>("fileNameEdit");
  const QString typed = edit ? edit->text() : QString();
  const QString file =
      typed.contains(u'"') ? directory().absoluteFilePath(typed) : selectedFiles().value(0);
  return file.isEmpty() || QFileInfo(file).isDir() ? file : WithSetSuffix(file);
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
