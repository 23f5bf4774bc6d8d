#include "interface/editor/EditorPage.h"

#include "core/EventSet.h"
#include "interface/editor/TypedField.h"

namespace kestrin {

void EditorPage::Write(const std::function<void(Event&)>& change) {
  {
    const AutoLock lock(event_.GetProtectionSemaphore());
    change(event_);
  }
  ShowEvent();
}

void EditorPage::AddField(TypedField* field) {
  const size_t row = fields_.size();
  fields_.push_back({field, {}});
  connect(field, &TypedField::Complained, this, [this, row](const QString& why) {
    fields_[row].complaint = why;
    Complain(why);
  });
}

void EditorPage::Complain(const QString& last) {
  QString standing = last;
  for (const Field& entry : fields_)
    if (standing.isEmpty()) standing = entry.complaint;
  emit Complained(standing);
}

void EditorPage::ShowFields() {
  for (const Field& entry : fields_) entry.field->ShowValue();
}

void EditorPage::CommitFields() {
  for (const Field& entry : fields_) entry.field->Commit();
}

void EditorPage::DropEdits() {
  for (const Field& entry : fields_) entry.field->Restore();
}

void EditorPage::DropHiddenEdits() {
  for (const Field& entry : fields_)
    if (!entry.field->isVisibleTo(this)) entry.field->Restore();
}

}  // namespace kestrin
