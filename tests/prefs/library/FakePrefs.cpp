// A settings library in memory, as one might be installed. Built as "libprefs.so"; with
// WITHOUT_LISTEN, an old one that lacks an operation.
#include <cstdint>
#include <cstring>
#include <map>
#include <string>

namespace {

struct Value {
  std::string bytes;
  std::uint32_t type;
};
struct Set {
  std::map<std::string, Value> values, saved;
  int loaded = 0;
};

Set theSet;
int initialised = 0;

}  // namespace

extern "C" {

const char* PREFVersion() { return "fake libprefs 7"; }
int PREFInit(const char* appName, void** handle) {
  if (std::strcmp(appName, "x-vnd.ZR-Kestrin") != 0) return 11;
  *handle = &initialised;
  ++initialised;
  return 0;
}
int PREFShutdown(void* handle) { return handle == &initialised && initialised-- > 0 ? 0 : 12; }
int PREFLoadSet(void* handle, const char* setName, int create, void** set) {
  if (handle != &initialised || std::strcmp(setName, "KestrinSettings") != 0 || !create) return 13;
  theSet.values = theSet.saved;
  ++theSet.loaded;
  *set = &theSet;
  return 0;
}
int PREFSaveSet(void* set) {
  static_cast<Set*>(set)->saved = static_cast<Set*>(set)->values;
  return 0;
}
int PREFDisposeSet(void** set) {
  if (*set != &theSet) return 14;
  --theSet.loaded;
  *set = nullptr;
  return 0;
}
int PREFSetData(void* set, const char* key, const void* data, int size, std::uint32_t type) {
  if (std::strcmp(key, "refused") == 0) return 15;
  const auto* bytes = static_cast<const char*>(data);
  static_cast<Set*>(set)->values[key] = {std::string(bytes, bytes + size), type};
  return 0;
}
int PREFDelete(void* set, const char* key) {
  return static_cast<Set*>(set)->values.erase(key) ? 0 : 16;
}
int PREFGetData(void* set, const char* key, const void** data, int* size, std::uint32_t* type) {
  const auto found = static_cast<Set*>(set)->values.find(key);
  if (found == static_cast<Set*>(set)->values.end()) return 17;
  *data = found->second.bytes.data();
  *size = static_cast<int>(found->second.bytes.size());
  *type = found->second.type;
  return 0;
}
const char* PREFGetMessage(int status) { return status == 15 ? "refused" : "other"; }

// Exported, as the real ones are, but of no use to the program.
int PREFReloadSet(void*) { return 99; }
int PREFListApplications(void**, const char**) { return 99; }
int PREFDisposeApplicationCookie(void**) { return 99; }
int PREFListSets(void*, void**, const char**) { return 99; }
int PREFDisposeSetCookie(void**) { return 99; }
int PREFBeginTransaction(void*) { return 99; }
int PREFEndTransaction(void*, int) { return 99; }
#ifndef WITHOUT_LISTEN
int PREFListen(void*, void (*)(void*, const char*, void*), void*) { return 99; }
#endif
int PREFListData(void*, void**, const char**) { return 99; }
int PREFDisposeDataCookie(void**) { return 99; }
int PREFRemoveApp(const char*) { return 99; }
int PREFRemoveSet(void*, const char*) { return 99; }

/// For the test: how often initialised and loaded, and not yet released.
int FakePrefsInUse() { return initialised * 10 + theSet.loaded; }
}
