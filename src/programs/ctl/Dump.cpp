#include <cerrno>
#include <cstring>

#include "core/events/Event.h"
#include "core/settings/SetLayout.h"
#include "core/timing/EventRecord.h"
#include "programs/ctl/Commands.h"
#include "programs/ctl/JsonWriter.h"
#include "support/Bitmap.h"
#include "support/WholeFile.h"

namespace kestrin {

namespace {

/// Where an event's handler data stands in the file.
struct Extent {
  int64 offset;
  int64 length;
};

void WriteFrame(JsonWriter& json, const char* key, const Rect& frame) {
  json.Key(key);
  json.BeginArray();
  for (const float edge : {frame.left, frame.top, frame.right, frame.bottom}) json.Float(edge);
  json.EndArray();
}

void WriteNumber(JsonWriter& json, const char* key, int64 value) {
  json.Key(key);
  json.Number(value);
}

void WriteFlag(JsonWriter& json, const char* key, bool value) {
  json.Key(key);
  json.Boolean(value);
}

void WriteText(JsonWriter& json, const char* key, const std::string& text) {
  json.Key(key);
  json.Text(text);
}

void WriteWhen(JsonWriter& json, const TimingRule& rule) {
  WriteNumber(json, "PeriodType", rule.PeriodType);
  WriteNumber(json, "Multiple", rule.Multiple);
  WriteNumber(json, "TimingType", rule.TimingType);
  WriteNumber(json, "RememberType", rule.RememberType);
  WriteNumber(json, "EventTime", rule.EventTime);
  WriteNumber(json, "DayOfMonth", rule.DayOfMonth);
  WriteNumber(json, "WeekOfMonth", rule.WeekOfMonth);
  WriteNumber(json, "DayOfWeek", rule.DayOfWeek);
  WriteNumber(json, "Month", rule.Month);
  WriteNumber(json, "MultiStartTime", rule.MultiStartTime);
  WriteFlag(json, "ApplyTime", rule.ApplyTime);
  WriteNumber(json, "TimeToApply", rule.TimeToApply);
  WriteNumber(json, "SubIntType", rule.SubIntType);
  WriteFlag(json, "ApplyStop", rule.ApplyStop);
  WriteNumber(json, "StopTime", rule.StopTime);
}

void WriteReminders(JsonWriter& json, const EventRecord& record) {
  WriteFlag(json, "ApplyPrewarn", record.ApplyPrewarn);
  WriteNumber(json, "PrewarnTime", record.PrewarnTime);
  WriteNumber(json, "PrewarnType", record.PrewarnType);
  WriteFlag(json, "ApplyPrewarnRepeat", record.ApplyPrewarnRepeat);
  WriteNumber(json, "PrewarnRepeatTime", record.PrewarnRepeatTime);
  WriteNumber(json, "PrewarnRepeatType", record.PrewarnRepeatType);
  WriteText(json, "PrewarnMessage", record.PrewarnMessage);
  WriteFlag(json, "ApplyNag", record.ApplyNag);
  WriteNumber(json, "NagRepeatTime", record.NagRepeatTime);
  WriteNumber(json, "NagRepeatType", record.NagRepeatType);
  WriteText(json, "NagMessage", record.NagMessage);
  WriteFlag(json, "DeliverIfMissed", record.DeliverIfMissed);
  WriteFlag(json, "DeleteOnceDelivered", record.DeleteOnceDelivered);
  WriteText(json, "Comment", record.Comment);
}

void WriteEvent(JsonWriter& json, const Event& event, std::string_view handlerData) {
  const EventRecord& record = event.Record();
  json.BeginObject();
  WriteText(json, "Name", record.Name);
  WriteNumber(json, "NextEventTime", record.NextEventTime);
  WriteNumber(json, "ActualEventTime", record.ActualEventTime);
  WriteFlag(json, "Active", record.Active);
  WriteNumber(json, "Status", record.Status);
  WriteWhen(json, record);
  WriteReminders(json, record);
  WriteNumber(json, "IconNumber", record.IconNumber);
  if (const IconPair* icon = event.GetOwnIcon()) {
    json.Key("LargeIcon");
    json.Hex(icon->large);
    json.Key("MiniIcon");
    json.Hex(icon->mini);
  }
  WriteFrame(json, "WindowFrame", record.WindowFrame);
  WriteFlag(json, "WindowOpen", record.ShouldWindowOpen);
  WriteNumber(json, "TabShown", record.TabShown);
  WriteText(json, "HandlerName", event.GetHandlerName());
  json.Key("HandlerData");
  json.Hex(handlerData);
  json.EndObject();
}

template <typename Values>
void WriteNumbers(JsonWriter& json, const char* key, const Values& values) {
  json.Key(key);
  json.BeginArray();
  for (const int32 value : values) json.Number(value);
  json.EndArray();
}

void WriteLayout(JsonWriter& json, const SetLayout& layout) {
  WriteFrame(json, "WindowFrame", layout.WindowFrame);
  WriteNumbers(json, "ColumnOrder", layout.ColumnOrder);
  json.Key("ColumnShown");
  json.BeginArray();
  for (const bool shown : layout.ColumnShown) json.Boolean(shown);
  json.EndArray();
  json.Key("ColumnWidth");
  json.BeginArray();
  for (const float width : layout.ColumnWidth) json.Float(width);
  json.EndArray();
  WriteNumber(json, "NumberOfKeys", layout.NumberOfKeys);
  WriteNumbers(json, "SortKeys", layout.SortKeys);
  WriteNumbers(json, "SortModes", layout.SortModes);
  WriteNumber(json, "ViewMode", layout.ViewMode);
}

}  // namespace

int Dump(VirtualEngine& engine, const CtlArguments& arguments) {
  const std::string& path = arguments.files[0];
  std::vector<Extent> extents;
  SetFileReport report;
  report.OnHandlerData = [&](const Event&, int64 offset, int64 length) {
    extents.push_back({offset, length});
  };
  const EventSet* const set = ReadSet(engine, path, &report);
  if (!set) return ExitFailure;
  status_t status = StatusOk;
  const std::optional<std::string> bytes =
      ReadWholeFile(engine.files, path, status, MaxSetFileSize + 1);
  if (!bytes) {
    Complain(path, std::strerror(-status));
    return ExitFailure;
  }
  JsonWriter json(stdout);
  json.BeginObject();
  json.Key("version");
  json.String(report.Version);
  json.Key("byteOrder");
  json.String(report.BigEndian ? "big" : "little");
  json.Key("events");
  json.BeginArray();
  for (size_t i = 0; i < extents.size(); ++i) {
    const auto offset = static_cast<size_t>(extents[i].offset);
    const auto length = static_cast<size_t>(extents[i].length);
    // The file may have shrunk since; what is gone is left out.
    const std::string_view data =
        offset < bytes->size() ? std::string_view(*bytes).substr(offset, length) : "";
    WriteEvent(json, *set->Events()[i], data);
  }
  json.EndArray();
  WriteLayout(json, set->Layout());
  json.EndObject();
  return WrittenOut(json.Finish());
}

}  // namespace kestrin
