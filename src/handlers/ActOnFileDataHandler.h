// Starts an application or opens a document when the event comes due.
#pragma once

#include "handlers/StartingData.h"
#include "kestrin/EventAddOnData.h"

namespace kestrin {

/// Whether the file is there is found out by a worker.
class ActOnFileDataHandler final : public StartingData {
 public:
  using StartingData::StartingData;

  /// Full path; never null, empty when no file is chosen.
  const char* GetFileName() const { return Text(); }
  void SetFileName(const char* path) { SetText(path); }

  void DealWithEvent(bool missed) override;
};

EventAddOnData* DefHandActOnFile_NewAddOnData(Event* event, EndianIndependentFile* file, bool* ok);

}  // namespace kestrin
