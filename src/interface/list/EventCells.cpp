#include "interface/list/EventCells.h"

#include "core/events/Event.h"
#include "core/events/EventSet.h"
#include "core/events/HandlerTable.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/DateTimeText.h"
#include "core/timing/EventTiming.h"
#include "core/timing/EventTypes.h"
#include "core/timing/RuleSentence.h"
#include "interface/common/ShownText.h"
#include "interface/list/EventOrder.h"

namespace kestrin {

namespace {

constexpr std::array<const char*, NumberOfColumns> Labels = {
    "", "Name", "Event time", "Next message time", "Handler", "Status"};

QString TimeText(const Event& event, int32 time, bool withTime) {
  const Context& context = event.GetOwner()->GetContext();
  return ShownText(GetDateTimeString(time, withTime, context.zone, context.settings.Time24Hour));
}

QString HandlerText(const Event& event) {
  const HandlerTable& handlers = event.GetOwner()->GetContext().handlers;
  const int32 row = event.GetSelectedHandler();
  return handlers.Has(row) ? ShownLine(handlers.NameOf(row)) : QString();
}

QString StatusText(const Event& event) {
  if (!event.GetActive()) return ShownText(InactiveMessage);
  const auto status = static_cast<size_t>(event.GetStatus());
  return status < StatusMessages.size() ? ShownText(StatusMessages[status])
                                        : QString::number(event.GetStatus());
}

}  // namespace

QString ColumnLabel(int32 column) {
  const auto number = static_cast<size_t>(column);
  return number < Labels.size() ? Labels[number] : QString();
}

QString CellText(const Event& event, int32 column) {
  switch (column) {
    case NameColumn:
      return ShownLine(event.GetName());
    case EventTimeColumn:
      return TimeText(event, event.GetActualEventTime(), HasTimeOfDay(event.Record()));
    case NextTimeColumn:
      return TimeText(event, event.GetNextEventTime(), MessageHasTimeOfDay(event.Record()));
    case HandlerColumn:
      return HandlerText(event);
    case StatusColumn:
      return StatusText(event);
    default:
      return {};
  }
}

QString TipText(const Event& event, int32 column) {
  const Context& context = event.GetOwner()->GetContext();
  const std::string rule = RuleSentence(event.Record(), context.zone, context.settings.Time24Hour);
  return "<p>" + CellText(event, column).toHtmlEscaped() + "<br>" +
         ShownText(rule).toHtmlEscaped() + "</p>";
}

}  // namespace kestrin
