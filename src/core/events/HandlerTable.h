// The process-wide table of event handlers: filled at start-up by LoadEventHandlers, not changed
// until UnloadEventHandlers, read everywhere. Rows 0 to 4 are built in.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kestrin/EventAddOnData.h"

namespace kestrin {

struct Context;

extern int8 NumberOfEventHandlers;           ///< usable rows, built-ins included
extern std::vector<const char*> AddOnNames;  ///< row i: display and file name
extern std::vector<NewAddOnDataFunction> Function_NewAddOnData;  ///< row i: the factory
extern std::vector<void*> AddOnImages;                           ///< entry i - 5 belongs to row i
/// What handlers' services work with, while the table is loaded.
extern Context* HandlerContext;

inline constexpr int32 UnknownHandler = 0, MessageHandler = 2;
inline constexpr int32 NumberOfBuiltInHandlers = 5;

/// The first row of that name, or UnknownHandler.
int32 FindHandler(std::string_view name);

/// Empties the table; for tests and the end of the program.
void ResetHandlerTable();

/// Calls the row's factory. Null when it gives null or throws (`threw` tells), with `*ok` as the
/// factory left it; `*ok` starts true.
std::unique_ptr<EventAddOnData> MakeAddOnData(int32 row, Event* event, EndianIndependentFile* file,
                                              bool* ok, bool* threw);

/// The data's SaveData; false when it throws.
bool SaveAddOnData(EventAddOnData& data, EndianIndependentFile* file);

/// Implemented by the data of row 0: keeps the name of the handler that is not installed.
class KeepsOriginalHandler {
 public:
  virtual ~KeepsOriginalHandler() = default;
  virtual void SetOriginalHandler(std::string name) = 0;
  virtual const std::string& GetOriginalHandler() const = 0;
};

}  // namespace kestrin
