#include "interface/editor/EventView.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>

#include "core/events/Context.h"
#include "core/events/EventSet.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/DateTimeText.h"
#include "core/timing/EventRecord.h"
#include "interface/common/ShownText.h"
#include "interface/fields/TypedField.h"
#include "interface/icons/IconView.h"
#include "interface/list/EventCells.h"
#include "interface/list/EventOrder.h"

namespace kestrin {

namespace {

enum GridColumn { PictureColumn, CaptionColumn, ValueColumn, ActiveColumn };

void ShowLine(QLabel& line, const QString& text) {
  line.setText(text);
  line.setAccessibleName(line.property("caption").toString() + u' ' + text);
}

}  // namespace

EventView::EventView(Event& event) : EditorPage(event) {
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setColumnStretch(ValueColumn, 1);
  BuildIcon(*grid);
  BuildName(*grid);
  BuildTimes(*grid);
}

void EventView::BuildIcon(QGridLayout& grid) {
  icon_ = new IconView(GetEvent());
  grid.addWidget(icon_, 0, PictureColumn, 4, 1, Qt::AlignTop);
}

void EventView::BuildName(QGridLayout& grid) {
  name_ = new TypedField(
      "eventName", [this] { return ShownText(GetEvent().GetName()); },
      [this](const QString& text) {
        Write([&](Event& event) { event.SetName(text.toStdString()); });
        return QString();
      });
  name_->LimitToEventText();
  AddField(name_);
  auto* caption = new QLabel("&Name:");
  caption->setBuddy(name_);
  active_ = new QCheckBox("Acti&ve");
  active_->setObjectName("active");
  connect(active_, &QCheckBox::clicked, this,
          [this](bool on) { Write([on](Event& event) { event.SetActive(on); }); });
  grid.addWidget(caption, 0, CaptionColumn);
  grid.addWidget(name_, 0, ValueColumn);
  grid.addWidget(active_, 0, ActiveColumn);
}

void EventView::BuildTimes(QGridLayout& grid) {
  actual_ = AddLine(grid, 1, "actualTime", "Actual event time:");
  next_ = AddLine(grid, 2, "nextTime", "Next message time:");
  status_ = AddLine(grid, 3, "status", "Status:");
}

QLabel* EventView::AddLine(QGridLayout& grid, int row, const char* objectName,
                           const char* caption) {
  auto* value = new QLabel;
  value->setObjectName(objectName);
  value->setProperty("caption", caption);
  value->setTextFormat(Qt::PlainText);
  value->setTextInteractionFlags(Qt::TextSelectableByMouse);
  grid.addWidget(new QLabel(caption), row, CaptionColumn);
  grid.addWidget(value, row, ValueColumn, 1, 2);
  return value;
}

void EventView::ShowEvent() {
  icon_->ShowEvent();
  ShowFields();
  active_->setChecked(GetEvent().GetActive());
  RedrawStatus();
}

void EventView::RedrawStatus() {
  const EventRecord& record = GetEvent().Record();
  ShowLine(*actual_, TimeText(record.ActualEventTime, HasTimeOfDay(record)));
  ShowLine(*next_, TimeText(record.NextEventTime, MessageHasTimeOfDay(record)));
  ShowLine(*status_, CellText(GetEvent(), StatusColumn));
}

QString EventView::TimeText(int time, bool withTime) const {
  const Context& context = GetEvent().GetOwner()->GetContext();
  return QString::fromStdString(
      GetDateTimeString(time, withTime, context.zone, context.settings.Time24Hour));
}

void EventView::CommitEdits() { CommitFields(); }

void EventView::DropEdits() {
  EditorPage::DropEdits();
  icon_->Forget();
}

bool EventView::OfferName() {
  if (GetEvent().GetName() != EventRecord().Name) return false;
  name_->setFocus();
  name_->selectAll();
  return true;
}

}  // namespace kestrin
