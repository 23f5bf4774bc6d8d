// Where a person says under which name a set is to be saved.
#pragma once

#include <QFileDialog>

class QCheckBox;

namespace kestrin {

/// Stays open until it is told to close or cancelled: whoever asked looks at the name first.
class SetFilePanel final : public QFileDialog {
  Q_OBJECT

 public:
  /// `file`: the name that is proposed, in a folder or not.
  SetFilePanel(QWidget& window, const QString& file, bool remember);

  bool Remember() const;
  void CloseAccepted();

  void accept() override;

 signals:
  void NameChosen(const QString& path);

 private:
  QString ChosenFile() const;
  void AskForFolder();
  void MakeFolder(const QString& name);

  QCheckBox* remember_;
};

/// The name with the suffix of event sets, unless it ends in it.
QString WithSetSuffix(const QString& name);

/// The filters of both file panels, and the folder in which they start when there is no better one.
QStringList SetFileFilters();
QString DefaultSetFolder();

}  // namespace kestrin
