#include "core/files/EventRecordFile.h"

#include "core/events/EventSet.h"
#include "core/events/HandlerTable.h"
#include "support/OwnedText.h"

namespace kestrin {

namespace {

/// Reads field after field; after the first that fails nothing more is read.
class FieldReader {
 public:
  explicit FieldReader(EndianIndependentFile& file) : file_(file) {}

  template <typename T>
  void Number(const char* field, T& value) {
    if (fault_) return;
    if (file_.ReadNumber(&value, sizeof value, 1) != 1) fault_ = field;
  }
  void Flag(const char* field, bool& value) {
    uint8 byte = 0;
    Number(field, byte);
    if (!fault_) value = byte != 0;
  }
  void Text(const char* field, std::string& value) {
    value.clear();
    if (fault_ || file_.TakeEmptyString()) return;
    const status_t status = file_.ReadString(buffer_, TextLimit);
    if (status != StatusOk) {
      fault_ = field;
      tooLong_ = status == StatusError;
    }
    value.assign(fault_ ? "" : buffer_);
  }
  void Raw(const char* field, std::string& bytes, int32 count) {
    if (fault_) return;
    bytes.resize(static_cast<size_t>(count));
    if (file_.ReadRaw(bytes.data(), bytes.size()) != count) fault_ = field;
  }
  void Frame(const char* field, Rect& frame) {
    Number(field, frame.left);
    Number(field, frame.top);
    Number(field, frame.right);
    Number(field, frame.bottom);
  }
  bool Failed() const { return fault_ != nullptr; }
  std::string Fault() const {
    return std::string(fault_) +
           (tooLong_ ? " has no end within 4096 bytes" : " is cut off by the end of the file");
  }

 private:
  EndianIndependentFile& file_;
  const char* fault_ = nullptr;
  bool tooLong_ = false;
  char buffer_[TextLimit];
};

void ReadWhen(FieldReader& in, TimingRule& rule) {
  in.Number("PeriodType", rule.PeriodType);
  in.Number("Multiple", rule.Multiple);
  in.Number("TimingType", rule.TimingType);
  in.Number("RememberType", rule.RememberType);
  in.Number("EventTime", rule.EventTime);
  in.Number("DayOfMonth", rule.DayOfMonth);
  in.Number("WeekOfMonth", rule.WeekOfMonth);
  in.Number("DayOfWeek", rule.DayOfWeek);
  in.Number("Month", rule.Month);
  in.Number("MultiStartTime", rule.MultiStartTime);
  in.Flag("ApplyTime", rule.ApplyTime);
  in.Number("TimeToApply", rule.TimeToApply);
  in.Number("SubIntType", rule.SubIntType);
  in.Flag("ApplyStop", rule.ApplyStop);
  in.Number("StopTime", rule.StopTime);
}

void ReadReminders(FieldReader& in, EventRecord& record) {
  in.Flag("ApplyPrewarn", record.ApplyPrewarn);
  in.Number("PrewarnTime", record.PrewarnTime);
  in.Number("PrewarnType", record.PrewarnType);
  in.Flag("ApplyPrewarnRepeat", record.ApplyPrewarnRepeat);
  in.Number("PrewarnRepeatTime", record.PrewarnRepeatTime);
  in.Number("PrewarnRepeatType", record.PrewarnRepeatType);
  in.Text("PrewarnMessage", record.PrewarnMessage);
  in.Flag("ApplyNag", record.ApplyNag);
  in.Number("NagRepeatTime", record.NagRepeatTime);
  in.Number("NagRepeatType", record.NagRepeatType);
  in.Text("NagMessage", record.NagMessage);
  in.Flag("DeliverIfMissed", record.DeliverIfMissed);
  in.Flag("DeleteOnceDelivered", record.DeleteOnceDelivered);
  in.Text("Comment", record.Comment);
}

std::unique_ptr<IconPair> ReadIcon(FieldReader& in, EventRecord& record) {
  in.Number("icon number", record.IconNumber);
  if (record.IconNumber != -2) return nullptr;
  auto icon = std::make_unique<IconPair>();
  in.Raw("large icon", icon->large, LargeIconBytes);
  in.Raw("mini icon", icon->mini, MiniIconBytes);
  return icon;
}

/// Writes field after field; after the first that fails nothing more is written.
class FieldWriter {
 public:
  explicit FieldWriter(EndianIndependentFile& file) : file_(file) {}

  template <typename T>
  void Number(T value) {
    whole_ = whole_ && file_.WriteNumber(&value, sizeof value, 1) == 1;
  }
  void Flag(bool value) { Number(static_cast<uint8>(value ? 1 : 0)); }
  void Text(const std::string& text) {
    whole_ = whole_ && file_.WriteString(text.c_str()) == StatusOk;
  }
  void Raw(const std::string& bytes) {
    whole_ =
        whole_ && file_.WriteRaw(bytes.data(), bytes.size()) == static_cast<int32>(bytes.size());
  }
  void Frame(const Rect& frame) {
    Number(frame.left);
    Number(frame.top);
    Number(frame.right);
    Number(frame.bottom);
  }
  bool Whole() const { return whole_; }

