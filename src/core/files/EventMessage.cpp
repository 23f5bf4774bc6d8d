#include "core/files/EventMessage.h"

#include <stdio.h>

#include <algorithm>
#include <type_traits>
#include <utility>

#include "core/events/HandlerTable.h"
#include "core/files/EventRecordFile.h"
#include "kestrin/EndianIndependentFile.h"
#include "support/MemoryFile.h"
#include "support/OwnedText.h"

namespace kestrin {

namespace {

constexpr uint32 IconCode = FourCharCode("iBit"), HandlerDataCode = FourCharCode("hDat");
constexpr int32 OwnIcon = -2;
constexpr int32 FileBufferSize = 4096;
/// As far as a handler can read behind a count of 0.
constexpr size_t ZerosWithoutData = size_t{64} << 10;

/// An empty file for a handler's block, known to nobody else.
struct BlockFile : EndianIndependentFile {
  BlockFile()
      : EndianIndependentFile(std::make_unique<MemoryFile>(),
                              OpenReadWrite | OpenCreate | OpenErase, FileBufferSize) {}
};

// ---- The table: what comes before the icon, and what comes behind it. ----

template <typename Record, typename Visitor>
void VisitRule(Record& record, Visitor& visit) {
  visit.Field("Status", record.Status);
  visit.Field("PeriodType", record.PeriodType);
  visit.Field("Multiple", record.Multiple);
  visit.Field("TimeType", record.TimingType);
  visit.Field("RememberType", record.RememberType);
  visit.Field("SelectEventTime", record.EventTime);
  visit.Field("DayOfMonth", record.DayOfMonth);
  visit.Field("WeekOfMonth", record.WeekOfMonth);
  visit.Field("DayOfWeek", record.DayOfWeek);
  visit.Field("Month", record.Month);
  visit.Field("MultiStartTime", record.MultiStartTime);
  visit.Field("ApplyTime", record.ApplyTime);
  visit.Field("SecondsIntoDay", record.TimeToApply);
  visit.Field("SubIntType", record.SubIntType);
  visit.Field("ApplyStop", record.ApplyStop);
  visit.Field("StopTime", record.StopTime);
}

template <typename Record, typename Visitor>
void VisitBeforeIcon(Record& record, Visitor& visit) {
  visit.Field("Name", record.Name);
  visit.Field("NextEventTime", record.NextEventTime);
  visit.Field("ActualEventTime", record.ActualEventTime);
  visit.Field("Active", record.Active);
  VisitRule(record, visit);
  visit.Field("ApplyPrewarn", record.ApplyPrewarn);
  visit.Field("PrewarnTime", record.PrewarnTime);
  visit.Field("PrewarnType", record.PrewarnType);
  visit.Field("ApplyPrewarnRepeat", record.ApplyPrewarnRepeat);
  visit.Field("PrewarnRepeatTime", record.PrewarnRepeatTime);
  visit.Field("PrewarnRepeatType", record.PrewarnRepeatType);
  visit.OptionalText("PrewarnMessage", record.PrewarnMessage);
  visit.Field("ApplyNag", record.ApplyNag);
  visit.Field("NagRepeatTime", record.NagRepeatTime);
  visit.Field("NagRepeatType", record.NagRepeatType);
  visit.OptionalText("NagMessage", record.NagMessage);
  visit.Field("DeliverIfMissed", record.DeliverIfMissed);
  visit.Field("DeleteOnceDelivered", record.DeleteOnceDelivered);
  visit.OptionalText("Comment", record.Comment);
  visit.Field("IconNum", record.IconNumber);
}

template <typename Record, typename Visitor>
void VisitBehindIcon(Record& record, Visitor& visit) {
  visit.Field("WindowFrame", record.WindowFrame);
  visit.Field("ShownTab", record.TabShown);
}

// ---- Writing ----

class FieldAdder {
 public:
  explicit FieldAdder(Message& message) : message_(message) {}

  template <typename T>
  void Field(const char* name, const T& value) {
    message_.Set(name, value);
  }
  void Field(const char* name, uint32 value) { message_.Set(name, static_cast<int32>(value)); }
  void OptionalText(const char* name, const std::string& text) {
    if (!text.empty()) message_.Set(name, text);
  }

 private:
  Message& message_;
};

bool AddIcon(const IconPair* icon, Message& message) {
  if (!icon || icon->large.size() != LargeIconBytes || icon->mini.size() != MiniIconBytes)
    return false;
  message.Set("LargeIcon", RawData{IconCode, icon->large});
  message.Set("MiniIcon", RawData{IconCode, icon->mini});
  return true;
}

/// What a handler writes behind a count of 0; a reader without it finds zeros there.
bool AddBehindNothing(EndianIndependentFile& file, Message& message) {
  const int64 size = std::clamp<int64>(file.BytesLeft(), 0, ZerosWithoutData);
  RawData raw{HandlerDataCode, std::string(static_cast<size_t>(size), '\0')};
  if (file.ReadRaw(raw.bytes.data(), raw.bytes.size()) != size) return false;
  if (raw.bytes.find_first_not_of('\0') != std::string::npos)
    message.Set("HandlerBehind", std::move(raw));
  return true;
}

bool AddHandlerData(EventAddOnData* data, Message& message) {
  BlockFile file;
  uint32 count = 0;
  if (!data || file.InitCheck() != StatusOk || !SaveAddOnData(*data, &file)) return false;
  if (file.Seek(0, SEEK_SET) != 0 || file.ReadNumber(&count, sizeof count, 1) != 1) return false;
  if (count == 0) return AddBehindNothing(file, message);
  if (count > file.BytesLeft()) return false;
  RawData raw{HandlerDataCode, std::string(count, '\0')};
  if (file.ReadRaw(raw.bytes.data(), count) != static_cast<int32>(count)) return false;
  message.Set("HandlerData", std::move(raw));
  return true;
}

// ---- Reading ----

class FieldTaker {
 public:
  explicit FieldTaker(const Message& message) : message_(message) {}

