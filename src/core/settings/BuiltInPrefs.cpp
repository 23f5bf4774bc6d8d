#include "core/settings/BuiltInPrefs.h"

#include <errno.h>
#include <string.h>

#include <memory>
#include <utility>
#include <vector>

#include "core/settings/JoinSettings.h"
#include "core/settings/SettingsText.h"
#include "support/OwnedText.h"
#include "support/WholeFile.h"

namespace kestrin {

namespace {

constexpr int64 TextLimitOfSet = int64{PrefsValueLimit} * 4;
constexpr int32 MostWaiting = 100;  // ms, for another process that saves

struct PrefsSet {
  std::string path;
  SettingsMap values;
  SettingsMap before;        ///< the values that this process last read or wrote
  bool keepOldFile = false;  ///< the file holds what could not be read
};

class BuiltInPrefs {
 public:
  BuiltInPrefs(FileDoor& door, std::string folder) : door_(door), folder_(std::move(folder)) {}

  int32 LoadSet(const char* name, bool create, void** set);
  int32 SaveSet(PrefsSet& set);
  SettingsMap JoinWithFile(PrefsSet& set, int32& status);
  int32 DisposeSet(void** set);
  const std::string& Complaint() const { return complaint_; }

 private:
  bool ReadFile(PrefsSet& set, bool create, int32& status);
  int32 MoveAside(const std::string& path);
  void Complain(const std::string& path, const std::string& why);

