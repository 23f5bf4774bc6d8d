// The header of an event's editor: icon, name, whether it is active, and when it comes next.
#pragma once

#include "interface/editor/EditorPage.h"

class QCheckBox;
class QGridLayout;
class QLabel;

namespace kestrin {

class IconView;

class EventView final : public EditorPage {
  Q_OBJECT

 public:
  explicit EventView(Event& event);

  void ShowEvent() override;
  void CommitEdits() override;
  void DropEdits() override;
  /// For an event that has no name of its own yet: selects the name, ready to be typed over.
  /// Returns whether it did.
  bool OfferName();

 private:
  void BuildIcon(QGridLayout& grid);
  void BuildName(QGridLayout& grid);
  void BuildTimes(QGridLayout& grid);
  QLabel* AddLine(QGridLayout& grid, int row, const char* objectName, const char* caption);
  void RedrawStatus();
  QString TimeText(int time, bool withTime) const;

  IconView* icon_ = nullptr;
  TypedField* name_ = nullptr;
  QCheckBox* active_ = nullptr;
  QLabel* actual_ = nullptr;
  QLabel* next_ = nullptr;
  QLabel* status_ = nullptr;
};

}  // namespace kestrin
