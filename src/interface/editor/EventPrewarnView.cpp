#include "interface/editor/EventPrewarnView.h"

#include <QCheckBox>
#include <QLabel>
#include <QVBoxLayout>

#include "core/events/Event.h"
#include "interface/editor/EventIntervalView.h"
#include "interface/editor/EventTextViews.h"
#include "interface/editor/PageParts.h"
#include "interface/fields/NumberField.h"

namespace kestrin {

EventPrewarnView::EventPrewarnView(Event& event)
    : EditorPage(event),
      apply_(new QCheckBox("&Deliver prewarning messages")),
      rest_(BuildSwitchedPage(*this, *apply_, "applyPrewarn")) {
  connect(apply_, &QCheckBox::clicked, this,
          [this](bool on) { Write([on](Event& it) { it.SetApplyPrewarn(on); }); });
  BuildStart();
  BuildRepeat();
  BuildText();
}

void EventPrewarnView::BuildStart() {
  IntervalParts parts{"prewarnTime",
                      "prewarnUnit",
                      "Start in advance",
                      0,
                      &TimingRule::PrewarnTime,
                      &TimingRule::PrewarnType,
                      &Event::SetPrewarnTime,
                      &Event::SetPrewarnType,
                      [](TimingRule& rule) { rule.ApplyPrewarn = true; }};
  start_ = new EventIntervalView(new QLabel("&Start"), std::move(parts), "in advance", GetEvent(),
                                 [this](const auto& change) { Write(change); });
  AddField(start_->Field());
  rest_->layout()->addWidget(start_);
}

void EventPrewarnView::BuildRepeat() {
  applyRepeat_ = new QCheckBox("&Repeat every");
  applyRepeat_->setObjectName("applyPrewarnRepeat");
  connect(applyRepeat_, &QCheckBox::clicked, this,
          [this](bool on) { Write([on](Event& it) { it.SetApplyPrewarnRepeat(on); }); });
  IntervalParts parts{"prewarnRepeat",
                      "prewarnRepeatUnit",
                      "Repeat every",
                      1,
                      &TimingRule::PrewarnRepeatTime,
                      &TimingRule::PrewarnRepeatType,
                      &Event::SetPrewarnRepeatTime,
                      &Event::SetPrewarnRepeatType,
                      [](TimingRule& rule) { rule.ApplyPrewarn = rule.ApplyPrewarnRepeat = true; }};
  repeat_ = new EventIntervalView(applyRepeat_, std::move(parts), {}, GetEvent(),
                                  [this](const auto& change) { Write(change); });
  AddField(repeat_->Field());
  rest_->layout()->addWidget(repeat_);
}

void EventPrewarnView::BuildText() {
  auto* text = new PrewarnTextView("prewarnMessage", "Prewarning message", GetEvent());
  AddText(text);
  AddCaptioned(*rest_, "Prewarning m&essage:", text);
}

void EventPrewarnView::ShowEvent() {
  apply_->setChecked(GetEvent().Record().ApplyPrewarn);
  applyRepeat_->setChecked(GetEvent().Record().ApplyPrewarnRepeat);
  start_->ShowEvent();
  repeat_->ShowEvent();
  CheckEnableStates();
  ShowFields();
}

void EventPrewarnView::CheckEnableStates() {
  rest_->setEnabled(GetEvent().Record().ApplyPrewarn);
  repeat_->SetFieldsEnabled(GetEvent().Record().ApplyPrewarnRepeat);
}

}  // namespace kestrin
