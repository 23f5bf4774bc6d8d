// The window that edits one event. It has no button to confirm or cancel: every control writes into
// the event at once.
#pragma once

#include <QRect>
#include <QWidget>
#include <vector>

#include "core/ports/UserInterface.h"

class QLabel;

namespace kestrin {

class EditorPage;
class EventTabView;
class EventView;

/// Closing hands over what was typed (what cannot be read is dropped), takes the window back from
/// its event, and deletes it on a later turn of the event loop.
class EventWindow final : public QWidget, public EditorWindow {
  Q_OBJECT

 public:
  explicit EventWindow(Event& event);
  ~EventWindow() override;

  /// Null once the window has closed.
  Event* GetEvent() const { return event_; }
  void SettingsChanged();

  void Activate() override;
  void RedrawTimes() override;
  void EventChanged() override;
  void RemoveEditView() override;
  void AddEditView() override;
  void CommitEdits() override;
  void CloseNow() override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void Build();
  void BuildComplaintLine();
  void AddPage(EditorPage* page);
  void OpenAtFrame();
  std::vector<QRect> FramesBeside() const;
  std::string HelpChapter() const;
  void StoreFrame();
  void CloseOwnPopup();
  void RememberAsDefault();
  void Retitle();
  void ShowEvent();
  void ShowComplaint(const QString& last);
  void AddShortcuts();
  /// Has the set's window carry out what the key is for there.
  void PassOn(const QKeySequence& key);
  /// Takes the window back from the event; afterwards there is no event.
  void Detach();

  struct Page {
    EditorPage* page;
    QString complaint;
  };

  Event* event_;
  EventView* header_ = nullptr;
  EventTabView* tabs_ = nullptr;
  QWidget* complaintLine_ = nullptr;
  QLabel* complaint_ = nullptr;
  std::vector<Page> pages_;
  QRect opened_;  ///< the geometry the window was given; only another one is the person's
  bool redrawWaits_ = false;
};

}  // namespace kestrin
