// The bytes of an event set on disk; docs/file-format.md shows them.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/events/EventSet.h"
#include "kestrin/EndianIndependentFile.h"

namespace kestrin {

inline constexpr char SetFileVersion[] = "1.2";
inline constexpr char SetFileType[] = "application/x-vnd.ZR-KestrinEventSet";
inline constexpr char SetFileSuffix[] = ".kestrin";
/// Larger files are refused: 64 MiB are 300,000 events of an ordinary length.
inline constexpr int64 MaxSetFileSize = int64{64} << 20;

/// What a reader may want to know beyond the events.
struct SetFileReport {
  std::string Version;
  bool BigEndian = false;
  bool IsUnknownVersion = false;
  bool IsKnown = false;   ///< from the caller: the user has been told of this file
  std::string Fault;      ///< why the file was refused, for people; else empty
  std::string Complaint;  ///< an add-on failed, its events are kept; for people
  /// Not null: the events are put here instead of into the set, and the window's settings are left.
  std::vector<std::unique_ptr<Event>>* Events = nullptr;
  /// Set: each event is handed to this instead, without its handler's data where that is built in,
  /// and then goes; the set stays empty.
  std::function<void(Event& event)> OnEvent;
  /// Called after each event with the place of its handler's data, after the count, in the file.
  std::function<void(const Event& event, int64 offset, int64 length)> OnHandlerData;
};

/// Reads the file into the new, empty `set`. An unknown version leaves the result at Success. Main
/// thread; does not tell the user anything.
ConstructorResult ReadSetFile(EventSet& set, const std::string& path, SetFileReport& report);

/// Writes version 1.2 in this machine's byte order at the file's position. False when a write was
/// not whole, or when a handler threw; then `fault` names it and its event.
bool WriteSetFile(EventSet& set, EndianIndependentFile& file, std::string& fault);

}  // namespace kestrin
