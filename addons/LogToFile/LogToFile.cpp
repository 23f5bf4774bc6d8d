// An add-on that keeps a log: each time an event comes due, a line with the time, the event's name
// and whether it was missed is appended to kestrin/events.log in the user's state folder.
#include <kestrin/EndianIndependentFile.h>
#include <kestrin/EventAddOnData.h>
#include <kestrin/EventServices.h>

#include <cstdlib>
#include <ctime>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <system_error>
#include <thread>

namespace {

using kestrin::uint32;

std::filesystem::path LogFile() {
  const char* state = std::getenv("XDG_STATE_HOME");
  const char* home = std::getenv("HOME");
  const std::filesystem::path folder =
      state && *state ? std::filesystem::path(state)
                      : std::filesystem::path(home ? home : "/tmp") / ".local" / "state";
  return folder / "kestrin" / "events.log";
}

/// A name may hold line ends; a line of the log may not.
std::string OnOneLine(std::string text) {
  for (char& character : text)
    if (character == '\n' || character == '\r') character = ' ';
  return text;
}

std::string LogLine(const std::string& name, bool missed) {
  const std::time_t now = std::time(nullptr);
  std::tm fields{};
  char moment[32];
  std::strftime(moment, sizeof moment, "%Y-%m-%dT%H:%M:%SZ", gmtime_r(&now, &fields));
  return std::string(moment) + "\t" + OnOneLine(name) + (missed ? "\tmissed\n" : "\n");
}

void Append(const std::string& line) {
  const std::filesystem::path path = LogFile();
  std::error_code ignored;
  std::filesystem::create_directories(path.parent_path(), ignored);
  std::ofstream log(path, std::ios::app);
  log << line << std::flush;
  if (!log) kestrin::ReportError(("Write to log: could not write " + path.string()).c_str());
}

class LogData final : public kestrin::EventAddOnData, public kestrin::ActsWithoutScreen {
 public:
  using EventAddOnData::EventAddOnData;

  /// Nothing is set up for an event, so the count is 0. What a later version may have stored after
  /// it is kept.
  bool Read(kestrin::EndianIndependentFile& file) {
    uint32 count = 0;
    if (file.ReadNumber(&count, 4, 1) != 1 || count > file.BytesLeft()) return false;
    payload_.resize(count);
    return file.ReadRaw(payload_.data(), count) == static_cast<kestrin::int32>(count);
  }

  bool SaveData(kestrin::EndianIndependentFile* file) override {
    uint32 count = static_cast<uint32>(payload_.size());
    return file->WriteNumber(&count, 4, 1) == 1 &&
           file->WriteRaw(payload_.data(), count) == static_cast<kestrin::int32>(count);
  }

  QWidget* CreateEditView(kestrin::Rect) override { return nullptr; }

  bool NeedsScreen() const override { return false; }

  /// The disk may be slow, so the line is written in a thread; it works on a copy of the name.
  void DealWithEvent(bool missed) override {
    const std::string line = LogLine(kestrin::GetEventName(GetAttachedTo()), missed);
    ProcessHold();
    try {
      std::thread([line] {
        try {
          Append(line);
        } catch (const std::exception&) {
          kestrin::ReportError("Write to log: out of memory");
        }
        ProcessDone();
      }).detach();
    } catch (const std::system_error&) {
      ProcessDone();
      kestrin::ReportError("Write to log: no thread could be started");
    }
  }

 private:
  std::string payload_;
};

}  // namespace

extern "C" {

const char* InitializeAddOn() { return "Write to log"; }

kestrin::EventAddOnData* NewAddOnData(kestrin::Event* event, kestrin::EndianIndependentFile* file,
                                      bool* ok) {
  auto data = std::make_unique<LogData>(event);
  *ok = !file || data->Read(*file);
  return data.release();
}
}
