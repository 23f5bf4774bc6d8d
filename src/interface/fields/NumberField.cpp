#include "interface/fields/NumberField.h"

#include <QKeyEvent>
#include <algorithm>
#include <limits>

namespace kestrin {

namespace {

constexpr int DigitsShown = 6;
constexpr uint32 Largest = std::numeric_limits<uint32>::max();

bool IsDigits(const QString& text) {
  return !text.isEmpty() &&
         std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

QString TakeNumber(const QString& typed, uint32 least, const NumberField::Setter& set) {
  const QString text = typed.trimmed();
  if (!IsDigits(text))
    return QString("%1 is no whole number; enter %2 or more.").arg(QuotedText(typed)).arg(least);
  bool fits = false;
  const uint32 number = text.toUInt(&fits);
  if (!fits) return QString("No number may be larger than %1.").arg(Largest);
  return set(number);
}

}  // namespace

NumberField::NumberField(const char* objectName, uint32 least, Getter get, Setter set,
                         QWidget* parent)
    : TypedField(
          objectName, [get = std::move(get)] { return QString::number(get()); },
          [least, set = std::move(set)](const QString& text) {
            return TakeNumber(text, least, set);
          },
          parent),
      least_(least) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  setInputMethodHints(Qt::ImhDigitsOnly);
}

QSize NumberField::sizeHint() const {
  const int digit = fontMetrics().horizontalAdvance(u'0');
  const QSize whole = QLineEdit::sizeHint();
  // QLineEdit asks for 17 letters; what it adds around them is the frame.
  const int frame = whole.width() - 17 * fontMetrics().horizontalAdvance(u'x');
  return {DigitsShown * digit + std::max(frame, 0) + digit, whole.height()};
}

void NumberField::Step(int by) {
  bool isNumber = false;
  const uint32 number = text().trimmed().toUInt(&isNumber);
  const int64 next = std::clamp<int64>(int64{number} + by, least_, Largest);
  if (isNumber && next != number) TypeAndCommit(QString::number(next));
  selectAll();
}

void NumberField::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Up)
    Step(1);
  else if (event->key() == Qt::Key_Down)
    Step(-1);
  else
    TypedField::keyPressEvent(event);
}

}  // namespace kestrin