 private:
  EndianIndependentFile& file_;
  bool whole_ = true;
};

void WriteWhen(FieldWriter& out, const TimingRule& rule) {
  out.Number(rule.PeriodType);
  out.Number(rule.Multiple);
  out.Number(rule.TimingType);
  out.Number(rule.RememberType);
  out.Number(rule.EventTime);
  out.Number(rule.DayOfMonth);
  out.Number(rule.WeekOfMonth);
  out.Number(rule.DayOfWeek);
  out.Number(rule.Month);
  out.Number(rule.MultiStartTime);
  out.Flag(rule.ApplyTime);
  out.Number(rule.TimeToApply);
  out.Number(rule.SubIntType);
  out.Flag(rule.ApplyStop);
  out.Number(rule.StopTime);
}

void WriteReminders(FieldWriter& out, const EventRecord& record) {
  out.Flag(record.ApplyPrewarn);
  out.Number(record.PrewarnTime);
  out.Number(record.PrewarnType);
  out.Flag(record.ApplyPrewarnRepeat);
  out.Number(record.PrewarnRepeatTime);
  out.Number(record.PrewarnRepeatType);
  out.Text(record.PrewarnMessage);
  out.Flag(record.ApplyNag);
  out.Number(record.NagRepeatTime);
  out.Number(record.NagRepeatType);
  out.Text(record.NagMessage);
  out.Flag(record.DeliverIfMissed);
  out.Flag(record.DeleteOnceDelivered);
  out.Text(record.Comment);
}

/// Null unless it has the bytes that a record of its own icon promises.
const IconPair* WholeIcon(const Event& event) {
  const IconPair* icon = event.GetOwnIcon();
  const bool whole =
      icon && icon->large.size() == LargeIconBytes && icon->mini.size() == MiniIconBytes;
  return whole ? icon : nullptr;
}

}  // namespace

bool ReadHandlerData(Event& event, const std::string& handlerName, EndianIndependentFile& file,
                     std::string& complaint) {
  const HandlerTable& handlers = event.GetOwner()->GetContext().handlers;
  const int32 row = handlers.Find(handlerName);
  // Only an add-on may fail in ways that leave the block to be kept; asking for the place costs.
  const int64 begin = row < NumberOfBuiltInHandlers ? 0 : file.Position();
  bool ok = true;
  bool threw = false;
  std::unique_ptr<EventAddOnData> data = handlers.MakeAddOnData(row, &event, &file, &ok, &threw);
  int32 keptBy = row;
  if (!data && row >= NumberOfBuiltInHandlers) {
    complaint = "The event handler \"" + handlerName +
                (threw ? "\" failed while reading an event.  The event is kept unchanged."
                       : "\" gave no data for an event.  The event is kept unchanged.");
    file.Seek(begin - 1, SEEK_SET);
    keptBy = UnknownHandler;
    data = handlers.MakeAddOnData(keptBy, &event, &file, &ok, &threw);
  }
  if (!data) return false;
  if (keptBy == UnknownHandler)
    if (auto* const unknown = dynamic_cast<KeepsOriginalHandler*>(data.get()))
      unknown->SetOriginalHandler(handlerName);
  event.AdoptAddOnData(keptBy, std::move(data));
  return ok;
}

std::unique_ptr<Event> ReadEventRecord(EventSet& owner, EndianIndependentFile& file,
                                       SetFileVersionIndex version, std::string& fault,
                                       std::string& complaint, int64* handlerDataAt) {
  FieldReader in(file);
  EventRecord record;
  in.Text("Name", record.Name);
  in.Number("NextEventTime", record.NextEventTime);
  in.Number("ActualEventTime", record.ActualEventTime);
  in.Flag("Active", record.Active);
  in.Number("Status", record.Status);
  uint8 reserved = 0;
  if (version != 0) in.Number("the reserved flag", reserved);
  ReadWhen(in, record);
  ReadReminders(in, record);
  std::unique_ptr<IconPair> icon = ReadIcon(in, record);
  in.Frame("WindowFrame", record.WindowFrame);
  in.Flag("the open flag", record.ShouldWindowOpen);
  if (version == 0) in.Number("the reserved flag", reserved);
  in.Number("TabShown", record.TabShown);
  std::string handlerName;
  in.Text("handler name", handlerName);
  if (in.Failed()) {
    fault = in.Fault();
    return nullptr;
  }
  auto event = std::make_unique<Event>(owner, std::move(record));
  event->AdoptIcon(std::move(icon));
  if (handlerDataAt) *handlerDataAt = file.Position();
  if (!ReadHandlerData(*event, handlerName, file, complaint)) {
    fault = "the data of its handler \"" + handlerName + "\" cannot be read";
    return nullptr;
  }
  return event;
}

bool WriteEventRecord(Event& event, EndianIndependentFile& file) {
  FieldWriter out(file);
  const EventRecord& record = event.Record();
  out.Text(record.Name);
  out.Number(record.NextEventTime);
  out.Number(record.ActualEventTime);
  out.Flag(record.Active);
  out.Number(record.Status);
  out.Flag(true);
  WriteWhen(out, record);
  WriteReminders(out, record);
  const IconPair* icon = record.IconNumber == -2 ? WholeIcon(event) : nullptr;
  out.Number(record.IconNumber == -2 && !icon ? -1 : record.IconNumber);
  if (icon) {
    out.Raw(icon->large);
    out.Raw(icon->mini);
  }
  out.Frame(record.WindowFrame);
  // A set that is not shown keeps which of its editors opened with it.
  out.Flag(event.GetOwner()->GetWindow() ? event.GetWindow() != nullptr : record.ShouldWindowOpen);
  out.Number(record.TabShown);
  out.Text(event.GetHandlerName());
  return out.Whole() && event.GetAddOnData() && SaveAddOnData(*event.GetAddOnData(), &file);
}

}  // namespace kestrin
