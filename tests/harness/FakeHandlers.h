// A table of handlers whose data is a text and whose actions do nothing.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include "core/events/Context.h"
#include "core/events/Event.h"
#include "core/events/HandlerTable.h"
#include "kestrin/EndianIndependentFile.h"

namespace kestrin {

class FakeHandlerData : public EventAddOnData {
 public:
  explicit FakeHandlerData(Event* event) : EventAddOnData(event) {}

  std::string Bytes;

  QWidget* CreateEditView(Rect) override { return nullptr; }
  void DealWithEvent(bool) override {}
  bool SaveData(EndianIndependentFile* file) override {
    auto count = static_cast<uint32>(Bytes.size());
    return file->WriteNumber(&count, sizeof count, 1) == 1 &&
           file->WriteRaw(Bytes.data(), count) == static_cast<int32>(count);
  }
};

class FakeUnknownData final : public FakeHandlerData, public KeepsOriginalHandler {
 public:
  using FakeHandlerData::FakeHandlerData;
  void SetOriginalHandler(std::string name) override { name_ = std::move(name); }
  const std::string& GetOriginalHandler() const override { return name_; }

 private:
  std::string name_;
};

template <typename Data>
EventAddOnData* MakeFakeData(Event* event, EndianIndependentFile* file, bool* ok) {
  auto data = std::make_unique<Data>(event);
  uint32 count = 0;
  if (!file) return data.release();
  *ok = file->ReadNumber(&count, sizeof count, 1) == 1 && count <= file->BytesLeft();
  if (*ok) {
    data->Bytes.resize(count);
    *ok = file->ReadRaw(data->Bytes.data(), count) == static_cast<int32>(count);
  }
  return data.release();
}

/// Rows "Unknown", "Do nothing" and "Message", then two whose factories fail.
inline constexpr int32 NullHandler = 3, ThrowingHandler = 4;

inline void LoadFakeHandlers(Context& context) {
  HandlerTable& handlers = context.handlers;
  handlers.Clear();
  handlers.Add({"Unknown", MakeFakeData<FakeUnknownData>});
  handlers.Add({"Do nothing", MakeFakeData<FakeHandlerData>});
  handlers.Add({"Message", MakeFakeData<FakeHandlerData>});
  handlers.Add({"Gives null",
                [](Event*, EndianIndependentFile*, bool*) -> EventAddOnData* { return nullptr; }});
  handlers.Add({"throws", [](Event*, EndianIndependentFile*, bool*) -> EventAddOnData* {
                  throw std::runtime_error("no data today");
                }});
}

}  // namespace kestrin
