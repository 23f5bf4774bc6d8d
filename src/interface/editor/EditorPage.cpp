#include "interface/editor/EditorPage.h"

#include "core/events/EventEdit.h"
#include "interface/fields/TypedField.h"
#include "interface/fields/WrappingTextView.h"

namespace kestrin {

void EditorPage::Write(const std::function<void(Event&)>& change) {
  {
    const EventEdit edit(event_);
    change(event_);
  }
  ShowEvent();
}

void EditorPage::AddField(TypedField* field) {
  fields_.push_back(field);
  connect(field, &TypedField::Complained, this,
          [this, field](const QString& why) { TakeComplaint(field, why); });
}

void EditorPage::AddText(WrappingTextView* text) {
  texts_.push_back(text);
  connect(text, &WrappingTextView::Complained, this,
          [this, text](const QString& why) { TakeComplaint(text, why); });
}

void EditorPage::TakeComplaint(const QObject* source, const QString& why) {
  std::erase_if(complaints_, [source](const Complaint& each) { return each.source == source; });
  if (!why.isEmpty()) complaints_.push_back({source, why});
  emit Complained(complaints_.empty() ? QString() : complaints_.back().why);
}

void EditorPage::ShowFields() {
  for (TypedField* field : fields_) field->ShowValue();
  for (WrappingTextView* text : texts_) text->ShowText();
}

void EditorPage::CommitFields() {
  for (TypedField* field : fields_) field->Commit();
  for (WrappingTextView* text : texts_) text->Commit();
}

void EditorPage::DropEdits() {
  for (TypedField* field : fields_) field->Restore();
  for (WrappingTextView* text : texts_) text->Forget();
}

void EditorPage::DropHiddenEdits() {
  for (TypedField* field : fields_)
    if (!field->isVisibleTo(this)) field->Restore();
}

}  // namespace kestrin
