// How the day of an event is chosen: by its date, or by its place in the month or week.
#pragma once

#include <QWidget>
#include <array>

#include "core/timing/EventTypes.h"
#include "interface/editor/EditorPage.h"

class QLabel;

namespace kestrin {

class ChoiceMenu;
class DateField;
class TypedField;

/// To be called once a person has chosen a kind, a type or a week: from then on a search backwards
/// counts from each month's own end.
void TakeMonthOfChoice(Event& event);

class WhenSelectorsView final : public QWidget {
  Q_OBJECT

 public:
  enum Selector { Date, DayOfMonth, WeekOfMonth, Weekday, Month, OfTheMonth, NumberOfSelectors };
  /// The period types that choose a day by year, month or week.
  enum Group { Annual, OfMonths, OfWeeks, NumberOfGroups, NoGroup = -1 };
  static const bool Setups[NumberOfGroups][NumberOfTimingTypes][NumberOfSelectors];

  WhenSelectorsView(Event& event, EditorPage::Writer write);

  TypedField* Field() const;
  /// Brings all but what is being typed in step with the event.
  void ShowEvent();
  /// The first selector shown, or null: what the row's caption stands for.
  QWidget* FirstShown() const;
  bool IsDateShown() const { return isShown_[Date]; }
  /// From then on it has room for any of its setups.
  void KeepRoom();

 private:
  void BuildDate(Event& event);
  void BuildMenus();
  void AddSelector(Selector selector, QWidget* widget);
  /// Shows the selectors of the event's rule and hides the others.
  void ReevaluateDisplay();
  void ShowSetup(const bool (&setup)[NumberOfSelectors]);

  const Event& event_;
  EditorPage::Writer write_;
  DateField* date_ = nullptr;
  ChoiceMenu* dayOfMonth_ = nullptr;
  ChoiceMenu* weekOfMonth_ = nullptr;
  ChoiceMenu* weekday_ = nullptr;
  ChoiceMenu* month_ = nullptr;
  std::array<QWidget*, NumberOfSelectors> selectors_{};
  std::array<bool, NumberOfSelectors> isShown_{};
};

}  // namespace kestrin
