// The list of remembered event set files.
#pragma once

#include <QListWidget>
#include <string>
#include <vector>

class QAbstractButton;

namespace kestrin {

class KestrinSettings;

/// Shows the remembered files in their order, and keeps the button that
/// forgets them in step. Paths too long for the view are cut in the middle and shown whole in a
/// tool tip.
class SelectedSetsView final : public QListWidget {
  Q_OBJECT

 public:
  /// `forgetButton` outlives the view or goes with the same parent.
  SelectedSetsView(KestrinSettings& settings, QAbstractButton& forgetButton,
                   QWidget* parent = nullptr);

  /// Both are called with the settings locked. What is selected stays so.
  void UpdateListContents();
  void ForgetSelected();

 signals:
  /// Delete was pressed.
  void ForgetAsked();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  std::vector<std::string> SelectedPaths() const;
  void AddPath(const std::string& path);
  void ShowPaths(const std::vector<std::string>& paths);

  KestrinSettings& settings_;
  std::vector<std::string> shown_;
  QAbstractButton& forgetButton_;
};

}  // namespace kestrin
