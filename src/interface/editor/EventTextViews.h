// The texts of an event that its pages edit.
#pragma once

#include "interface/fields/WrappingTextView.h"

namespace kestrin {

class Event;

class EventTextView : public WrappingTextView {
  Q_OBJECT

 public:
  EventTextView(const char* objectName, const QString& accessibleName, Event& event)
      : WrappingTextView(objectName, accessibleName), event_(event) {}

 protected:
  Event& GetEvent() const { return event_; }

 private:
  Event& event_;
};

class PrewarnTextView final : public EventTextView {
  Q_OBJECT

 public:
  using EventTextView::EventTextView;

 protected:
  std::string StoredText() const override;
  void StoreChange() override;
};

class NagTextView final : public EventTextView {
  Q_OBJECT

 public:
  using EventTextView::EventTextView;

 protected:
  std::string StoredText() const override;
  void StoreChange() override;
};

class CommentTextView final : public EventTextView {
  Q_OBJECT

 public:
  using EventTextView::EventTextView;

 protected:
  std::string StoredText() const override;
  void StoreChange() override;
};

}  // namespace kestrin
