#include "interface/editor/EventTextViews.h"

#include "core/events/EventEdit.h"

namespace kestrin {

std::string PrewarnTextView::StoredText() const { return GetEvent().Record().PrewarnMessage; }
std::string NagTextView::StoredText() const { return GetEvent().Record().NagMessage; }
std::string CommentTextView::StoredText() const { return GetEvent().GetComment(); }

void PrewarnTextView::StoreChange() {
  const EventEdit edit(GetEvent());
  edit->SetPrewarnMessage(Text());
}

void NagTextView::StoreChange() {
  const EventEdit edit(GetEvent());
  edit->SetNagMessage(Text());
}

void CommentTextView::StoreChange() {
  const EventEdit edit(GetEvent());
  edit->SetComment(Text());
}

}  // namespace kestrin
