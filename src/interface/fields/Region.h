// What the person's region says of dates, for fields and calendars.
#pragma once

#include <QLocale>

#include "core/timing/DateLanguage.h"

class QWidget;

namespace kestrin {

/// The locale set on the widget's window, else the system's.
/// Whether the region counts the hours of a day through; false for none.
bool UsesClock24(const QLocale& region);

QLocale RegionOf(const QWidget& widget);

/// Its order of numbers, its names of weekdays and months, and the words known of its language.
DateLanguage LanguageOf(const QLocale& region);

}  // namespace kestrin
