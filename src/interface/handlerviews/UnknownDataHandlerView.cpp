#include "interface/handlerviews/UnknownDataHandlerView.h"

#include "interface/common/ShownText.h"

namespace kestrin {

UnknownDataHandlerView::UnknownDataHandlerView(const UnknownDataHandler& handler)
    : QLabel("Missing handler: " + ShownLine(handler.GetOriginalHandler())) {
  setObjectName("missingHandler");
  setTextFormat(Qt::PlainText);
  setAlignment(Qt::AlignTop | Qt::AlignLeft);
  setWordWrap(true);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

}  // namespace kestrin
