// The bytes of one event within a set file.
#pragma once

#include <memory>
#include <string>

#include "core/events/AddOnReading.h"
#include "core/events/Event.h"
#include "kestrin/EndianIndependentFile.h"

namespace kestrin {

/// Index of a version in the table "1.0", "1.1", "1.2".
using SetFileVersionIndex = uint8;

/// Reads one record for `owner`; null when it cannot be read, with the reason in `fault`.
/// A handler that failed although the record was read is told in `complaint`. `reading` (may be
/// null) says which data are kept unread. `handlerDataAt` (may
/// be null) receives the place of the handler's block in the file. `withData` false: a built-in
/// handler's data are passed over, and the event has none.
std::unique_ptr<Event> ReadEventRecord(EventSet& owner, EndianIndependentFile& file,
                                       SetFileVersionIndex version, std::string& fault,
                                       std::string& complaint, AddOnReading* reading = nullptr,
                                       int64* handlerDataAt = nullptr, bool withData = true);

/// Writes one record. False when a write was not whole, or its handler threw; then `fault` says so.
bool WriteEventRecord(Event& event, EndianIndependentFile& file, std::string& fault);

/// The event's handler data block alone: the reader's last step, which messages share. The name
/// decides the handler; without one of that name, or when it fails in a way that `complaint` then
/// tells, the block is kept under "Unknown".
bool ReadHandlerData(Event& event, const std::string& handlerName, EndianIndependentFile& file,
                     std::string& complaint, AddOnReading* reading = nullptr);

}  // namespace kestrin
