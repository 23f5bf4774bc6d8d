// The table of event handlers: filled at start-up by LoadEventHandlers, not changed until
// UnloadEventHandlers, read everywhere. Rows 0 to 4 are built in.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kestrin/EventAddOnData.h"

namespace kestrin {

class SettingsStore;

inline constexpr int32 UnknownHandler = 0, MessageHandler = 2;
inline constexpr int32 NumberOfBuiltInHandlers = 5;

class HandlerTable {
 public:
  struct Row {
    const char* AddOnName = "";  ///< displayed, and stored in files
    NewAddOnDataFunction NewAddOnData = nullptr;
    void* AddOnImage = nullptr;  ///< the loaded library; null for what is built in
    /// Passes over what NewAddOnData would read, and fails where that would; null for add-ons.
    bool (*PassData)(EndianIndependentFile& file) = nullptr;
  };

  /// Usable rows, those that are built in included.
  int32 NumberOfEventHandlers() const { return static_cast<int32>(rows_.size()); }
  const std::vector<Row>& Rows() const { return rows_; }
  bool Has(int32 row) const { return row >= 0 && row < NumberOfEventHandlers(); }
  /// Of a row that there is.
  const char* NameOf(int32 row) const { return rows_[static_cast<size_t>(row)].AddOnName; }
  /// Null when the row's data have to be read.
  auto PassDataOf(int32 row) const {
    return Has(row) ? rows_[static_cast<size_t>(row)].PassData : nullptr;
  }
  void Add(Row row) { rows_.push_back(row); }
  void Clear() { rows_.clear(); }

  /// The first row of that name, or UnknownHandler.
  int32 Find(std::string_view name) const;

  /// Calls the row's factory. Null when it gives null or throws (`threw` tells), with `*ok` as the
  /// factory left it; `*ok` starts true.
  std::unique_ptr<EventAddOnData> MakeAddOnData(int32 row, Event* event,
                                                EndianIndependentFile* file, bool* ok,
                                                bool* threw) const;

  /// Behind ReadAddOnSetting and WriteAddOnSetting; null: there are none. Outlives the table.
  SettingsStore* AddOnSettings = nullptr;

 private:
  std::vector<Row> rows_;
};

/// The data's SaveData; false when it throws, which `threw` (may be null) then tells.
bool SaveAddOnData(EventAddOnData& data, EndianIndependentFile* file, bool* threw = nullptr);

/// Implemented by the data of row 0: keeps the name of the handler that is not installed.
class KeepsOriginalHandler {
 public:
  virtual ~KeepsOriginalHandler() = default;
  virtual void SetOriginalHandler(std::string name) = 0;
  virtual const std::string& GetOriginalHandler() const = 0;
};

}  // namespace kestrin
