// The menu of moments to which reminders are put off.
#pragma once

#include <QMenu>

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

}  // namespace kestrin
