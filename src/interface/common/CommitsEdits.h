// An edit view in which something can be typed.
#pragma once

namespace kestrin {

/// A view may also have a signal Complained(const QString&), as the editor's pages have.
class CommitsEdits {
 public:
  virtual ~CommitsEdits() = default;
  /// Hands over what is being typed.
  virtual void CommitEdits() = 0;
  /// Drops what is being typed: the data may go before the view.
  virtual void DropEdits() = 0;
};

}  // namespace kestrin
