#include "interface/handlerviews/MessageEditView.h"

namespace kestrin {

MessageEditView::MessageEditView(MessageDataHandler& handler)
    : WrappingTextView("messageText", "Message"), handler_(handler) {
  setPlaceholderText("What the reminder says besides the event's name");
  ShowText();
}

}  // namespace kestrin
