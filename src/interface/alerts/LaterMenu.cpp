#include "interface/alerts/LaterMenu.h"

#include <QScreen>
#include <QStyleOptionButton>

#include "core/events/Context.h"
#include "core/settings/KestrinSettings.h"

namespace kestrin {

LaterTerms LaterTermsNow(const Context& context, int32 begins) {
  LaterTerms terms;
  terms.evening = context.settings.EveningTime;
  terms.morning = context.settings.MorningTime;
  terms.use24Hours = context.settings.Time24Hour;
  terms.begins = begins;
  return terms;
}

LaterMenu::LaterMenu(const Context& context, int32 begins, bool withOther, QWidget* parent)
    : QMenu(parent) {
  setObjectName("laterMenu");
  setAttribute(Qt::WA_DeleteOnClose);
  const std::vector<LaterOffer> offers =
      LaterOffers(context.clock.Now(), context.zone, LaterTermsNow(context, begins),
                  context.settings.LastLater);
  for (const LaterOffer& offer : offers) {
    QAction* item = addAction(QString::fromStdString(offer.label));
    connect(item, &QAction::triggered, this, [this, offer, &settings = context.settings] {
      {
        const AutoLock lock(settings.Protect);
        settings.LastLater = offer.choice;
        settings.Changed();
      }
      emit Chosen(offer.when);
    });
  }
  if (!withOther) return;
  addSeparator();
  connect(addAction("&Other time…"), &QAction::triggered, this, &LaterMenu::OtherWanted);
}

void LaterMenu::OpenAt(const QWidget& widget) {
  const QRect room = widget.screen()->availableGeometry();
  const QPoint below = widget.mapToGlobal(QPoint(0, widget.height()));
  const QPoint above = widget.mapToGlobal(QPoint(0, -sizeHint().height()));
  popup(below.y() + sizeHint().height() > room.bottom() && above.y() >= room.top() ? above : below);
}

void LaterButton::initStyleOption(QStyleOptionButton* option) const {
  QPushButton::initStyleOption(option);
  option->features |= QStyleOptionButton::HasMenu;
}

}  // namespace kestrin
