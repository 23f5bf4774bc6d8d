// The page with an event's comment.
#pragma once

#include "interface/editor/EditorPage.h"

namespace kestrin {

class EventCommentView final : public EditorPage {
  Q_OBJECT

 public:
  explicit EventCommentView(Event& event);

  void ShowEvent() override { ShowFields(); }
  void CommitEdits() override { CommitFields(); }
};

}  // namespace kestrin
