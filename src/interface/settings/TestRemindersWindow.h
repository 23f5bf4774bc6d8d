// Shows whether a reminder would reach the person, and lets one come.
#pragma once

#include <string>
#include <vector>

#include "interface/common/SideWindow.h"

class QGridLayout;
class QLabel;

namespace kestrin {

struct Context;
struct ReminderLink;

/// Looks when it opens and whenever it is asked to. The reminder is a real one: put off for ten
/// seconds, it comes through the deliverer, and after all windows are closed no less.
class TestRemindersWindow final : public SideWindow {
  Q_OBJECT

 public:
  static constexpr int ComesAfter = 10;  ///< seconds

  TestRemindersWindow(Context& context, DocumentApp& application);

 private:
  void Look();
  void Show(const std::vector<ReminderLink>& links, const std::string& fault);
  void ShowLink(const ReminderLink& link);
  QLabel* Text(const QString& text);
  void LetOneCome();

  Context& context_;
  QGridLayout* rows_;
  QLabel* verdict_;
  QLabel* announced_;
};

}  // namespace kestrin
