#include "core/files/EventSetFile.h"

#include <array>
#include <bit>
#include <cstring>

#include "core/events/AddOnReading.h"
#include "core/files/EventRecordFile.h"
#include "support/FileDoor.h"
#include "support/HeapRoom.h"
#include "support/Opened.h"

namespace kestrin {

namespace {

constexpr std::array<const char*, 3> Versions = {"1.0", "1.1", "1.2"};
constexpr int32 VersionLimit = 30;
/// Large enough that a set of 100,000 events costs a few hundred system calls.
constexpr int32 FileBuffer = 65536;
/// What the events of a set take in memory, for each byte of its file.
constexpr size_t HeapPerByte = 4;
/// No record is shorter: all its texts empty, no icon, an empty handler block.
constexpr int64 ShortestRecord = 119;

template <typename T, size_t N>
bool ReadNumbers(EndianIndependentFile& file, std::array<T, N>& values) {
  return file.ReadNumber(values.data(), sizeof(T), N) == static_cast<int32>(N);
}

template <typename T>
bool ReadOne(EndianIndependentFile& file, T& value) {
  return file.ReadNumber(&value, sizeof value, 1) == 1;
}

bool ReadLayout(EndianIndependentFile& file, SetLayout& layout) {
  Rect& frame = layout.WindowFrame;
  std::array<uint8, NumberOfColumns> shown{};
  if (!ReadOne(file, frame.left) || !ReadOne(file, frame.top) || !ReadOne(file, frame.right) ||
      !ReadOne(file, frame.bottom) || !ReadNumbers(file, layout.ColumnOrder) ||
      !ReadNumbers(file, shown) || !ReadNumbers(file, layout.ColumnWidth) ||
      !ReadOne(file, layout.NumberOfKeys) || !ReadNumbers(file, layout.SortKeys) ||
      !ReadNumbers(file, layout.SortModes) || !ReadOne(file, layout.ViewMode))
    return false;
  for (size_t i = 0; i < shown.size(); ++i) layout.ColumnShown[i] = shown[i] != 0;
  return true;
}

template <typename T, size_t N>
bool WriteNumbers(EndianIndependentFile& file, std::array<T, N> values) {
  return file.WriteNumber(values.data(), sizeof(T), N) == static_cast<int32>(N);
}

template <typename T>
bool WriteOne(EndianIndependentFile& file, T value) {
  return file.WriteNumber(&value, sizeof value, 1) == 1;
}

bool WriteLayout(EndianIndependentFile& file, const SetLayout& layout) {
  const Rect& frame = layout.WindowFrame;
  std::array<uint8, NumberOfColumns> shown{};
  for (size_t i = 0; i < shown.size(); ++i) shown[i] = layout.ColumnShown[i] ? 1 : 0;
  return WriteNumbers(file, std::array{frame.left, frame.top, frame.right, frame.bottom}) &&
         WriteNumbers(file, layout.ColumnOrder) && WriteNumbers(file, shown) &&
         WriteNumbers(file, layout.ColumnWidth) && WriteOne(file, layout.NumberOfKeys) &&
         WriteNumbers(file, layout.SortKeys) && WriteNumbers(file, layout.SortModes) &&
         WriteOne(file, layout.ViewMode);
}

ConstructorResult Fail(SetFileReport& report, std::string fault) {
  report.Fault = std::move(fault);
  return ConstructorResult::CouldNotRead;
}

/// The handler's block begins at `blockAt` with its count; what it read after that is its data.
void ReportHandlerData(EndianIndependentFile& file, const Event& event, SetFileReport& report,
                       int64 blockAt) {
  const int64 dataAt = blockAt + 4;
  report.OnHandlerData(event, dataAt, file.Position() - dataAt);
}

ConstructorResult ReadEvents(EventSet& set, EndianIndependentFile& file,
                             SetFileVersionIndex version, SetFileReport& report) {
  int32 count = 0;
  if (!ReadOne(file, count)) return Fail(report, "the number of events is cut off");
  if (count < 0 || count > file.BytesLeft() / ShortestRecord)
    return Fail(report, "it is too short for the " + std::to_string(static_cast<uint32>(count)) +
                            " events it announces");
  if (!report.Events && !report.OnEvent) set.Reserve(static_cast<size_t>(count));
  int64 handlerDataAt = 0;
  AddOnReading reading(set.GetContext(), set.GetFileName());
  for (int32 i = 0; i < count; ++i) {
    std::string fault;
    std::unique_ptr<Event> event =
        ReadEventRecord(set, file, version, fault, report.Complaint, &reading,
                        report.OnHandlerData ? &handlerDataAt : nullptr, !report.OnEvent);
    if (!event) return Fail(report, "event " + std::to_string(i + 1) + ": " + fault);
    if (report.OnHandlerData) ReportHandlerData(file, *event, report, handlerDataAt);
    if (report.OnEvent)
      report.OnEvent(*event);
    else if (report.Events)
      report.Events->push_back(std::move(event));
    else
      set.AppendRead(std::move(event));
  }
  return ConstructorResult::Success;
}

}  // namespace

ConstructorResult ReadSetFile(EventSet& set, const std::string& path, SetFileReport& report) {
  Opened<EndianIndependentFile> file(set.GetContext().files, path, OpenReadOnly, FileBuffer);
  if (file.InitCheck() != StatusOk) {
    const status_t status = file.InitCheck();
    if (status == StatusFileError)
      report.Fault = "it is empty";
    else if (set.GetContext().files.Kind(path) == FileKind::Other)
      report.Fault = "it is not a regular file";
    else
      report.Fault = std::strerror(-status);
    // An empty file was opened but has not even its first byte.
    return status == StatusFileError ? ConstructorResult::CouldNotRead
                                     : ConstructorResult::CouldNotOpen;
  }
  report.BigEndian = file.IsNativeEndian() == (std::endian::native == std::endian::big);
  if (file.BytesLeft() > MaxSetFileSize)
    return Fail(report, "it is larger than an event set may be (64 MiB)");
  ExpectOnHeap(static_cast<size_t>(file.BytesLeft()) * (report.OnEvent ? 1 : HeapPerByte));
  char version[VersionLimit];
  if (file.ReadString(version, VersionLimit) != StatusOk)
    return Fail(report, "it does not begin with a version");
  report.Version = version;
  size_t index = 0;
  while (index < Versions.size() && report.Version != Versions[index]) ++index;
  if (index == Versions.size()) {
    report.Fault = "it was written by an unknown version (" + report.Version + ")";
    report.IsUnknownVersion = true;
    return ConstructorResult::Success;
  }
  const AutoLock lock(set);
  const ConstructorResult result =
      ReadEvents(set, file, static_cast<SetFileVersionIndex>(index), report);
  if (result != ConstructorResult::Success) return result;
  SetLayout unused;
  if (!ReadLayout(file, report.Events ? unused : set.Layout()))
    return Fail(report, "the settings of its window are cut off");
  return ConstructorResult::Success;
}

bool WriteSetFile(EventSet& set, EndianIndependentFile& file, std::string& fault) {
  if (file.WriteString(SetFileVersion) != StatusOk) return false;
  if (!WriteOne(file, set.CountEvents())) return false;
  for (const auto& event : set.Events())
    if (!WriteEventRecord(*event, file, fault)) return false;
  return WriteLayout(file, set.Layout()) && file.FlushBuffer() == StatusOk;
}

}  // namespace kestrin
