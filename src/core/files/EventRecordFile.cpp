#include "core/files/EventRecordFile.h"

#include <algorithm>
#include <cstring>

#include "core/events/EventSet.h"
#include "core/events/HandlerTable.h"
#include "core/files/EventFields.h"
#include "core/timing/EventTypes.h"
#include "support/OwnedText.h"

namespace kestrin {

namespace {

/// Reads field after field; after the first that fails nothing more is read.
class FieldReader {
 public:
  FieldReader(EndianIndependentFile& file, SetFileVersionIndex version)
      : file_(file), isFirstVersion_(version == 0) {}

  template <typename T>
  void Field(const FieldName& name, T& value) {
    if (fault_) return;
    if (file_.ReadNumber(&value, sizeof value, 1) != 1) fault_ = name.record;
  }
  void Field(const FieldName& name, bool& value) {
    uint8 byte = 0;
    Field(name, byte);
    if (!fault_) value = byte != 0;
  }
  void Field(const FieldName& name, std::string& value) {
    value.clear();
    if (fault_) return;
    const status_t status = file_.ReadString(buffer_, TextLimit);
    if (status != StatusOk) {
      fault_ = name.record;
      tooLong_ = status == StatusError;
    }
    value.assign(fault_ ? "" : buffer_);
  }
  void Field(const FieldName& name, Rect& frame) {
    Field(name, frame.left);
    Field(name, frame.top);
    Field(name, frame.right);
    Field(name, frame.bottom);
  }
  void OptionalText(const FieldName& name, std::string& value) { Field(name, value); }
  void AfterStatus() {
    if (!isFirstVersion_) ReservedFlag();
  }
  void Icon(int32& number) {
    Field("icon number", number);
    if (number != OwnIconNumber) return;
    icon_ = std::make_unique<IconPair>();
    Bytes("large icon", icon_->large, LargeIconBytes);
    Bytes("mini icon", icon_->mini, MiniIconBytes);
  }
  void WindowOpen(bool& open) {
    Field("the open flag", open);
    if (isFirstVersion_) ReservedFlag();
  }

  bool Failed() const { return fault_ != nullptr; }
  std::string Fault() const {
    return std::string(fault_) +
           (tooLong_ ? " has no end within 4096 bytes" : " is cut off by the end of the file");
  }
  std::unique_ptr<IconPair> TakeIcon() { return std::move(icon_); }

 private:
  void ReservedFlag() {
    uint8 reserved = 0;
    Field("the reserved flag", reserved);
  }
  void Bytes(const char* field, std::string& bytes, int32 count) {
    if (fault_) return;
    bytes.resize(static_cast<size_t>(count));
    if (file_.ReadRaw(bytes.data(), bytes.size()) != count) fault_ = field;
  }

  EndianIndependentFile& file_;
  const bool isFirstVersion_;
  std::unique_ptr<IconPair> icon_;
  const char* fault_ = nullptr;
  bool tooLong_ = false;
  char buffer_[TextLimit];
};

/// The same from bytes that lie ready, whole and in this machine's order; gives up on anything that
/// is out of the ordinary. What it has read of such a record is of no use.
class QuickReader {
 public:
  QuickReader(std::string_view ready, SetFileVersionIndex version)
      : at_(ready.data()), end_(ready.data() + ready.size()), isFirstVersion_(version == 0) {}

  template <typename T>
  void Field(const FieldName&, T& value) {
    if (static_cast<size_t>(end_ - at_) < sizeof value) return GiveUp();
    std::memcpy(&value, at_, sizeof value);
    at_ += sizeof value;
  }
  void Field(const FieldName& name, bool& value) {
    uint8 byte = 0;
    Field(name, byte);
    value = byte != 0;
  }
  void Field(const FieldName&, std::string& value) {
    if (at_ != end_ && *at_ == '\0') {
      value.clear();
      ++at_;
      return;
    }
    const size_t most = std::min(static_cast<size_t>(end_ - at_), size_t{TextLimit});
    const void* const end = most > 0 ? std::memchr(at_, '\0', most) : nullptr;
    if (!end) return GiveUp();
    value.assign(at_, static_cast<const char*>(end));
    at_ = static_cast<const char*>(end) + 1;
  }
  void Field(const FieldName&, Rect& frame) {
    for (float* const edge : {&frame.left, &frame.top, &frame.right, &frame.bottom})
      Field("the frame", *edge);
  }
  void OptionalText(const FieldName& name, std::string& value) { Field(name, value); }
  void AfterStatus() {
    if (!isFirstVersion_) ReservedFlag();
  }
  void Icon(int32& number) {
    Field("icon number", number);
    if (number == OwnIconNumber) GiveUp();
  }
  void WindowOpen(bool& open) {
    Field("the open flag", open);
    if (isFirstVersion_) ReservedFlag();
  }

  /// Null when it has given up, else where the record ends.
  const char* End() const { return gaveUp_ ? nullptr : at_; }

 private:
  void ReservedFlag() {
    uint8 reserved = 0;
    Field("the reserved flag", reserved);
  }
  void GiveUp() {
    gaveUp_ = true;
    end_ = at_;
  }

