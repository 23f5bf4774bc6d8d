// The pages of an event's editor.
#pragma once

#include <QTabWidget>
#include <array>
#include <vector>

namespace kestrin {

class EditorPage;
class Event;
class EventActionView;

/// In the order of the pages.
inline constexpr std::array<const char*, 5> TabbedViewNames = {"Action", "When", "Prewarning",
                                                               "Nagging", "Comment"};

/// The event keeps which page is shown; a number without a page is kept until the person turns to
/// another.
class EventTabView final : public QTabWidget {
  Q_OBJECT

 public:
  explicit EventTabView(Event& event);

  const std::vector<EditorPage*>& Pages() const { return pages_; }
  /// By how much the window must be higher than it can be, so that no page is scrolled.
  int LackOfHeight() const;
  /// The handler's edit view goes, and comes; Pages' own ShowEvent leaves it alone.
  void RemoveEditView();
  void AddEditView();

 protected:
  bool eventFilter(QObject* bar, QEvent* event) override;

 private:
  void EnterPage();
  bool IsLowScreen() const;
  void AddPages(Event& event);
  void AddPage(EditorPage* page, const QString& label);
  void TurnTo(int by);

  std::vector<EditorPage*> pages_;
  EventActionView* action_ = nullptr;
};

}  // namespace kestrin
