#include "core/events/HandlerTable.h"

#include <atomic>

namespace kestrin {

int8 NumberOfEventHandlers = 0;
std::vector<const char*> AddOnNames;
std::vector<NewAddOnDataFunction> Function_NewAddOnData;
std::vector<void*> AddOnImages;
Context* HandlerContext = nullptr;

int32 FindHandler(std::string_view name) {
  for (int32 row = 0; row < NumberOfEventHandlers; ++row)
    if (name == AddOnNames[static_cast<size_t>(row)]) return row;
  return UnknownHandler;
}

void ResetHandlerTable() {
  NumberOfEventHandlers = 0;
  AddOnNames.clear();
  Function_NewAddOnData.clear();
  AddOnImages.clear();
  std::atomic_ref(HandlerContext).store(nullptr);  // threads of handlers may be reading it
}

std::unique_ptr<EventAddOnData> MakeAddOnData(int32 row, Event* event, EndianIndependentFile* file,
                                              bool* ok, bool* threw) {
  bool unasked = true;
  if (!ok) ok = &unasked;
  *ok = true;
  if (threw) *threw = false;
  if (row < 0 || row >= NumberOfEventHandlers) return nullptr;
  try {
    return std::unique_ptr<EventAddOnData>(
        Function_NewAddOnData[static_cast<size_t>(row)](event, file, ok));
  } catch (...) {
    if (threw) *threw = true;
    return nullptr;
  }
}

bool SaveAddOnData(EventAddOnData& data, EndianIndependentFile* file) {
  try {
    return data.SaveData(file);
  } catch (...) {
    return false;
  }
}

}  // namespace kestrin
