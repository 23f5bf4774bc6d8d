#include "interface/editor/EventTabView.h"

#include <QEvent>
#include <QScreen>
#include <QShortcut>
#include <QTabBar>
#include <algorithm>

#include "core/events/EventSet.h"
#include "interface/common/ScrolledPage.h"
#include "interface/editor/EventActionView.h"
#include "interface/editor/EventCommentView.h"
#include "interface/editor/EventNagView.h"
#include "interface/editor/EventPrewarnView.h"
#include "interface/editor/EventWhenView.h"

namespace kestrin {

EventTabView::EventTabView(Event& event) {
  setObjectName("tabs");
  setAccessibleName("Pages of the event");
  tabBar()->installEventFilter(this);
  AddPages(event);
  const int32 shown = event.Record().TabShown;
  setCurrentIndex(shown >= 0 && shown < count() ? shown : 0);
  connect(this, &QTabWidget::currentChanged, this, [&event](int page) {
    const AutoLock lock(event.GetProtectionSemaphore());
    event.SetTabShown(page);
  });
  const auto turn = [this](int key, int by) {
    auto* shortcut = new QShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(key)), this);
    shortcut->setContext(Qt::WindowShortcut);
    connect(shortcut, &QShortcut::activated, this, [this, by] { TurnTo(by); });
  };
  turn(Qt::Key_PageUp, -1);
  turn(Qt::Key_PageDown, 1);
}

/// The letter of the page that is shown goes into it.
bool EventTabView::eventFilter(QObject* bar, QEvent* event) {
  if (bar == tabBar() && event->type() == QEvent::Shortcut)
    QMetaObject::invokeMethod(
        this,
        [this, before = currentIndex()] {
          if (currentIndex() == before) EnterPage();
        },
        Qt::QueuedConnection);
  return QTabWidget::eventFilter(bar, event);
}

void EventTabView::EnterPage() {
  const QWidget* const page = currentWidget();
  for (QWidget* next = nextInFocusChain(); next != this; next = next->nextInFocusChain()) {
    const bool takesFocus = (next->focusPolicy() & Qt::TabFocus) != 0 && next->isEnabled();
    if (!takesFocus || !next->isVisible() || !page->isAncestorOf(next)) continue;
    next->setFocus(Qt::TabFocusReason);
    return;
  }
}

void EventTabView::AddPages(Event& event) {
  action_ = new EventActionView(event);
  AddPage(action_, "&Action");
  AddPage(new EventWhenView(event), "&When");
  AddPage(new EventPrewarnView(event), "&Prewarning");
  AddPage(new EventNagView(event), "Na&gging");
  AddPage(new EventCommentView(event), "Co&mment");
}

/// On which the highest page would not fit, with what stands around the pages.
bool EventTabView::IsLowScreen() const {
  constexpr int WholeWindow = 36;  // lines of text
  return screen()->availableGeometry().height() < WholeWindow * fontMetrics().lineSpacing();
}

void EventTabView::AddPage(EditorPage* page, const QString& label) {
  pages_.push_back(page);
  addTab(IsLowScreen() ? new ScrolledPage(page) : static_cast<QWidget*>(page), label);
}

int EventTabView::LackOfHeight() const {
  int lack = 0;
  for (size_t i = 0; i < pages_.size(); ++i) {
    const QWidget& scrolled = *widget(static_cast<int>(i));
    lack =
        std::max(lack, pages_[i]->minimumSizeHint().height() - scrolled.minimumSizeHint().height());
  }
  return lack;
}

void EventTabView::TurnTo(int by) { setCurrentIndex((currentIndex() + by + count()) % count()); }

void EventTabView::RemoveEditView() { action_->RemoveEditView(); }
void EventTabView::AddEditView() { action_->AddEditView(); }

}  // namespace kestrin
