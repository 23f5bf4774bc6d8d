#include "core/events/HandlerTable.h"

namespace kestrin {

int32 HandlerTable::Find(std::string_view name) const {
  const char first = name.empty() ? '\0' : name.front();
  for (int32 row = 0; row < NumberOfEventHandlers(); ++row)
    if (const char* const each = NameOf(row); *each == first && name == each) return row;
  return UnknownHandler;
}

std::unique_ptr<EventAddOnData> HandlerTable::MakeAddOnData(int32 row, Event* event,
                                                            EndianIndependentFile* file, bool* ok,
                                                            bool* threw) const {
  bool unasked = true;
  if (!ok) ok = &unasked;
  *ok = true;
  if (threw) *threw = false;
  if (!Has(row)) return nullptr;
  try {
    return std::unique_ptr<EventAddOnData>(
        rows_[static_cast<size_t>(row)].NewAddOnData(event, file, ok));
  } catch (...) {
    if (threw) *threw = true;
    return nullptr;
  }
}

bool SaveAddOnData(EventAddOnData& data, EndianIndependentFile* file, bool* threw) {
  try {
    return data.SaveData(file);
  } catch (...) {
    if (threw) *threw = true;
    return false;
  }
}

}  // namespace kestrin
