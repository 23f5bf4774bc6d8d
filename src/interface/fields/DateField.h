// A typed date, with or without a time of day, and a calendar to pick the day from.
#pragma once

#include <QWidget>
#include <functional>

#include "core/timing/DateTimeText.h"
#include "kestrin/Types.h"

class QDate;
class QLabel;
class QToolButton;

namespace kestrin {

class Event;
class TypedField;

/// What is typed is read relative to now, in English or in the region's words, and shown back in
/// full. A time alone keeps the day of a rule that repeats; for a single moment it is today's, or
/// tomorrow's once that has passed. A hint below says so, and that a single moment has passed.
/// Alt+Down, F4 or the button open the calendar.
class DateField final : public QWidget {
  Q_OBJECT

 public:
  struct Shown {
    int32 time = 0;
    bool withTime = false;  ///< whether the time of day is shown
    bool single = false;    ///< the one moment of an event that does not repeat
  };
  using Getter = std::function<Shown()>;
  /// `hasTime`: the person gave a time of day; otherwise only the day of `time` counts. False when
  /// the day with the time of day it goes with cannot be stored.
  using Setter = std::function<bool(int32 time, bool hasTime)>;

  /// The field is called `objectName`, the button and the hint `objectName`Calendar and
  /// `objectName`Hint, the calendar "calendar".
  DateField(const QString& objectName, const QString& accessibleName, Event& event, Getter get,
            Setter set, QWidget* parent = nullptr);

  /// Brings the hint below the field in step with the event.
  void ShowHint() const;

  /// The field in it, for a label's buddy and a page's list of fields.
  TypedField* Field() const { return field_; }

 private:
  void AddButton(const QString& objectName, const QString& accessibleName);
  QString ShowTime() const;
  QString TakeText(const QString& text);
  QString TakeDate(const TypedDate& date);
  QString WithoutShownWeekday(const QString& text) const;
  void OpenCalendar();
  void TakeDay(const QDate& day);
  QDate ShownDay() const;

  Event& event_;
  Getter get_;
  Setter set_;
  TypedField* field_;
  QLabel* hint_;
  /// What happened to the date that was typed last, while the field shows that date.
  QString remark_;
  int32 remarked_ = 0;
  QToolButton* button_ = nullptr;
};

}  // namespace kestrin
