#include "interface/handlerviews/HandlerViews.h"

#include "interface/handlerviews/ActOnFileView.h"
#include "interface/handlerviews/CommandEditView.h"
#include "interface/handlerviews/MessageEditView.h"
#include "interface/handlerviews/UnknownDataHandlerView.h"

namespace kestrin {

namespace {

QWidget* ViewOf(EventAddOnData& data) {
  if (auto* message = dynamic_cast<MessageDataHandler*>(&data))
    return new MessageEditView(*message);
  if (auto* command = dynamic_cast<CommandDataHandler*>(&data))
    return new CommandEditView(*command);
  if (auto* file = dynamic_cast<ActOnFileDataHandler*>(&data)) return new ActOnFileView(*file);
  if (auto* unknown = dynamic_cast<UnknownDataHandler*>(&data))
    return new UnknownDataHandlerView(*unknown);
  return nullptr;
}

}  // namespace

QWidget* CreateHandlerView(EventAddOnData& data, Rect frame) {
  QWidget* view = ViewOf(data);
  if (view)
    view->resize(static_cast<int>(frame.right - frame.left) + 1,
                 static_cast<int>(frame.bottom - frame.top) + 1);
  return view;
}

}  // namespace kestrin