  const char* at_;
  const char* end_;
  const bool isFirstVersion_;
  bool gaveUp_ = false;
};

/// All of a record but its handler's data. Most records lie in the buffer as a whole.
[[gnu::flatten]] bool ReadQuickly(EndianIndependentFile& file, SetFileVersionIndex version,
                                  EventRecord& record, std::string& handlerName) {
  if (!file.IsNativeEndian()) return false;
  const std::string_view ready = file.Ready();
  QuickReader in(ready, version);
  VisitEventFields(record, in);
  in.Field("handler name", handlerName);
  if (!in.End()) return false;
  file.TakeReady(static_cast<size_t>(in.End() - ready.data()));
  return true;
}

/// Null unless it has the bytes that a record of its own icon promises.
const IconPair* WholeIcon(const Event& event) {
  const IconPair* icon = event.GetOwnIcon();
  const bool whole =
      icon && icon->large.size() == LargeIconBytes && icon->mini.size() == MiniIconBytes;
  return whole ? icon : nullptr;
}

/// Writes field after field; after the first that fails nothing more is written.
class FieldWriter {
 public:
  FieldWriter(const Event& event, EndianIndependentFile& file) : event_(event), file_(file) {}

  template <typename T>
  void Field(const FieldName&, T value) {
    Number(value);
  }
  void Field(const FieldName&, bool value) { Number(static_cast<uint8>(value ? 1 : 0)); }
  void Field(const FieldName&, const std::string& text) {
    whole_ = whole_ && file_.WriteString(text.c_str()) == StatusOk;
  }
  void Field(const FieldName&, const Rect& frame) {
    for (const float edge : {frame.left, frame.top, frame.right, frame.bottom}) Number(edge);
  }
  void OptionalText(const FieldName& name, const std::string& text) { Field(name, text); }
  void AfterStatus() { Field("the reserved flag", true); }
  void Icon(int32 number) {
    const IconPair* icon = number == OwnIconNumber ? WholeIcon(event_) : nullptr;
    Number(number == OwnIconNumber && !icon ? NoIconNumber : number);
    if (!icon) return;
    Bytes(icon->large);
    Bytes(icon->mini);
  }
  /// A set that is not shown keeps which of its editors opened with it.
  void WindowOpen(bool open) {
    const bool isShown = event_.GetOwner()->GetWindow() != nullptr;
    Field("the open flag", isShown ? event_.GetWindow() != nullptr : open);
  }
  bool Whole() const { return whole_; }

 private:
  template <typename T>
  void Number(T value) {
    whole_ = whole_ && file_.WriteNumber(&value, sizeof value, 1) == 1;
  }
  void Bytes(const std::string& bytes) {
    whole_ =
        whole_ && file_.WriteRaw(bytes.data(), bytes.size()) == static_cast<int32>(bytes.size());
  }

  const Event& event_;
  EndianIndependentFile& file_;
  bool whole_ = true;
};

}  // namespace

bool ReadHandlerData(Event& event, const std::string& handlerName, EndianIndependentFile& file,
                     std::string& complaint, AddOnReading* reading) {
  const HandlerTable& handlers = event.GetOwner()->GetContext().handlers;
  int32 row = handlers.Find(handlerName);
  if (row >= NumberOfBuiltInHandlers && reading && !reading->Begin(event.GetName(), handlerName))
    row = UnknownHandler;
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
                                       std::string& complaint, AddOnReading* reading,
                                       int64* handlerDataAt, bool withData) {
  auto event = std::make_unique<Event>(owner, Event::ToBeRead());
  EventRecord& record = event->ValuesToRead();
  std::string handlerName;
  if (!ReadQuickly(file, version, record, handlerName)) {
    record = EventRecord();
    FieldReader in(file, version);
    VisitEventFields(record, in);
    in.Field("handler name", handlerName);
    if (in.Failed()) {
      fault = in.Fault();
      return nullptr;
    }
    event->AdoptIcon(in.TakeIcon());
  }
  if (handlerDataAt) *handlerDataAt = file.Position();
  const HandlerTable& handlers = owner.GetContext().handlers;
  const auto pass = withData ? nullptr : handlers.PassDataOf(handlers.Find(handlerName));
  if (!(pass ? pass(file) : ReadHandlerData(*event, handlerName, file, complaint, reading))) {
    fault = "the data of its handler \"" + handlerName + "\" cannot be read";
    return nullptr;
  }
  return event;
}

bool WriteEventRecord(Event& event, EndianIndependentFile& file, std::string& fault) {
  FieldWriter out(event, file);
  VisitEventFields(event.Record(), out);
  out.Field("handler name", event.GetHandlerName());
  bool threw = false;
  if (out.Whole() && event.GetAddOnData() && SaveAddOnData(*event.GetAddOnData(), &file, &threw))
    return true;
  if (threw)
    fault = "The handler \"" + event.GetHandlerName() +
            "\" failed to write its data of the event \"" + event.GetName() + "\".";
  return false;
}

}  // namespace kestrin
