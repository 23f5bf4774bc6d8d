// An add-on that does nothing well, or one thing badly: the definitions say which. NAME is what
// InitializeAddOn returns.
#include <kestrin/EndianIndependentFile.h>
#include <kestrin/EventAddOnData.h>

#include <stdexcept>
#include <string>

namespace {

class TestData : public kestrin::EventAddOnData {
 public:
  using EventAddOnData::EventAddOnData;
  QWidget* CreateEditView(kestrin::Rect) override { return nullptr; }
  bool SaveData(kestrin::EndianIndependentFile* file) override {
#ifdef THROWING_ACTION
    throw std::runtime_error("no saving today");
#endif
    kestrin::uint32 count = 0;
    return file->WriteNumber(&count, 4, 1) == 1;
  }
  void DealWithEvent(bool) override {
#ifdef THROWING_ACTION
    throw std::runtime_error("no action today");
#endif
  }
};

}  // namespace

extern "C" {
[[gnu::visibility("default")]] int CleanedUp = 0;
}

// Of these the header says that they are extern "C" and visible.

#ifndef NO_INITIALIZE
const char* InitializeAddOn() {
#if defined(THROWING_NAME)
  throw std::runtime_error("no name today");
#elif defined(ENDLESS_NAME)
  static const std::string name(5000, 'n');
  return name.c_str();
#else
  return NAME;
#endif
}
#endif

#ifndef NO_FACTORY
kestrin::EventAddOnData* NewAddOnData(kestrin::Event* event, kestrin::EndianIndependentFile*,
                                      bool* ok) {
  *ok = true;
#ifdef THROWING_FACTORY
  throw std::runtime_error("no data today");
#endif
#ifdef NULL_FACTORY
  return nullptr;
#endif
  return new TestData(event);
}
#endif

void CleanUpAddOn() {
  ++CleanedUp;
#ifdef THROWING_ACTION
  throw std::runtime_error("no cleaning today");
#endif
}
