// Any bytes as the file of the settings: what can be read is written and read again without a
// change, also beside another session that has written something else meanwhile.
#include "Trial.h"
#include "core/settings/BuiltInPrefs.h"
#include "core/settings/JoinSettings.h"
#include "core/settings/SettingsFile.h"
#include "harness/TestContext.h"

namespace kestrin {
namespace {

const std::string Path = "/Kestrin/KestrinSettings.json";

SettingsMap Read(const std::string& bytes) {
  const SettingsTextResult read = ReadSettingsText(bytes);
  Demand(read.isObject || read.settings.empty(), "nothing comes of what is no object");
  const std::string text = WriteSettingsText(read.settings);
  Demand(ReadSettingsText(text).settings == read.settings, "what was read is written");
  return read.settings;
}

/// A start and an end.
std::string LiveOnce(MemoryFileDoor& disk) {
  TestContext world(&disk);
  SettingsStore store(MakeBuiltInPrefs(disk, ""));
  InitSettings(world.Settings, store, world.Notes);
  WriteSettings(world.Settings, store, world.Notes);
  Demand(!store.UserKnowsOfFailure, "settings can be saved, whatever stood there");
  return disk.Bytes(Path).value_or("");
}

void TryFiles(const std::string& bytes, const std::string& theirs) {
  const SettingsMap ours = Read(bytes), others = Read(theirs);
  Demand(JoinSettings(ours, ours, others) == others || !others.contains("NumberOfSetsToUse"),
         "who has changed nothing takes all");
  Read(WriteSettingsText(JoinSettings({}, ours, others)));
  // What holds no setting is replaced whatever it says; a few of those are enough.
  if (ours.empty() && bytes.size() % 16 != 0) return;
  MemoryFileDoor disk;
  disk.Put(Path, bytes);
  const std::string once = LiveOnce(disk);
  Demand(ReadSettingsText(once).unreadable.empty(), "what was saved can be read");
  Demand(LiveOnce(disk) == once, "a start without a change writes the same");
}

}  // namespace

void TryInput(FuzzedDataProvider& in) {
  const std::string bytes = in.ConsumeRemainingBytesAsString();
  const size_t cut = bytes.find('\0');  // no such byte stands in such a file
  TryFiles(bytes.substr(0, cut), cut == bytes.npos ? "{}" : bytes.substr(cut + 1));
}

}  // namespace kestrin
