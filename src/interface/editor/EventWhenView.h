// The page that says when an event occurs.
#pragma once

#include <array>

#include "core/timing/EventTypes.h"
#include "interface/editor/EditorPage.h"

class QCheckBox;
class QGridLayout;
class QLabel;

namespace kestrin {

class ChoiceMenu;
class DateField;
class PeriodicityIntervalView;
class TimeField;
class WhenSelectorsView;

class EventWhenView final : public EditorPage {
  Q_OBJECT

 public:
  /// The rows between the period type and the time of day.
  enum Row { Interval, Type, Selectors, Start, Stop, NumberOfRows };
  static const bool IsViewShown[NumberOfPeriodTypes][NumberOfRows];

  explicit EventWhenView(Event& event);

  void ShowEvent() override;
  void CommitEdits() override;

 private:
  struct RowViews {
    QWidget* caption = nullptr;
    QWidget* content = nullptr;
    bool isShown = true;
  };

  void BuildPeriod(QGridLayout& grid);
  void BuildType(QGridLayout& grid);
  void BuildStart(QGridLayout& grid);
  void BuildStop(QGridLayout& grid);
  void BuildTimeOfDay(QGridLayout& grid);
  void BuildMonthEnd(QGridLayout& grid);
  void BuildSentence(QGridLayout& grid);
  void ShowSentence();
  void UseTimeOfDay(bool on);
  void AddRow(QGridLayout& grid, Row row, QWidget* caption, QWidget* content);
  QLabel* Caption(const char* text, QWidget* buddy);
  /// Room for the largest of its forms, so that no choice makes the window grow.
  void KeepRoom();
  void HideShowMoveViews();
  void ShowTypes();
  void ShowTimeOfDay();
  int32 TimeOfDay() const;
  bool TakeStart(int32 time, bool hasTime);
  bool TakeTimeOfDay(int32 time);

  ChoiceMenu* periodType_ = nullptr;
  PeriodicityIntervalView* interval_ = nullptr;
  ChoiceMenu* timingType_ = nullptr;
  WhenSelectorsView* selectors_ = nullptr;
  QLabel* selectorsCaption_ = nullptr;
  DateField* start_ = nullptr;
  QCheckBox* useStop_ = nullptr;
  TimeField* stopTime_ = nullptr;
  QCheckBox* useTime_ = nullptr;
  TimeField* time_ = nullptr;
  QLabel* midnight_ = nullptr;
  QWidget* monthEnd_ = nullptr;
  QLabel* countsFrom_ = nullptr;
  QLabel* sentence_ = nullptr;
  QLabel* dates_ = nullptr;
  std::array<RowViews, NumberOfRows> rows_;
};

}  // namespace kestrin
