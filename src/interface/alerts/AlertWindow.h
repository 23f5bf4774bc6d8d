// The window of one alert.
#pragma once

#include <QDialog>

#include "core/ports/Alert.h"
#include "core/timing/LaterMoments.h"

namespace kestrin {

class AlertPane;
class KeyGuard;
struct Context;

/// Opens above other windows without taking the focus, unless it is a prompt: that one takes it,
/// and opens over the window the person works in. Where it is given the focus all the same, keys
/// wait until the person means it (KeyGuard). Closing it, and Escape, press the harmless button.
/// Pressed comes once, after which the window waits to be deleted.
class AlertWindow final : public QDialog {
  Q_OBJECT

 public:
  /// `place`: position in the cascade. `context` may be null, see AlertPane. `mayOpen`: the alert's
  /// event is there to be opened.
  AlertWindow(const Context* context, const AlertRequest& request, int place, bool mayOpen);

  /// Other text, title and buttons in the same place. A button that is being pressed while the
  /// labels change does not count.
  void Update(const AlertRequest& request, bool mayOpen);
  /// Shows the window, or says again what it says: its text is new.
  void Announce();
  /// To the front, with the focus.
  void Raise();
  /// Why it could not be put off.
  void Complain(const std::string& why);
  /// Moves the window back onto the screen when it lies off it, and into what it may take of it.
  void KeepOnScreen();
  /// Whether the person is at it: it has the focus, is pressed or has an open menu.
  bool IsBusy() const;

  void reject() override;

 signals:
  void Pressed(int which);
  void PutOff(const PutOffMoment& when);
  void OpenEventWanted();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void ShowRequest(const AlertRequest& request, bool mayOpen);
  void FitSize();
  QRect ScreenRect() const;
  void MoveToPlace();
  void Press(int which);

  int place_;
  bool isPrompt_;
  int harmlessButton_ = 0;
  AlertPane* pane_;
  KeyGuard* guard_;
};

}  // namespace kestrin
