#include "interface/fields/Region.h"

#include <QWidget>
#include <array>

namespace kestrin {

namespace {

DateOrder OrderOf(const QLocale& region) {
  const QString format = region.dateFormat(QLocale::ShortFormat);
  return format.indexOf('d') < format.indexOf('M') ? DateOrder::DayFirst : DateOrder::MonthFirst;
}

std::string Name(const QString& name) { return name.toLower().toStdString(); }

}  // namespace

bool UsesClock24(const QLocale& region) {
  if (region.language() == QLocale::C) return false;  // of no region: the settings' default
  return !region.timeFormat(QLocale::ShortFormat).contains('a', Qt::CaseInsensitive);
}

QLocale RegionOf(const QWidget& widget) {
  const QWidget& window = *widget.window();
  return window.testAttribute(Qt::WA_SetLocale) ? window.locale() : QLocale::system();
}

DateLanguage LanguageOf(const QLocale& region) {
  DateLanguage language = LanguageNamed(region.name().left(2).toStdString(), OrderOf(region));
  if (region.language() == QLocale::English || region.language() == QLocale::C) return language;
  for (const QLocale::FormatType form : {QLocale::LongFormat, QLocale::ShortFormat}) {
    std::array<std::string, 7> days;
    for (int day = 0; day < 7; ++day)
      days[static_cast<size_t>(day)] = Name(region.dayName(day == 0 ? 7 : day, form));
    AddNames(language, days);
    std::array<std::string, 12> months, alone;
    for (int month = 0; month < 12; ++month) {
      months[static_cast<size_t>(month)] = Name(region.monthName(month + 1, form));
      alone[static_cast<size_t>(month)] = Name(region.standaloneMonthName(month + 1, form));
    }
    AddNames(language, months);
    AddNames(language, alone);
  }
  return language;
}

}  // namespace kestrin
