#include "interface/editor/EventCommentView.h"

#include <QVBoxLayout>

#include "interface/editor/EventTextViews.h"

namespace kestrin {

EventCommentView::EventCommentView(Event& event) : EditorPage(event) {
  auto* text = new CommentTextView("comment", "Comment", event);
  AddText(text);
  auto* column = new QVBoxLayout(this);
  column->addWidget(text);
}

}  // namespace kestrin
