// What the handlers that start something have in common: what is started, and whether the person is
// asked first.
#pragma once

#include <memory>

#include "handlers/BuiltInData.h"
#include "handlers/PayloadBytes.h"

namespace kestrin {

class StartingData : public BuiltInData {
 public:
  using BuiltInData::BuiltInData;

  /// Whether the user is asked first. Setting it does not mark the event modified.
  bool GetVerify() const { return content_.Flag; }
  void SetVerify(bool verify) { content_.Flag = verify; }

  bool ReadData(EndianIndependentFile& file) { return content_.Read(file); }
  bool SaveData(EndianIndependentFile* file) override { return content_.Write(*file); }
  /// What is found out later has to wait for a screen by itself.
  bool NeedsScreen() const override { return !content_.Text.Empty() && MustAsk(); }

 protected:
  /// A set from elsewhere is asked about whatever the event says.
  bool MustAsk() const;
  /// Never null.
  const char* Text() const { return content_.Text.Get(); }
  void SetText(const char* text);

 private:
  FlaggedText content_;
};

/// Makes one of `Data` and reads it from the file, if there is one.
template <typename Data>
EventAddOnData* NewStartingData(Event* event, EndianIndependentFile* file, bool* ok) {
  auto data = std::make_unique<Data>(event);
  *ok = !file || data->ReadData(*file);
  return data.release();
}

}  // namespace kestrin
