// Calls everything the public headers promise. It is opened with all symbols bound at once, so a
// program that does not export one of them cannot load it.
#include <kestrin/EndianIndependentFile.h>
#include <kestrin/EventAddOnData.h>
#include <kestrin/EventServices.h>

#include <memory>
#include <string>

namespace {

using namespace kestrin;

constexpr const char* SettingName = "Every service: calls";
constexpr uint32 SettingType = 0x54455854;

int32 CallsSoFar() {
  const void* data = nullptr;
  int32 size = 0;
  uint32 type = 0;
  if (ReadAddOnSetting(SettingName, data, size, type) != StatusOk || type != SettingType) return 0;
  return std::stoi(std::string(static_cast<const char*>(data), static_cast<size_t>(size)));
}

class ServiceData : public EventAddOnData, public ActsWithoutScreen {
 public:
  using EventAddOnData::EventAddOnData;
  bool NeedsScreen() const override { return false; }
  QWidget* CreateEditView(Rect) override { return nullptr; }

  bool SaveData(EndianIndependentFile* file) override {
    const char text[] = "every service";
    uint32 count = sizeof text;
    return file->InitCheck() == StatusOk && file->WriteNumber(&count, 4, 1) == 1 &&
           file->WriteString(text) == StatusOk;
  }

  bool Read(EndianIndependentFile& file) {
    uint32 count = 0;
    uint8 first = 0;
    char text[64];
    return file.ReadNumber(&count, 4, 1) == 1 && file.BytesLeft() >= count &&
           file.BufferedPreview(&first, 1) == 1 && first == 'e' &&
           file.ReadString(text, sizeof text) == StatusOk;
  }

  /// What the public file classes offer beyond that.
  static void UseFile(EndianIndependentFile& file, const std::string& path) {
    char byte = 0;
    file.BufferedRead(&byte, 1), file.BufferedWrite(&byte, 1), file.BufferedReadLine(&byte, 1);
    file.Read(&byte, 1), file.Write(&byte, 1), file.WriteRaw(&byte, 1), file.ReadRaw(&byte, 1);
    file.FlushBuffer(), file.Sync(), file.Position();
    file.SetTo(path, OpenReadOnly), file.SetTo(path, path, OpenReadOnly);
    file.Seek(0, SEEK_SET), file.SetSize(0), file.ReadAt(0, &byte, 1), file.WriteAt(0, &byte, 1);
  }

  void DealWithEvent(bool missed) override {
    Event* event = GetAttachedTo();
    const std::string calls = std::to_string(CallsSoFar() + 1);
    WriteAddOnSetting(SettingName, calls.data(), static_cast<uint32>(calls.size()), SettingType);
    LockEvent(event);
    SetEventModified(event);
    UnlockEvent(event);
    char* name = GetCopyString(GetEventName(event));
    SetNewString((std::string(name ? name : "") + GetEventComment(event)).c_str(), &name);
    const std::string times = std::to_string(GetActualEventTime(event)) + "/" +
                              std::to_string(GetNextEventTime(event)) + "/" +
                              std::to_string(GetEventApplyTime(event));
    ProcessHold();
    DeliverEventMessage(event, missed, "\n\n", name, " ", times.c_str(), " end");
    ProcessHold();
    DeliverEventNotification(event, missed, 7, "\n\nnotified", "", nullptr, nullptr, nullptr);
    const std::unique_ptr<char[]> text(GenerateMessageAlertText(
        event, missed, " calls ", calls.c_str(), nullptr, " in ", GetEventSetFileName(event)));
    ReportError(text.get());
    SetNewString(nullptr, &name);
    ProcessHold();
    ProcessDone();
    EAODReserved1(), EAODReserved2(), EAODReserved3();
    EAODReserved4(), EAODReserved5(), EAODReserved6();
  }
};

}  // namespace

// The header says that what follows is extern "C" and visible, whatever the library is built with.
const char* InitializeAddOn() { return "Every service"; }

kestrin::EventAddOnData* NewAddOnData(kestrin::Event* event, kestrin::EndianIndependentFile* file,
                                      bool* ok) {
  auto data = std::make_unique<ServiceData>(event);
  *ok = !file || data->Read(*file);
  return data.release();
}

extern const auto PromisedToo = &ServiceData::UseFile;
