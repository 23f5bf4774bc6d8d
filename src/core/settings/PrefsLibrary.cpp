#include "core/settings/PrefsLibrary.h"

#include <dlfcn.h>

#include <sstream>
#include <vector>

namespace kestrin {

namespace {

constexpr const char* LibraryName = "libprefs.so";

template <typename Result, typename... Arguments>
bool Bind(void* image, const char* name, std::function<Result(Arguments...)>& operation) {
  operation = reinterpret_cast<Result (*)(Arguments...)>(dlsym(image, name));
  return operation != nullptr;
}

bool BindSets(void* image, PrefsLibrary& library) {
  return Bind(image, "PREFVersion", library.PREFVersion) &&
         Bind(image, "PREFInit", library.PREFInit) &&
         Bind(image, "PREFShutdown", library.PREFShutdown) &&
         Bind(image, "PREFLoadSet", library.PREFLoadSet) &&
         Bind(image, "PREFSaveSet", library.PREFSaveSet) &&
         Bind(image, "PREFReloadSet", library.PREFReloadSet) &&
         Bind(image, "PREFDisposeSet", library.PREFDisposeSet) &&
         Bind(image, "PREFSetData", library.PREFSetData) &&
         Bind(image, "PREFDelete", library.PREFDelete) &&
         Bind(image, "PREFGetData", library.PREFGetData) &&
         Bind(image, "PREFGetMessage", library.PREFGetMessage);
}

bool BindLists(void* image, PrefsLibrary& library) {
  return Bind(image, "PREFListApplications", library.PREFListApplications) &&
         Bind(image, "PREFDisposeApplicationCookie", library.PREFDisposeApplicationCookie) &&
         Bind(image, "PREFListSets", library.PREFListSets) &&
         Bind(image, "PREFDisposeSetCookie", library.PREFDisposeSetCookie) &&
         Bind(image, "PREFBeginTransaction", library.PREFBeginTransaction) &&
         Bind(image, "PREFEndTransaction", library.PREFEndTransaction) &&
         Bind(image, "PREFListen", library.PREFListen) &&
         Bind(image, "PREFListData", library.PREFListData) &&
         Bind(image, "PREFDisposeDataCookie", library.PREFDisposeDataCookie) &&
         Bind(image, "PREFRemoveApp", library.PREFRemoveApp) &&
         Bind(image, "PREFRemoveSet", library.PREFRemoveSet);
}

std::optional<PrefsLibrary> Load(const std::string& path) {
  void* image = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!image) return std::nullopt;
  PrefsLibrary library;
  if (BindSets(image, library) && BindLists(image, library)) return library;
  dlclose(image);
  return std::nullopt;
}

std::vector<std::string> Candidates(const std::string& applicationFolder,
                                    const std::string& libraryPath) {
  std::vector<std::string> paths = {LibraryName};
  std::istringstream entries(libraryPath);
  for (std::string folder; std::getline(entries, folder, ':');) {
    if (folder.empty()) continue;
    if (folder.starts_with("%A/")) folder.replace(0, 2, applicationFolder);
    paths.push_back(folder + "/" + LibraryName);
  }
  return paths;
}

}  // namespace

std::optional<PrefsLibrary> FindPrefsLibrary(const std::string& applicationFolder,
                                             const std::string& libraryPath) {
  for (const std::string& path : Candidates(applicationFolder, libraryPath))
    if (auto library = Load(path)) return library;
  return std::nullopt;
}

}  // namespace kestrin
