#include <cerrno>
#include <cstring>

#include "core/events/Event.h"
#include "core/files/EventFields.h"
#include "core/files/EventSetFile.h"
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

class FieldDumper {
 public:
  FieldDumper(JsonWriter& json, const IconPair* icon) : json_(json), icon_(icon) {}

  template <typename T>
  void Field(const FieldName& name, T value) {
    WriteNumber(json_, name.record, value);
  }
  void Field(const FieldName& name, bool value) {
    json_.Key(name.record);
    json_.Boolean(value);
  }
  void Field(const FieldName& name, const std::string& text) {
    json_.Key(name.record);
    json_.Text(text);
  }
  void Field(const FieldName& name, const Rect& frame) { WriteFrame(json_, name.record, frame); }
  void OptionalText(const FieldName& name, const std::string& text) { Field(name, text); }
  void AfterStatus() {}
  void Icon(int32 number) {
    WriteNumber(json_, "IconNumber", number);
    if (!icon_) return;
    json_.Key("LargeIcon");
    json_.Hex(icon_->large);
    json_.Key("MiniIcon");
    json_.Hex(icon_->mini);
  }
  void WindowOpen(bool open) { Field("WindowOpen", open); }

 private:
  JsonWriter& json_;
  const IconPair* icon_;
};

void WriteEvent(JsonWriter& json, const Event& event, std::string_view handlerData) {
  json.BeginObject();
  FieldDumper dump(json, event.GetOwnIcon());
  VisitEventFields(event.Record(), dump);
  dump.Field("HandlerName", event.GetHandlerName());
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
