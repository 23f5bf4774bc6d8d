#include "core/journal/LastSeen.h"

namespace kestrin {

namespace {

constexpr char SeenKey[] = "seen";
constexpr int64 Minute = 60;

}  // namespace

const RecordLine* LastSeen::Find() const {
  for (const auto& [place, line] : log_.All())
    if (line.Fields.Has(SeenKey)) return &line;
  return nullptr;
}

std::optional<int64> LastSeen::Time() const {
  const RecordLine* const line = Find();
  return line ? line->Fields.Number(SeenKey) : std::nullopt;
}

void LastSeen::Set(int64 now) {
  const RecordLine* const line = Find();
  const std::optional<int64> seen = line ? line->Fields.Number(SeenKey) : std::nullopt;
  if (seen && *seen / Minute == now / Minute) return;
  RecordFields fields;
  fields.Set(SeenKey, now);
  log_.Append(line ? line->Id : log_.NewId(), fields);
}

}  // namespace kestrin
