#include "interface/editor/EventTabView.h"

#include <QShortcut>

#include "core/EventSet.h"
#include "interface/editor/EditorPage.h"
#include "interface/editor/EventWhenView.h"

namespace kestrin {

namespace {

/// Holds the place of a page that is not built yet.
class EmptyPage final : public EditorPage {
 public:
  using EditorPage::EditorPage;
  void ShowEvent() override {}
  void CommitEdits() override {}
};

}  // namespace

EventTabView::EventTabView(Event& event) {
  setObjectName("tabs");
  setAccessibleName("Pages of the event");
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

void EventTabView::AddPages(Event& event) {
  AddPage(new EmptyPage(event), "&Action");
  AddPage(new EventWhenView(event), "&When");
  AddPage(new EmptyPage(event), "&Prewarning");
  AddPage(new EmptyPage(event), "Na&gging");
  AddPage(new EmptyPage(event), "Co&mment");
}

void EventTabView::AddPage(EditorPage* page, const QString& label) {
  pages_.push_back(page);
  addTab(page, label);
}

void EventTabView::TurnTo(int by) { setCurrentIndex((currentIndex() + by + count()) % count()); }

void EventTabView::RemoveEditView() {}
void EventTabView::AddEditView() {}

}  // namespace kestrin
