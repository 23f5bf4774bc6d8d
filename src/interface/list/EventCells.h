// What stands in the cells of the event list.
#pragma once

#include <QString>

#include "kestrin/Types.h"

namespace kestrin {

class Event;

QString ColumnLabel(int32 column);
QString CellText(const Event& event, int32 column);
/// As rich text: the cell's, and the event's rule as a sentence.
QString TipText(const Event& event, int32 column);

}  // namespace kestrin
