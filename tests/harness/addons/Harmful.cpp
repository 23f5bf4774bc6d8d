// An add-on that ends its process in the way that its event's data say: "read" while they are read,
// "view" while they are shown, "crash", "exit" or "block" when the event comes due; "stop" stops it
// until somebody lets it go on.
#include <kestrin/EndianIndependentFile.h>
#include <kestrin/EventAddOnData.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>

namespace {

class HarmfulData : public kestrin::EventAddOnData {
 public:
  using EventAddOnData::EventAddOnData;
  QWidget* CreateEditView(kestrin::Rect) override {
    if (harm_ == "view") std::raise(SIGSEGV);
    return nullptr;
  }
  bool Read(kestrin::EndianIndependentFile& file) {
    kestrin::uint32 count = 0;
    if (file.ReadNumber(&count, 4, 1) != 1) return false;
    harm_.resize(count);
    if (file.ReadRaw(harm_.data(), count) != static_cast<kestrin::int32>(count)) return false;
    if (harm_ == "read") std::raise(SIGSEGV);
    return true;
  }
  bool SaveData(kestrin::EndianIndependentFile* file) override {
    auto count = static_cast<kestrin::uint32>(harm_.size());
    return file->WriteNumber(&count, 4, 1) == 1 &&
           file->WriteRaw(harm_.data(), count) == static_cast<kestrin::int32>(count);
  }
  void DealWithEvent(bool) override {
    if (harm_ == "crash") std::raise(SIGSEGV);
    if (harm_ == "exit") std::_Exit(0);
    if (harm_ == "block")
      while (true) pause();
    if (harm_ == "stop") {
      std::raise(SIGSTOP);
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
  }

 private:
  std::string harm_;
};

}  // namespace

extern "C" {

const char* InitializeAddOn() { return "Harmful"; }

kestrin::EventAddOnData* NewAddOnData(kestrin::Event* event, kestrin::EndianIndependentFile* file,
                                      bool* ok) {
  auto* const data = new HarmfulData(event);
  *ok = !file || data->Read(*file);
  return data;
}
}
