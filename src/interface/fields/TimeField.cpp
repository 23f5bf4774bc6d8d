#include "interface/fields/TimeField.h"

#include <utility>

#include "core/events/Context.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/DateTimeText.h"
#include "interface/fields/Region.h"

namespace kestrin {

namespace {

QString TakeTime(const QString& typed, const QWidget& field, const TimeField::Setter& set) {
  const int32 seconds = ParseTimeOfDay(typed.toLower().toStdString(), LanguageOf(RegionOf(field)));
  if (seconds < 0)
    return QuotedText(typed) + ": This is no time of day. Type one like 7 pm or 19:30.";
  return set(seconds) ? QString() : QuotedText(typed) + ": " + DateOutOfRange;
}

}  // namespace

TimeField::TimeField(const char* objectName, const Context& context, Getter get, Setter set,
                     QWidget* parent)
    : TypedField(
          objectName,
          [&context, get = std::move(get)] {
            return QString::fromStdString(
                ClockTimeText(get(), context.settings.Time24Hour, HourDigits::Two));
          },
          [this, set = std::move(set)](const QString& text) { return TakeTime(text, *this, set); },
          parent) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize TimeField::sizeHint() const {
  // The widest time, and the sign of what cannot be read.
  return {fontMetrics().horizontalAdvance("00:00:00 AM00000"), QLineEdit::sizeHint().height()};
}

}  // namespace kestrin
