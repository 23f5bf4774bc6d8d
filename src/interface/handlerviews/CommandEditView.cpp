#include "interface/handlerviews/CommandEditView.h"

#include <QLabel>
#include <QVBoxLayout>

#include "interface/common/ShownText.h"
#include "interface/fields/TypedField.h"
#include "interface/handlerviews/VerifyBox.h"

namespace kestrin {

CommandEditView::CommandEditView(CommandDataHandler& handler)
    : handler_(handler),
      command_(new TypedField(
          "command", [this] { return ShownText(handler_.GetCommand()); },
          [this](const QString& text) {
            handler_.SetCommand(text.toUtf8().constData());
            return QString();
          })) {
  command_->LimitToEventText();
  connect(command_, &TypedField::Complained, this, &CommandEditView::Complained);
  auto* caption = new QLabel("She&ll command:");
  caption->setBuddy(command_);
  auto* row = new QHBoxLayout;
  row->addWidget(caption);
  row->addWidget(command_, 1);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addLayout(row);
  column->addWidget(
      NewVerifyBox("verifyCommand", "Verify with &user before executing command", handler_));
  column->addStretch(1);
  command_->ShowValue();
}

void CommandEditView::CommitEdits() { command_->Commit(); }
void CommandEditView::DropEdits() { command_->Restore(); }

}  // namespace kestrin
