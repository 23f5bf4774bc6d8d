#include "session/LoopTimers.h"

#include <QtCore/QTimer>
#include <utility>

namespace kestrin {

void LoopTimers::PostAfter(int32 milliseconds, Message message) {
  QTimer::singleShot(milliseconds, &waits_,
                     [&queue = queue_, message = std::move(message)] { queue.Post(message); });
}

}  // namespace kestrin
