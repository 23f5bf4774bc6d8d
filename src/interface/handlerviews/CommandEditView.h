// Edits a shell command, and whether it is asked about.
#pragma once

#include <QWidget>

#include "handlers/CommandDataHandler.h"
#include "interface/common/CommitsEdits.h"

namespace kestrin {

class TypedField;

class CommandEditView final : public QWidget, public CommitsEdits {
  Q_OBJECT

 public:
  explicit CommandEditView(CommandDataHandler& handler);

  void CommitEdits() override;
  void DropEdits() override;

 signals:
  void Complained(const QString& why);

 private:
  CommandDataHandler& handler_;
  TypedField* command_;
};

}  // namespace kestrin
