// The edit views of the built-in handlers.
#pragma once

#include "kestrin/Types.h"

class QWidget;

namespace kestrin {

class EventAddOnData;

/// Without a parent, of the size of `frame`; null for data that nothing can be edited of. The data
/// outlives its view.
QWidget* CreateHandlerView(EventAddOnData& data, Rect frame);

}  // namespace kestrin
