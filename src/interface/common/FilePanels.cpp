#include "interface/common/FilePanels.h"

#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <utility>

#include "interface/common/Frames.h"

namespace kestrin {

void SetUpFilePanel(QFileDialog& panel) {
  panel.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontConfirmOverwrite |
                   QFileDialog::ReadOnly);
  panel.resize(panel.size().boundedTo(LargestOn(*panel.screen())));
  // Screen readers are given the choice as the name of such a menu.
  for (const auto& [name, purpose] :
       {std::pair{"lookInCombo", "Folder"}, {"fileTypeCombo", "File type"}})
    if (auto* menu = panel.findChild<QComboBox*>(name)) menu->setAccessibleDescription(purpose);
}

void DesktopPanel::Ask(DesktopFilePanels* panels, const FilePanelRequest& request,
                       DesktopFilePanels::Done done) {
  Withdraw();
  if (!panels) {
    FilePanelAnswer answer;
    answer.What = FilePanelAnswer::Kind::Unavailable;
    done(answer);
    return;
  }
  panels_ = panels;
  number_ = panels->Ask(request, [this, done = std::move(done)](const FilePanelAnswer& answer) {
    number_ = 0;
    done(answer);
  });
}

void DesktopPanel::Withdraw() {
  if (number_ != 0) panels_->Withdraw(std::exchange(number_, 0));
}

FilePanelRequest RequestFor(const QWidget* widget, const QString& title, const QString& file) {
  FilePanelRequest request;
  request.Title = title.toStdString();
  const QFileInfo at(file);
  if (at.isAbsolute()) request.Folder = PathBytes(at.isDir() ? at.filePath() : at.path());
  if (widget && QGuiApplication::platformName() == "xcb")
    request.ParentWindow = "x11:" + QString::number(widget->window()->winId(), 16).toStdString();
  return request;
}

std::string PathBytes(const QString& path) { return QFile::encodeName(path).toStdString(); }

}  // namespace kestrin
