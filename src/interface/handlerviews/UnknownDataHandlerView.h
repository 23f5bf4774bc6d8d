// Names the handler that is not installed.
#pragma once

#include <QLabel>

#include "handlers/UnknownDataHandler.h"

namespace kestrin {

class UnknownDataHandlerView final : public QLabel {
  Q_OBJECT

 public:
  explicit UnknownDataHandlerView(const UnknownDataHandler& handler);
};

}  // namespace kestrin
