#include "core/files/EventMessage.h"

#include <stdio.h>

#include <algorithm>
#include <type_traits>
#include <utility>

#include "core/events/EventSet.h"
#include "core/events/HandlerTable.h"
#include "core/files/EventFields.h"
#include "core/files/EventRecordFile.h"
#include "core/files/HandlerBlock.h"
#include "core/timing/EventTypes.h"
#include "kestrin/EndianIndependentFile.h"
#include "support/OwnedText.h"

namespace kestrin {

namespace {

constexpr uint32 IconCode = FourCharCode("iBit"), HandlerDataCode = FourCharCode("hDat");

// ---- Writing ----

class FieldAdder {
 public:
  FieldAdder(const IconPair* icon, Message& message) : icon_(icon), message_(message) {}

  template <typename T>
  void Field(const FieldName& name, const T& value) {
    message_.Set(name.message, value);
  }
  void Field(const FieldName& name, uint32 value) { Field(name, static_cast<int32>(value)); }
  void OptionalText(const FieldName& name, const std::string& text) {
    if (!text.empty()) Field(name, text);
  }
  void AfterStatus() {}
  void Icon(int32 number) {
    Field("IconNum", number);
    if (number != OwnIconNumber) return;
    whole_ = icon_ && icon_->large.size() == LargeIconBytes && icon_->mini.size() == MiniIconBytes;
    if (!whole_) return;
    message_.Set("LargeIcon", RawData{IconCode, icon_->large});
    message_.Set("MiniIcon", RawData{IconCode, icon_->mini});
  }
  void WindowOpen(bool) {}  // a copy's editor does not stand open
  bool IsWhole() const { return whole_; }

 private:
  const IconPair* icon_;
  Message& message_;
  bool whole_ = true;
};

/// What a handler writes after a count of 0; a reader without it finds zeros there.
bool AddAfterNothing(EndianIndependentFile& file, Message& message) {
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
  if (count == 0) return AddAfterNothing(file, message);
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
  void Field(const FieldName& name, T& value) {
    const std::optional<T> held = message_.Get<T>(name.message);
    if (held)
      value = *held;
    else
      whole_ = false;
  }
  void Field(const FieldName& name, uint32& value) {
    int32 bits = 0;
    Field(name, bits);
    value = static_cast<uint32>(bits);
  }
  void Field(const FieldName& name, std::string& text) {
    const std::optional<std::string> held = message_.Get<std::string>(name.message);
    if (!held) {
      whole_ = false;
      return;
    }
    bool wasCut = false;
    text = FitText(*held, &wasCut);
    anyCut_ |= wasCut;
  }
  void OptionalText(const FieldName& name, std::string& text) {
    if (message_.Has(name.message)) Field(name, text);
  }
  void AfterStatus() {}
  void Icon(int32& number) {
    Field("IconNum", number);
    if (number != OwnIconNumber) return;
    icon_ = std::make_unique<IconPair>();
    Bytes("LargeIcon", IconCode, icon_->large);
    Bytes("MiniIcon", IconCode, icon_->mini);
    whole_ &= icon_->large.size() == LargeIconBytes && icon_->mini.size() == MiniIconBytes;
  }
  void WindowOpen(bool&) {}
  void Bytes(const char* name, uint32 code, std::string& bytes) {
    std::optional<RawData> raw = message_.Get<RawData>(name);
    if (raw && raw->type == code)
      bytes = std::move(raw->bytes);
    else
      whole_ = false;
  }
  std::unique_ptr<IconPair> TakeIcon() { return std::move(icon_); }
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
  std::unique_ptr<IconPair> icon_;
  bool whole_ = true;
  bool anyCut_ = false;
};

/// `afterNothing`: what follows a count of 0.
bool WriteBlock(const std::string& bytes, std::string afterNothing, EndianIndependentFile& file) {
  auto count = static_cast<uint32>(bytes.size());
  afterNothing.resize(ZerosWithoutData);
  const std::string& rest = count > 0 ? bytes : afterNothing;
  return file.InitCheck() == StatusOk && file.WriteNumber(&count, sizeof count, 1) == 1 &&
         file.WriteRaw(rest.data(), rest.size()) == static_cast<int32>(rest.size()) &&
         file.Seek(0, SEEK_SET) == 0;
}

}  // namespace

bool GenerateMessageForEvent(const Event& event, Message* message) {
  EventRecord record = event.Record();
  if (event.IsActing()) {  // what is being delivered is not delivered by a copy
    const Context& context = event.GetOwner()->GetContext();
    const EventTimes next = ComputeEventTimes(record, context.clock.Now(), context.zone);
    record.ActualEventTime = next.ActualEventTime;
    record.NextEventTime = next.NextEventTime;
    record.Status = next.Status;
  }
  FieldAdder add(event.GetOwnIcon(), *message);
  VisitEventFields(std::as_const(record), add);
  if (!add.IsWhole()) return false;
  message->Set("HandlerName", event.GetHandlerName());
  return AddHandlerData(event.GetAddOnData(), *message);
}

EventFromMessageResult EventFromMessage(EventSet& owner, const Message& message) {
  EventRecord record;
  std::string handlerName, handlerData, afterNothing;
  FieldTaker take(message);
  VisitEventFields(record, take);
  take.HandlerName(handlerName);
  if (message.Has("HandlerData")) take.Bytes("HandlerData", HandlerDataCode, handlerData);
  if (message.Has("HandlerBehind")) take.Bytes("HandlerBehind", HandlerDataCode, afterNothing);
  BlockFile file;
  if (message.what != 0 || !take.IsWhole() || !WriteBlock(handlerData, afterNothing, file))
    return {};

  EventFromMessageResult result;
  auto event = std::make_unique<Event>(owner, std::move(record));
  event->AdoptIcon(take.TakeIcon());
  if (!ReadHandlerData(*event, handlerName, file, result.Complaint)) return {};
  event->UpdateEventTime();
  if (take.AnyCut())
    result.TextsCut = "A text of the event \"" + event->GetName() +
                      "\" was too long, or held a zero byte, and has been cut.";
  result.NewEvent = std::move(event);
  return result;
}

}  // namespace kestrin
