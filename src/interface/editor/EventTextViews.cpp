#include "interface/editor/EventTextViews.h"

#include "core/events/EventSet.h"

namespace kestrin {

std::string PrewarnTextView::StoredText() const { return GetEvent().Record().PrewarnMessage; }
std::string NagTextView::StoredText() const { return GetEvent().Record().NagMessage; }
std::string CommentTextView::StoredText() const { return GetEvent().GetComment(); }

void PrewarnTextView::StoreChange() {
  const AutoLock lock(GetEvent().GetProtectionSemaphore());
  GetEvent().SetPrewarnMessage(Text());
}

void NagTextView::StoreChange() {
  const AutoLock lock(GetEvent().GetProtectionSemaphore());
  GetEvent().SetNagMessage(Text());
}

void CommentTextView::StoreChange() {
  const AutoLock lock(GetEvent().GetProtectionSemaphore());
  GetEvent().SetComment(Text());
}

}  // namespace kestrin
