#include "core/loop/Holds.h"

#include "core/loop/AppMessages.h"

namespace kestrin {

void Holds::ProcessDone() {
  if (count_.fetch_sub(1) != 1) return;
  queue_.Post(QuitIfIdle());
}

}  // namespace kestrin
