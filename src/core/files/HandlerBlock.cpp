#include "core/files/HandlerBlock.h"

#include <stdio.h>

#include "core/events/EventSet.h"
#include "core/events/HandlerTable.h"
#include "support/MemoryFile.h"

namespace kestrin {

namespace {

constexpr int32 FileBufferSize = 4096;

}  // namespace

BlockFile::BlockFile()
    : EndianIndependentFile(std::make_unique<MemoryFile>(), OpenReadWrite | OpenCreate | OpenErase,
                            FileBufferSize) {}

std::optional<std::string> HandlerBlockOf(EventAddOnData& data) {
  BlockFile file;
  if (file.InitCheck() != StatusOk || !SaveAddOnData(data, &file)) return std::nullopt;
  if (file.Seek(0, SEEK_SET) != 0) return std::nullopt;
  std::string block(static_cast<size_t>(file.BytesLeft()), '\0');
  const bool whole = file.ReadRaw(block.data(), block.size()) == static_cast<int32>(block.size());
  return whole ? std::optional(std::move(block)) : std::nullopt;
}

std::unique_ptr<EventAddOnData> DataFromBlock(Event& event, int32 row, const std::string& block) {
  const std::string padded = block + std::string(ZerosWithoutData, '\0');
  BlockFile file;
  if (file.InitCheck() != StatusOk ||
      file.WriteRaw(padded.data(), padded.size()) != static_cast<int32>(padded.size()) ||
      file.Seek(0, SEEK_SET) != 0)
    return nullptr;
  bool ok = true;
  bool threw = false;
  const HandlerTable& handlers = event.GetOwner()->GetContext().handlers;
  std::unique_ptr<EventAddOnData> data = handlers.MakeAddOnData(row, &event, &file, &ok, &threw);
  return ok ? std::move(data) : nullptr;
}

}  // namespace kestrin
