#include "handlers/LoadEventHandlers.h"

#include <dlfcn.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <vector>

#include "core/events/AddOnServices.h"
#include "core/events/Context.h"
#include "core/events/HandlerTable.h"
#include "core/loop/Notices.h"
#include "handlers/ActOnFileDataHandler.h"
#include "handlers/CommandDataHandler.h"
#include "handlers/DoNothingDataHandler.h"
#include "handlers/MessageDataHandler.h"
#include "handlers/PayloadBytes.h"
#include "handlers/UnknownDataHandler.h"
#include "kestrin/BufferedFile.h"
#include "kestrin/EventServices.h"
#include "support/OwnedText.h"

namespace kestrin {

namespace {

/// Nobody in the program calls what add-ons are promised: naming one of these services keeps them.
[[gnu::used]] const char* (*const PromisedService)(const Event*) = &GetEventName;

constexpr size_t MaxNamedLeftOut = 20;

template <typename Function>
Function FindSymbol(void* image, const char* name) {
  return reinterpret_cast<Function>(dlsym(image, name));
}

void TellLoadFailed(Context& context, const std::string& path, int code, const char* words) {
  if (words) std::fprintf(stderr, "Kestrin: %s\n", words);
  char text[16];
  std::snprintf(text, sizeof text, ": 0x%08X", static_cast<unsigned>(code));
  context.notices.ReportCompoundError("LoadEventHandlers: load_add_on failed for ", path, text);
}

/// Why the loader could not read the file, or ENOEXEC: it has no numbers itself.
int ReasonOf(Context& context, const std::string& path) {
  switch (context.files.Kind(path)) {
    case FileKind::Missing:
      return ENOENT;
    case FileKind::Folder:
      return EISDIR;
    default:
      break;
  }
  status_t status = StatusOk;
  return context.files.Open(path, OpenReadOnly, status) || status == StatusOk ? ENOEXEC : -status;
}

void* OpenImage(Context& context, const std::string& path) {
  if (context.files.Kind(path) == FileKind::Other) {  // the loader would wait at a pipe for ever
    TellLoadFailed(context, path, ENOEXEC, nullptr);
    return nullptr;
  }
  void* image = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (!image) TellLoadFailed(context, path, ReasonOf(context, path), dlerror());
  return image;
}

/// Null when the add-on refuses, throws, or gives a name that no file could hold.
const char* Initialise(InitializeAddOnFunction initialise, const std::string& path) {
  try {
    const char* name = initialise();
    return name && strnlen(name, TextLimit) < TextLimit ? name : nullptr;
  } catch (const std::exception& thrown) {
    std::fprintf(stderr, "Kestrin: InitializeAddOn of %s: %s\n", path.c_str(), thrown.what());
  } catch (...) {
    std::fprintf(stderr, "Kestrin: InitializeAddOn of %s threw\n", path.c_str());
  }
  return nullptr;
}

/// The words of the failure, or null when the image has taken a row.
const char* TakeRow(HandlerTable& handlers, void* image, const std::string& path) {
  const auto factory = FindSymbol<NewAddOnDataFunction>(image, "NewAddOnData");
  if (!factory) return "LoadEventHandlers:  couldn't find NewAddOnData for ";
  const auto initialise = FindSymbol<InitializeAddOnFunction>(image, "InitializeAddOn");
  if (!initialise) return "LoadEventHandlers:  couldn't find InitializeAddOn for ";
  const char* name = Initialise(initialise, path);
  if (!name) return "LoadEventHandlers:  InitializeAddOn failed for ";
  handlers.Add({name, factory, image});
  return nullptr;
}

void LoadAddOn(Context& context, const std::string& path) {
  void* image = OpenImage(context, path);
  if (!image) return;
  if (const char* failure = TakeRow(context.handlers, image, path)) {
    context.notices.ReportCompoundError(failure, path, "");
    dlclose(image);
  }
}

void TellLeftOut(Context& context, const std::vector<std::string>& paths) {
  std::string list;
  for (size_t i = 0; i < paths.size() && i < MaxNamedLeftOut; ++i) list += "\n" + paths[i];
  if (paths.size() > MaxNamedLeftOut)
    list += "\nand " + std::to_string(paths.size() - MaxNamedLeftOut) + " more";
  context.notices.ReportCompoundError("Kestrin can use at most " + std::to_string(MaxAddOns),
                                      " handler add-ons.  These were left out:", list);
}

void CleanUp(const HandlerTable::Row& row) {
  const auto cleanUp = FindSymbol<CleanUpAddOnFunction>(row.AddOnImage, "CleanUpAddOn");
  if (!cleanUp) return;
  try {
    cleanUp();
  } catch (...) {  // no alert opens any more when this runs
    std::fprintf(stderr, "Kestrin: CleanUpAddOn failed for %s\n", row.AddOnName);
  }
}

}  // namespace

void LoadBuiltInHandlers(Context& context) {
  HandlerTable& handlers = context.handlers;
  handlers.Clear();
  handlers.Add({DefHandUnknownName, DefHandUnknown_NewAddOnData, nullptr, PassBytes});
  handlers.Add({DefHandDoNothingName, DefHandDoNothing_NewAddOnData});
  handlers.Add({DefHandMessageName, DefHandMessage_NewAddOnData, nullptr, PassBytes});
  handlers.Add({DefHandCommandName, DefHandCommand_NewAddOnData, nullptr, FlaggedText::Pass});
  handlers.Add({DefHandActOnFileName, DefHandActOnFile_NewAddOnData, nullptr, FlaggedText::Pass});
}

void LoadEventHandlers(Context& context, SettingsStore* settings, const std::string& kestrinDir,
                       const std::string& userAddOnFolder) {
  if (kestrinDir.empty())
    context.notices.HandleErrorAndExit("LoadEventHandlers: GetAppInfo failed");
  LoadBuiltInHandlers(context);
  context.handlers.AddOnSettings = settings;
  std::vector<std::string> leftOut;
  std::vector<std::string> folders = {kestrinDir + "/add-ons"};
  // Installed for one person, the application lies beside the person's own add-ons.
  if (context.files.Canonical(userAddOnFolder) != context.files.Canonical(folders[0]))
    folders.push_back(userAddOnFolder);
  for (const std::string& folder : folders)
    for (const std::string& name :
         context.files.List(folder).value_or(std::vector<std::string>())) {
      std::string path = folder;
      path.append("/").append(name);
      if (context.handlers.NumberOfEventHandlers() < NumberOfBuiltInHandlers + MaxAddOns)
        LoadAddOn(context, path);
      else
        leftOut.push_back(path);
    }
  if (!leftOut.empty()) TellLeftOut(context, leftOut);
}

void UnloadEventHandlers(Context& context) {
  for (const HandlerTable::Row& row : context.handlers.Rows()) {
    if (!row.AddOnImage) continue;
    CleanUp(row);
    dlclose(row.AddOnImage);
  }
  context.handlers.AddOnSettings = nullptr;
  context.handlers.Clear();
  AddOnServices = nullptr;
}

}  // namespace kestrin
