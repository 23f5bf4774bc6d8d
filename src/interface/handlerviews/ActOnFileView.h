// Chooses the file that is started or opened, and whether that is asked about.
#pragma once

#include <QPointer>
#include <QWidget>
#include <string>

#include "handlers/ActOnFileDataHandler.h"
#include "interface/common/FilePanels.h"

class QFileDialog;

namespace kestrin {

class PathLabel;

/// A file that is dropped on it is chosen too.
class ActOnFileView final : public QWidget {
  Q_OBJECT

 public:
  explicit ActOnFileView(ActOnFileDataHandler& handler);
  ~ActOnFileView() override;

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void OpenPanel();
  void OpenOwnPanel();
  void Choose(const std::string& path);
  void ShowFile();

  ActOnFileDataHandler& handler_;
  PathLabel* file_;
  DesktopPanel desktopPanel_;
  QPointer<QFileDialog> panel_;
};

}  // namespace kestrin