  template <typename T>
  void Field(const char* name, T& value) {
    const std::optional<T> held = message_.Get<T>(name);
    if (held)
      value = *held;
    else
      whole_ = false;
  }
  void Field(const char* name, uint32& value) {
    int32 bits = 0;
    Field(name, bits);
    value = static_cast<uint32>(bits);
  }
  void Field(const char* name, std::string& text) {
    const std::optional<std::string> held = message_.Get<std::string>(name);
    if (!held) {
      whole_ = false;
      return;
    }
    bool wasCut = false;
    text = FitText(*held, &wasCut);
    anyCut_ |= wasCut;
  }
  void OptionalText(const char* name, std::string& text) {
    if (message_.Has(name)) Field(name, text);
  }
  void Bytes(const char* name, uint32 code, std::string& bytes) {
    std::optional<RawData> raw = message_.Get<RawData>(name);
    if (raw && raw->type == code)
      bytes = std::move(raw->bytes);
    else
      whole_ = false;
  }
  std::unique_ptr<IconPair> Icon() {
    auto icon = std::make_unique<IconPair>();
    Bytes("LargeIcon", IconCode, icon->large);
    Bytes("MiniIcon", IconCode, icon->mini);
    whole_ &= icon->large.size() == LargeIconBytes && icon->mini.size() == MiniIconBytes;
    return icon;
  }
  /// Another name than the one in the message would be another handler: nothing is cut.
  void HandlerName(std::string& name) {
    const bool textsCut = std::exchange(anyCut_, false);
    Field("HandlerName", name);
    whole_ &= !anyCut_;
    anyCut_ = textsCut;
  }
  bool IsWhole() const { return whole_; }
  bool AnyCut() const { return anyCut_; }

 private:
  const Message& message_;
  bool whole_ = true;
  bool anyCut_ = false;
};

/// `behind`: what follows a count of 0.
bool WriteBlock(const std::string& bytes, std::string behind, EndianIndependentFile& file) {
  auto count = static_cast<uint32>(bytes.size());
  behind.resize(ZerosWithoutData);
  if (count > 0) behind = bytes;
  return file.InitCheck() == StatusOk && file.WriteNumber(&count, sizeof count, 1) == 1 &&
         file.WriteRaw(behind.data(), behind.size()) == static_cast<int32>(behind.size()) &&
         file.Seek(0, SEEK_SET) == 0;
}

}  // namespace

bool Event::GenerateMessageForEvent(Message* message) const {
  EventRecord record = record_;
  if (acting_) {  // what is being delivered is not delivered by a copy
    const EventTimes next = ComputeEventTimes(record_, Now(), LocalZone());
    record.ActualEventTime = next.ActualEventTime;
    record.NextEventTime = next.NextEventTime;
    record.Status = next.Status;
  }
  FieldAdder add(*message);
  VisitBeforeIcon(record, add);
  if (record.IconNumber == OwnIcon && !AddIcon(GetOwnIcon(), *message)) return false;
  VisitBehindIcon(record, add);
  message->Set("HandlerName", GetHandlerName());
  return AddHandlerData(GetAddOnData(), *message);
}

EventFromMessageResult EventFromMessage(EventSet& owner, const Message& message) {
  EventRecord record;
  std::unique_ptr<IconPair> icon;
  std::string handlerName, handlerData, behind;
  FieldTaker take(message);
  VisitBeforeIcon(record, take);
  if (record.IconNumber == OwnIcon) icon = take.Icon();
  VisitBehindIcon(record, take);
  take.HandlerName(handlerName);
  if (message.Has("HandlerData")) take.Bytes("HandlerData", HandlerDataCode, handlerData);
  if (message.Has("HandlerBehind")) take.Bytes("HandlerBehind", HandlerDataCode, behind);
  BlockFile file;
  if (message.what != 0 || !take.IsWhole() || !WriteBlock(handlerData, behind, file)) return {};

  EventFromMessageResult result;
  auto event = std::make_unique<Event>(owner, std::move(record));
  event->AdoptIcon(std::move(icon));
  if (!ReadHandlerData(*event, handlerName, file, result.Complaint)) return {};
  event->UpdateEventTime();
  if (take.AnyCut())
    result.TextsCut = "A text of the event \"" + event->GetName() +
                      "\" was too long, or held a zero byte, and has been cut.";
  result.NewEvent = std::move(event);
  return result;
}

}  // namespace kestrin
