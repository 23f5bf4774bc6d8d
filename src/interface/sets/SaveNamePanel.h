// The question for a set's name, in the desktop's panel or in one of our own.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include "interface/common/FilePanels.h"

namespace kestrin {

class SetFilePanel;

/// Belongs to the window it asks for. Whoever asked looks at each name first: the question stays
/// until it is accepted or cancelled.
class SaveNamePanel final : public QObject {
  Q_OBJECT

 public:
  /// `file`: the name that is proposed, in a folder or not. Without `panels` at once our own panel.
  SaveNamePanel(QWidget& window, DesktopFilePanels* panels, const QString& file, bool remember);
  ~SaveNamePanel() override;

  void Ask();
  void Raise();
  bool Remember() const;
  /// The name was refused: the desktop's panel, which has gone, comes again with it.
  void AskAgain();
  /// The name is taken. Deletes this on a later turn.
  void CloseAccepted();

 signals:
  /// `confirmed`: the person has been asked whether this very file may be replaced.
  void NameChosen(const QString& path, bool confirmed);
  void Cancelled();

 private:
  void Answered(const FilePanelAnswer& answer);
  void OpenOwn();
  void Cancel();

  QWidget& window_;
  DesktopFilePanels* panels_;
  QString file_;
  bool remember_;
  DesktopPanel desktop_;
  QPointer<SetFilePanel> own_;
};

}  // namespace kestrin
