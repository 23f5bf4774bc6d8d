#include "core/settings/SettingsStore.h"

#include <limits>
#include <utility>

namespace kestrin {

SettingsStore::SettingsStore(PrefsLibrary library)
    : library_(std::move(library)), initStatus_(library_.PREFInit(ApplicationName, &handle_)) {
  if (initStatus_ == StatusOk) loadStatus_ = library_.PREFLoadSet(handle_, SetName, 1, &set_);
  if (loadStatus_ != StatusOk) set_ = nullptr;
}

SettingsStore::~SettingsStore() {
  if (set_) library_.PREFDisposeSet(&set_);
  if (initStatus_ == StatusOk) library_.PREFShutdown(handle_);
}

std::optional<SettingValue> SettingsStore::Get(const std::string& key) const {
  const void* data = nullptr;
  int32 size = 0;
  SettingValue value;
  if (!set_ || library_.PREFGetData(set_, key.c_str(), &data, &size, &value.type) != StatusOk)
    return std::nullopt;
  if (size < 0 || (size > 0 && !data)) return std::nullopt;
  if (size > 0) value.bytes = {static_cast<const char*>(data), static_cast<size_t>(size)};
  return value;
}

status_t SettingsStore::Set(const std::string& key, std::string_view bytes, uint32 type) {
  if (!set_ || bytes.size() > size_t{std::numeric_limits<int32>::max()}) return StatusError;
  if (const auto old = Get(key); old && old->type == type && old->bytes == bytes) return StatusOk;
  const auto size = static_cast<int32>(bytes.size());
  const status_t status = library_.PREFSetData(set_, key.c_str(), bytes.data(), size, type);
  changed_ = changed_ || status == StatusOk;
  return status;
}

void SettingsStore::Delete(const std::string& key) {
  if (!Get(key)) return;
  library_.PREFDelete(set_, key.c_str());
  changed_ = true;
}

status_t SettingsStore::Save() {
  if (!set_) return StatusError;
  if (!changed_) return StatusOk;
  const status_t status = library_.PREFSaveSet(set_);
  if (status == StatusOk) changed_ = false;
  return status;
}

std::string SettingsStore::MessageOf(status_t status) const {
  const char* text = library_.PREFGetMessage(status);
  return text ? text : "";
}

}  // namespace kestrin
