#include "interface/editor/EventNagView.h"

#include <QCheckBox>
#include <QLabel>
#include <QVBoxLayout>

#include "core/events/Event.h"
#include "interface/editor/EventIntervalView.h"
#include "interface/editor/EventTextViews.h"
#include "interface/editor/PageParts.h"
#include "interface/fields/NumberField.h"

namespace kestrin {

EventNagView::EventNagView(Event& event)
    : EditorPage(event),
      apply_(new QCheckBox("&Deliver nagging messages")),
      rest_(BuildSwitchedPage(*this, *apply_, "applyNag")) {
  connect(apply_, &QCheckBox::clicked, this,
          [this](bool on) { Write([on](Event& it) { it.SetApplyNag(on); }); });
  BuildRepeat();
  BuildText();
}

void EventNagView::BuildRepeat() {
  IntervalParts parts{"nagRepeat",
                      "nagRepeatUnit",
                      "Repeat every",
                      1,
                      &TimingRule::NagRepeatTime,
                      &TimingRule::NagRepeatType,
                      &Event::SetNagRepeatTime,
                      &Event::SetNagRepeatType,
                      [](TimingRule& rule) { rule.ApplyNag = true; }};
  repeat_ = new EventIntervalView(new QLabel("&Repeat every"), std::move(parts), {}, GetEvent(),
                                  [this](const auto& change) { Write(change); });
  AddField(repeat_->Field());
  rest_->layout()->addWidget(repeat_);
}

void EventNagView::BuildText() {
  auto* text = new NagTextView("nagMessage", "Nagging message", GetEvent());
  AddText(text);
  AddCaptioned(*rest_, "Nagging m&essage:", text);
}

void EventNagView::ShowEvent() {
  apply_->setChecked(GetEvent().Record().ApplyNag);
  repeat_->ShowEvent();
  CheckEnableStates();
  ShowFields();
}

void EventNagView::CheckEnableStates() { rest_->setEnabled(GetEvent().Record().ApplyNag); }

}  // namespace kestrin
