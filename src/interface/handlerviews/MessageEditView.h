// Edits the text of a message.
#pragma once

#include "handlers/MessageDataHandler.h"
#include "interface/common/CommitsEdits.h"
#include "interface/fields/WrappingTextView.h"

namespace kestrin {

class MessageEditView final : public WrappingTextView, public CommitsEdits {
  Q_OBJECT

 public:
  explicit MessageEditView(MessageDataHandler& handler);

  void CommitEdits() override { Commit(); }
  void DropEdits() override { Forget(); }

 protected:
  std::string StoredText() const override { return handler_.GetMessage(); }
  void StoreChange() override { handler_.SetMessage(Text().c_str()); }

 private:
  MessageDataHandler& handler_;
};

}  // namespace kestrin
