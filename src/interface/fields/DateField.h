// A typed date, with or without a time of day, and a calendar to pick the day from.
#pragma once

#include <QWidget>
#include <functional>

#include "kestrin/Types.h"

class QDate;
class QToolButton;

namespace kestrin {

class Event;
class TypedField;

/// What is typed is read relative to now and shown back in full. Alt+Down, F4 or the button open
/// the calendar.
class DateField final : public QWidget {
  Q_OBJECT

 public:
  struct Shown {
    int32 time;
    bool withTime;  ///< whether the time of day is shown
  };
  using Getter = std::function<Shown()>;
  /// `hasTime`: the person gave a time of day; otherwise only the day of `time` counts. False when
  /// the day with the time of day it goes with cannot be stored.
  using Setter = std::function<bool(int32 time, bool hasTime)>;

  /// The field is called `objectName`, the button `objectName`Calendar, the calendar "calendar".
  DateField(const QString& objectName, const QString& accessibleName, Event& event, Getter get,
            Setter set, QWidget* parent = nullptr);

  /// The field in it, for a label's buddy and a page's list of fields.
  TypedField* Field() const { return field_; }

 private:
  void AddButton(const QString& objectName, const QString& accessibleName);
  QString ShowTime() const;
  QString TakeText(const QString& text);
  QString WithoutShownWeekday(const QString& text) const;
  void OpenCalendar();
  void TakeDay(const QDate& day);
  QDate ShownDay() const;

  Event& event_;
  Getter get_;
  Setter set_;
  TypedField* field_;
  QToolButton* button_ = nullptr;
};

}  // namespace kestrin
