#include "core/loop/BackgroundWork.h"

#include <utility>

#include "core/loop/MessageCodes.h"

namespace kestrin {

namespace {

constexpr char Number[] = "Work";

}  // namespace

bool BackgroundWork::Start(const char* name, std::function<Message()> work,
                           std::function<void(const Message& answer)> then) {
  const int64 number = ++last_;
  waiting_[number] = std::move(then);
  const bool started = workers_.Start(name, [&queue = queue_, work = std::move(work), number] {
    Message answer = work();
    answer.what = WORK_DONE;
    answer.Set(Number, number);
    queue.Post(std::move(answer));
  });
  if (!started) waiting_.erase(number);
  return started;
}

void BackgroundWork::Done(const Message& message) {
  auto found = waiting_.extract(message.Get<int64>(Number).value_or(0));
  if (!found.empty()) found.mapped()(message);
}

}  // namespace kestrin
