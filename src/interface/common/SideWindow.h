// A window of the application that belongs to no set and no event.
#pragma once

#include <QWidget>

namespace kestrin {

class DocumentApp;

/// Keeps the application alive while it is open, closes by Escape or Ctrl+W without a question, and
/// deletes itself once it has closed.
class SideWindow : public QWidget {
  Q_OBJECT

 public:
  explicit SideWindow(DocumentApp& application);
  ~SideWindow() override;

  void Activate();
  /// It waits to be deleted.
  bool IsClosed() const { return !application_; }

 protected:
  /// The window is about to close; it has its geometry still.
  virtual void Closing() {}

  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void GiveBack();

  DocumentApp* application_;  ///< null once the window has closed
};

}  // namespace kestrin
