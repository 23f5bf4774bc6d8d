// The settings library, found at run time: its operations as a table.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "kestrin/Types.h"

namespace kestrin {

extern "C" {
/// Told of each key that changed, with what was given to PREFListen.
using PrefsListener = void (*)(void* set, const char* key, void* user);
}

/// One entry for each C function that "libprefs.so" exports, under its name there. An int32 result
/// is 0 for success and an error code otherwise. Texts are zero-terminated and stay their owner's.
/// Lists are walked with a cookie, null before the first call, until the result is not 0.
struct PrefsLibrary {
  std::function<const char*()> PREFVersion;
  std::function<int32(const char* appName, void** handle)> PREFInit;
  std::function<int32(void* handle)> PREFShutdown;
  /// `create`: other than 0 makes an empty set when there is none of that name.
  std::function<int32(void* handle, const char* setName, int32 create, void** set)> PREFLoadSet;
  std::function<int32(void* set)> PREFSaveSet;
  std::function<int32(void* set)> PREFReloadSet;
  std::function<int32(void** set)> PREFDisposeSet;
  /// Copies the bytes.
  std::function<int32(void* set, const char* key, const void* data, int32 size, uint32 type)>
      PREFSetData;
  std::function<int32(void* set, const char* key)> PREFDelete;
  /// The bytes stay the library's, until the key is set or deleted or the set disposed of.
  std::function<int32(void* set, const char* key, const void** data, int32* size, uint32* type)>
      PREFGetData;
  std::function<const char*(int32 status)> PREFGetMessage;
  std::function<int32(void** cookie, const char** appName)> PREFListApplications;
  std::function<int32(void** cookie)> PREFDisposeApplicationCookie;
  std::function<int32(void* handle, void** cookie, const char** setName)> PREFListSets;
  std::function<int32(void** cookie)> PREFDisposeSetCookie;
  std::function<int32(void* set)> PREFBeginTransaction;
  std::function<int32(void* set, int32 keep)> PREFEndTransaction;
  std::function<int32(void* set, PrefsListener listener, void* user)> PREFListen;
  std::function<int32(void* set, void** cookie, const char** key)> PREFListData;
  std::function<int32(void** cookie)> PREFDisposeDataCookie;
  std::function<int32(const char* appName)> PREFRemoveApp;
  std::function<int32(void* handle, const char* setName)> PREFRemoveSet;

  /// What the user should be told about the sets loaded so far; no function of the library's. Not
  /// set for a library that was found.
  std::function<std::string()> Complaint;
};

/// "libprefs.so" where the system looks for libraries, else in the folders of `libraryPath`:
/// separated by colons, "%A/" at the start of one standing for `applicationFolder`. A library that
/// lacks one of the operations is passed over. It stays in the process once it was found.
std::optional<PrefsLibrary> FindPrefsLibrary(const std::string& applicationFolder,
                                             const std::string& libraryPath);

}  // namespace kestrin