  FileDoor& door_;
  std::string folder_;
  std::string complaint_;
  std::vector<std::unique_ptr<PrefsSet>> sets_;
};

std::string ListOf(const std::vector<std::string>& keys) {
  constexpr size_t Shown = 5;
  std::string text;
  for (size_t i = 0; i < keys.size() && i < Shown; ++i)
    text += (i ? ", \"" : "\"") + keys[i] + "\"";
  return keys.size() > Shown ? text + " and others" : text;
}

bool IsFileName(const char* name) {
  const std::string_view text = name ? name : "";
  return !text.empty() && text.front() != '.' && text.find('/') == std::string_view::npos;
}

const char* MessageOf(int32 status) {
  const char* text = strerrordesc_np(status < 0 ? -status : status);
  return text ? text : "Unknown error";
}

int32 BuiltInPrefs::LoadSet(const char* name, bool create, void** set) {
  if (!IsFileName(name) || !set) return -EINVAL;
  auto loaded = std::make_unique<PrefsSet>();
  loaded->path = door_.Canonical(folder_ + "/" + name + ".json");
  int32 status = StatusOk;
  if (!ReadFile(*loaded, create, status)) return status;
  *set = sets_.emplace_back(std::move(loaded)).get();
  return StatusOk;
}

bool BuiltInPrefs::ReadFile(PrefsSet& set, bool create, int32& status) {
  const auto text = ReadWholeFile(door_, set.path, status, TextLimitOfSet);
  if (!text && status == -ENOENT) return create;
  set.keepOldFile = true;
  if (!text) {
    Complain(set.path, std::string("could not be read (") + MessageOf(status) + ")");
    return true;
  }
  SettingsTextResult result = ReadSettingsText(*text);
  set.before = set.values = std::move(result.settings);
  if (!result.isObject)
    Complain(set.path, "is damaged: it holds no JSON object");
  else if (!result.unreadable.empty())
    Complain(set.path, "is damaged: it is not clear what is meant by " + ListOf(result.unreadable));
  else
    set.keepOldFile = false;
  return true;
}

void BuiltInPrefs::Complain(const std::string& path, const std::string& why) {
  if (!complaint_.empty()) complaint_ += "\n\n";
  complaint_ += "The settings file \"" + path + "\" " + why +
                ".  Settings that could not be read have their usual values.  The file will be "
                "kept, with \".damaged\" added to its name.";
}

/// What another process has written since is kept, but where this one has changed the same. A file
/// that has become unreadable is kept aside; one that cannot be read just now is left alone.
SettingsMap BuiltInPrefs::JoinWithFile(PrefsSet& set, int32& status) {
  if (set.keepOldFile) return set.values;
  const auto text = ReadWholeFile(door_, set.path, status, TextLimitOfSet);
  if (status == -ENOENT) status = StatusOk;
  if (!text) return set.values;
  SettingsTextResult now = ReadSettingsText(*text);
  set.keepOldFile = !now.isObject || !now.unreadable.empty();
  if (!now.isObject) return set.values;
  return JoinSettings(set.before, set.values, std::move(now.settings));
}

/// The lock is a help, not a condition: who cannot have it writes all the same.
int32 BuiltInPrefs::SaveSet(PrefsSet& set) {
  int32 status = door_.MakeFolders(folder_);
  if (status != StatusOk) return status;
  const std::unique_ptr<FileLock> lock = door_.Lock(set.path + ".lock", MostWaiting);
  const std::string text = WriteSettingsText(JoinWithFile(set, status));
  if (static_cast<int64>(text.size()) > TextLimitOfSet) return -EFBIG;
  if (status == StatusOk && set.keepOldFile) status = MoveAside(set.path);
  if (status != StatusOk) return status;
  set.keepOldFile = false;
  status = WriteWholeFile(door_, set.path, text);
  if (status == StatusOk) set.before = set.values;
  return status;
}

int32 BuiltInPrefs::MoveAside(const std::string& path) {
  if (door_.Kind(path) == FileKind::Missing) return StatusOk;
  const std::string damaged = path + ".damaged";
  std::string name = damaged;
  for (int number = 2; door_.Kind(name) != FileKind::Missing; ++number)
    name = damaged + "." + std::to_string(number);
  return door_.Rename(path, name);
}

int32 BuiltInPrefs::DisposeSet(void** set) {
  if (!set) return -EINVAL;
  const auto erased = std::erase_if(sets_, [set](const auto& each) { return each.get() == *set; });
  *set = nullptr;
  return erased > 0 ? StatusOk : -EINVAL;
}

int32 SetData(PrefsSet& set, const char* key, const void* data, int32 size, uint32 type) {
  if (!key || !*key || !IsUtf8(key) || size < 0 || (size > 0 && !data)) return -EINVAL;
  if (size > PrefsValueLimit) return -EFBIG;
  std::string bytes;
  if (size > 0) bytes.assign(static_cast<const char*>(data), static_cast<size_t>(size));
  set.values[key] = {type, std::move(bytes)};
  return StatusOk;
}

int32 GetData(const PrefsSet& set, const char* key, const void** data, int32* size, uint32* type) {
  const auto found = set.values.find(key ? key : "");
  if (found == set.values.end()) return -ENOENT;
  *data = found->second.bytes.data();
  *size = static_cast<int32>(found->second.bytes.size());
  *type = found->second.type;
  return StatusOk;
}

PrefsSet* SetOf(void* set) { return static_cast<PrefsSet*>(set); }

void RefuseTheRest(PrefsLibrary& table) {
  table.PREFReloadSet = [](void*) { return -ENOSYS; };
  table.PREFListApplications = [](void**, const char**) { return -ENOSYS; };
  table.PREFDisposeApplicationCookie = [](void**) { return -ENOSYS; };
  table.PREFListSets = [](void*, void**, const char**) { return -ENOSYS; };
  table.PREFDisposeSetCookie = [](void**) { return -ENOSYS; };
  table.PREFBeginTransaction = [](void*) { return -ENOSYS; };
  table.PREFEndTransaction = [](void*, int32) { return -ENOSYS; };
  table.PREFListen = [](void*, PrefsListener, void*) { return -ENOSYS; };
  table.PREFListData = [](void*, void**, const char**) { return -ENOSYS; };
  table.PREFDisposeDataCookie = [](void**) { return -ENOSYS; };
  table.PREFRemoveApp = [](const char*) { return -ENOSYS; };
  table.PREFRemoveSet = [](void*, const char*) { return -ENOSYS; };
}

}  // namespace

PrefsLibrary MakeBuiltInPrefs(FileDoor& door, const std::string& configFolder) {
  const auto prefs = std::make_shared<BuiltInPrefs>(door, configFolder + "/Kestrin");
  PrefsLibrary table;
  RefuseTheRest(table);
  table.PREFVersion = [] { return "simple libprefs.so version 1.2.4"; };
  table.PREFGetMessage = MessageOf;
  table.PREFInit = [handle = prefs.get()](const char*, void** out) {
    *out = handle;
    return StatusOk;
  };
  table.PREFShutdown = [](void*) { return StatusOk; };
  table.PREFLoadSet = [prefs](void*, const char* name, int32 create, void** set) {
    return prefs->LoadSet(name, create != 0, set);
  };
  table.PREFSaveSet = [prefs](void* set) { return set ? prefs->SaveSet(*SetOf(set)) : -EINVAL; };
  table.PREFDisposeSet = [prefs](void** set) { return prefs->DisposeSet(set); };
  table.PREFSetData = [](void* set, const char* key, const void* data, int32 size, uint32 type) {
    return set ? SetData(*SetOf(set), key, data, size, type) : -EINVAL;
  };
  table.PREFDelete = [](void* set, const char* key) {
    return set && key && SetOf(set)->values.erase(key) ? StatusOk : -ENOENT;
  };
  table.PREFGetData = [](void* set, const char* key, const void** data, int32* size, uint32* type) {
    return set ? GetData(*SetOf(set), key, data, size, type) : -EINVAL;
  };
  table.Complaint = [prefs] { return prefs->Complaint(); };
  return table;
}

PrefsLibrary OpenPrefs(FileDoor& door, const std::string& configFolder,
                       const std::string& applicationFolder, const std::string& libraryPath) {
  if (auto found = FindPrefsLibrary(applicationFolder, libraryPath)) return std::move(*found);
  return MakeBuiltInPrefs(door, configFolder);
}

}  // namespace kestrin
