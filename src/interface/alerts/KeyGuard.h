// Keeps keys that were meant for another window out of an alert.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class QWidget;

namespace kestrin {

/// A window that opened by itself may be given the focus in the middle of a word. Its keys do
/// nothing until the person has pressed the mouse in it, or until it has been active for a second
/// without any key. Losing the focus closes the guard again.
class KeyGuard final : public QObject {
  Q_OBJECT

 public:
  /// The window owns its guard.
  explicit KeyGuard(QWidget& window);

  /// For a window that answers what the person just did.
  void OpenForGood();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void WindowEvent(QEvent* event);
  void WaitForQuiet();
  bool IsOfWindow(QObject* watched) const;

  QWidget& window_;
  QElapsedTimer quietSince_;
  QTimer quiet_;  ///< runs while the window is active and no key has come
  bool open_ = false;
  bool forGood_ = false;
};

}  // namespace kestrin
