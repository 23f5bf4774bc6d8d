// What all file panels have in common.
#pragma once

#include <QString>
#include <string>

#include "core/ports/FilePanels.h"

class QFileDialog;
class QWidget;

namespace kestrin {

/// The toolkit's own panel, which changes no files and whose every control says what it is for. Its
/// own questions, and what else it can do to files, would wait in event loops of their own.
void SetUpFilePanel(QFileDialog& panel);

/// At most one of the desktop's panels, which goes with this object.
class DesktopPanel {
 public:
  DesktopPanel() = default;
  DesktopPanel(const DesktopPanel&) = delete;
  DesktopPanel& operator=(const DesktopPanel&) = delete;
  ~DesktopPanel() { Withdraw(); }

  /// Withdraws an earlier one. Without `panels` the answer is Unavailable, before this returns.
  void Ask(DesktopFilePanels* panels, const FilePanelRequest& request,
           DesktopFilePanels::Done done);
  void Withdraw();
  bool IsOpen() const { return number_ != 0; }

 private:
  DesktopFilePanels* panels_ = nullptr;
  uint64 number_ = 0;
};

/// A request that belongs to the window of `widget`, for the folder of `file`, which may be a
/// folder itself.
FilePanelRequest RequestFor(const QWidget* widget, const QString& title, const QString& file);

/// A path of the toolkit's as its bytes.
std::string PathBytes(const QString& path);

}  // namespace kestrin
