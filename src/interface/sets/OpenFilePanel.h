// Where a person says which event sets are to be opened.
#pragma once

#include <QFileDialog>
#include <QPointer>
#include <string>
#include <vector>

#include "interface/common/FilePanels.h"

namespace kestrin {

struct Context;

/// Hands the chosen files to the application as OPEN_FILES. Holds the application while it is open
/// and deletes itself when it has closed.
class OpenFilePanel final : public QFileDialog {
  Q_OBJECT

 public:
  explicit OpenFilePanel(Context& context);
  ~OpenFilePanel() override;

  /// To the front. When it closes, the focus goes back to the window that is active now: the window
  /// manager might choose a reminder.
  void Ask();

  void accept() override;
  void done(int result) override;

 private:
  Context& context_;
  QPointer<QWidget> asker_;
  bool holds_ = true;
};

/// The same question for the desktop's panel.
FilePanelRequest RequestForSets();

/// Asks the application to open these files in windows.
void PostOpenFiles(Context& context, const std::vector<std::string>& files);

}  // namespace kestrin
