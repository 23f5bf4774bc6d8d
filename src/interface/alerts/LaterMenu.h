// The menu of moments to which reminders are put off.
#pragma once

#include <QMenu>
#include <QPushButton>

#include "core/timing/LaterMoments.h"

namespace kestrin {

struct Context;

/// The terms as the settings have them; `begins` as in LaterTerms.
LaterTerms LaterTermsNow(const Context& context, int32 begins);

/// Made anew each time it opens: its moments are those of now. Deletes itself once it is closed.
class LaterMenu final : public QMenu {
  Q_OBJECT

 public:
  /// `withOther`: the last item is "Other time…".
  LaterMenu(const Context& context, int32 begins, bool withOther, QWidget* parent);

  /// Below the widget, or above it where there is more room.
  void OpenAt(const QWidget& widget);

 signals:
  void Chosen(const PutOffMoment& when);
  void OtherWanted();
};

/// The button that opens it. Qt's own way of doing so would wait in a loop of its own.
class LaterButton final : public QPushButton {
  Q_OBJECT

 public:
  using QPushButton::QPushButton;

 protected:
  void initStyleOption(QStyleOptionButton* option) const override;
};

}  // namespace kestrin
