#include "programs/ctl/NextTable.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "core/settings/KestrinSettings.h"
#include "core/timing/DateTimeText.h"
#include "core/timing/EventTiming.h"
#include "core/timing/EventTypes.h"
#include "programs/ctl/TextTable.h"

namespace kestrin {

namespace {

constexpr size_t BlockSize = size_t{60} << 10;

std::string_view StatusText(bool active, int32 status, std::string& room) {
  if (!active) return InactiveMessage;
  if (status >= 0 && status < static_cast<int32>(StatusMessages.size()))
    return StatusMessages[static_cast<size_t>(status)];
  return room = "Status " + std::to_string(status);
}

}  // namespace

void NextTable::Add(const EventRecord& record) {
  const auto [name, columns] = TextTable::MeasuredCell(record.Name);
  const Row row = {record.ActualEventTime,
                   record.NextEventTime,
                   record.Status,
                   record.Active,
                   HasTimeOfDay(record),
                   MessageHasTimeOfDay(record),
                   static_cast<std::uint16_t>(name.size()),
                   static_cast<std::uint16_t>(columns)};
  const size_t needed = sizeof row + name.size();
  if (blocks_.empty() || blocks_.back().capacity() - blocks_.back().size() < needed)
    blocks_.emplace_back().reserve(std::max(BlockSize, needed));
  blocks_.back().append(reinterpret_cast<const char*>(&row), sizeof row).append(name);
}

template <typename Visitor>
void NextTable::ForEach(Visitor visit) const {
  for (const std::string& block : blocks_)
    for (std::string_view rest = block; !rest.empty();) {
      Row row{};
      std::memcpy(&row, rest.data(), sizeof row);
      visit(row, rest.substr(sizeof row, row.nameBytes));
      rest.remove_prefix(sizeof row + row.nameBytes);
    }
}

bool NextTable::Print() const {
  if (blocks_.empty()) return std::puts("No events.") >= 0;
  const auto timeText = [&](int32 time, bool withTime) {
    return GetDateTimeText(time, withTime, context_.zone, context_.settings.Time24Hour);
  };
  TextTable table({"Name", "Event time", "Next message time", "Status"});
  std::string room;
  // How long a time's text is hangs on what it shows alone.
  const size_t none = timeText(0, false).length;
  const size_t lengths[] = {timeText(1, false).length, timeText(1, true).length};
  ForEach([&](const Row& row, std::string_view) {
    const auto length = [&](int32 time, bool withTime) {
      return time == 0 || time == -1 ? none : lengths[withTime ? 1 : 0];
    };
    table.Measure(0, row.nameColumns);
    table.Measure(1, length(row.actual, row.actualHasTime));
    table.Measure(2, length(row.next, row.nextHasTime));
    table.Measure(3, StatusText(row.active, row.status, room).size());
  });
  return table.Print(stdout, [&](TextTable::Lines& lines) {
    ForEach([&](const Row& row, std::string_view name) {
      lines.Put(name, row.nameColumns);
      const DateTimeText actual = timeText(row.actual, row.actualHasTime);
      lines.Put(actual);
      const bool isSame = row.next == row.actual && row.nextHasTime == row.actualHasTime;
      lines.Put(isSame ? actual : timeText(row.next, row.nextHasTime));
      lines.Put(StatusText(row.active, row.status, room));
    });
  });
}

}  // namespace kestrin
