// The page about what happens when an event comes due.
#pragma once

#include <QPointer>

#include "interface/editor/EditorPage.h"
#include "kestrin/Types.h"

class QCheckBox;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

namespace kestrin {

class ChoiceMenu;
class EventAddOnData;

/// Shows the edit view of the selected handler, made by the handler itself. What an add-on throws
/// on the way is reported, and then there is no edit view.
class EventActionView final : public EditorPage {
  Q_OBJECT

 public:
  explicit EventActionView(Event& event);

  void ShowEvent() override;
  void CommitEdits() override;
  void DropEdits() override;

  /// Hands over what was typed, and destroys the view.
  void RemoveEditView();
  /// Nothing happens before the page is shown for the first time, which makes the view itself: only
  /// then is its frame known.
  void AddEditView();

 protected:
  void showEvent(QShowEvent* event) override;

 private slots:
  /// A complaint of the edit view.
  void PassOn(const QString& why) { TakeComplaint(sender(), why); }

 private:
  void BuildMenu(QVBoxLayout& column);
  QCheckBox* AddBox(const char* objectName, const QString& label, void (Event::*set)(bool));
  void Select(int32 row);
  void TryNow();
  Rect GetEditViewRect() const;
  void Place(QWidget* view);
  /// Later, when nothing is locked.
  void Report(const QString& what);

  ChoiceMenu* handler_ = nullptr;
  QPushButton* try_ = nullptr;
  QScrollArea* frame_ = nullptr;
  QPointer<QWidget> editView_;
  bool isShownOnce_ = false;
  bool hasFrame_ = false;
  EventAddOnData* viewed_ = nullptr;  ///< whose edit view that is
  QCheckBox* deleteOnce_ = nullptr;
  QCheckBox* ifMissed_ = nullptr;
};

}  // namespace kestrin
