// The application's settings set: named values with a type code, over the settings library.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/settings/PrefsLibrary.h"

namespace kestrin {

/// The bytes stay the store's: valid until the value is set or deleted or the store goes.
struct SettingValue {
  std::string_view bytes;
  uint32 type = 0;
};

/// Callers hold the lock of the settings. Statuses other than StatusOk are the library's.
class SettingsStore {
 public:
  static constexpr const char* ApplicationName = "x-vnd.ZR-Kestrin";
  static constexpr const char* SetName = "KestrinSettings";

  /// Initialises the library and loads the set, which is made when it does not exist.
  explicit SettingsStore(PrefsLibrary library);
  ~SettingsStore();
  SettingsStore(const SettingsStore&) = delete;
  SettingsStore& operator=(const SettingsStore&) = delete;

  /// Whether the library could be initialised, and the set be loaded. Without either the store is
  /// empty and refuses everything.
  status_t InitStatus() const { return initStatus_; }
  status_t LoadStatus() const { return loadStatus_; }
  /// What the user should be told about the state in which the set was found; often empty.
  std::string Complaint() const { return library_.Complaint ? library_.Complaint() : ""; }

  std::optional<SettingValue> Get(const std::string& key) const;
  status_t Set(const std::string& key, std::string_view bytes, uint32 type);
  /// Nothing happens when there is no such key.
  void Delete(const std::string& key);
  /// Makes the changes since the last successful Save last; writes nothing when there are none.
  status_t Save();
  /// Set by whoever reports a failure, so that the next of a row is not reported again.
  bool UserKnowsOfFailure = false;
  /// In words.
  std::string MessageOf(status_t status) const;

 private:
  PrefsLibrary library_;
  void* handle_ = nullptr;
  void* set_ = nullptr;
  status_t initStatus_;
  status_t loadStatus_ = StatusError;
  bool changed_ = false;
};

}  // namespace kestrin
