// How a window's set is saved, and the question that stands before it closes.
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>
#include <string>

namespace kestrin {

class DocumentApp;
class EventSet;
class SaveNamePanel;

/// Belongs to the window. Nothing here waits: panels and questions go on when they are answered.
class SetSaving final : public QObject {
  Q_OBJECT

 public:
  SetSaving(EventSet& set, DocumentApp& application, QWidget& window);

  /// Into the set's file; a set without one gets the panel.
  void Save();
  void SaveAs();
  /// Has the set's file remembered for delivery, or forgotten if it is; a set without a file gets
  /// the panel first.
  void RememberOrForget();
  /// Whether the window may close now. If not, the person is asked, or asked again; what allows it
  /// later is CloseAllowed.
  bool MayClose();
  /// The set is about to go.
  void Forget();

 signals:
  void CloseAllowed();

 private:
  void RememberIfTrusted();
  bool SaveDeliveries();
  void AskToSave();
  void Answered(int which);
  void Discard();
  void OpenPanel(bool remember);
  void NameChosen(const std::string& file, bool confirmed);
  bool IsAnothers(const std::string& file) const;
  void Refuse(const std::string& file);
  void AskToReplace(const std::string& file);
  void SaveInto(const std::string& file);
  void PanelCancelled();
  void ReturnFocus();
  void Done(bool saved);
  void AllowClosing();
  void GiveUpClosing();

  EventSet* set_;
  DocumentApp& application_;
  QWidget& window_;
  QPointer<SaveNamePanel> panel_;
  QPointer<QWidget> asker_;  ///< the window that the panel was asked for in
  bool quitOnceSaved_ = false;
};

}  // namespace kestrin
