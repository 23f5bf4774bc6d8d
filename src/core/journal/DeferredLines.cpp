#include "core/journal/DeferredLines.h"

#include <algorithm>
#include <utility>

namespace kestrin {

bool DeferredLines::NextMayWait() {
  const bool mayWait = waiting_ < most_;
  if (!mayWait) most_ = std::max<size_t>(1, 2 * most_);
  waiting_ = mayWait ? waiting_ + 1 : 0;
  return mayWait;
}

void DeferredLines::Begin(const std::string& id) {
  lines_ = Take();
  last_.Id = id;
}

std::string DeferredLines::Take() {
  std::string lines = std::exchange(lines_, {});
  if (!last_.Id.empty()) lines += EncodeLine(last_.Id, last_.Fields);
  last_ = {};
  return lines;
}

}  // namespace kestrin
