// The window of one alert.
#pragma once

#include <QDialog>
#include <vector>

#include "core/ports/Alert.h"

class QHBoxLayout;
class QLabel;
class QPushButton;

namespace kestrin {

class AlertText;

/// Opens above other windows without taking the focus, unless it is a prompt: that one takes it,
/// and opens over the window the person works in. Closing it, and Escape, press the harmless
/// button. Pressed comes once, after which the window waits to be deleted.
class AlertWindow final : public QDialog {
  Q_OBJECT

 public:
  /// `place`: position in the cascade.
  AlertWindow(const AlertRequest& request, int place);

  /// Other text, title and buttons in the same place. A button that is being pressed while the
  /// labels change does not count.
  void Update(const AlertRequest& request);
  /// Shows the window, or says again what it says: its text is new.
  void Announce();
  /// To the front, with the focus.
  void Raise();
  /// Moves the window back onto the screen when it lies off it, and into what it may take of it.
  void KeepOnScreen();

  void reject() override;

 signals:
  void Pressed(int which);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void BuildFrame();
  void ShowRequest(const AlertRequest& request);
  void ShowButtons(const std::vector<std::string>& labels);
  void FitSize();
  QRect ScreenRect() const;
  void MoveToPlace();
  void Press(int which);

  int place_;
  bool isPrompt_;
  int harmlessButton_ = 0;
  bool answered_ = false;
  std::vector<std::string> labels_;
  std::vector<QPushButton*> buttons_;
  QLabel* icon_ = nullptr;
  AlertText* text_ = nullptr;
  QHBoxLayout* buttonRow_ = nullptr;
};

}  // namespace kestrin
