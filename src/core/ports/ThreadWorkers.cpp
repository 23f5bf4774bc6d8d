#include <pthread.h>

#include <chrono>
#include <system_error>
#include <thread>
#include <utility>

#include "core/ports/Workers.h"

namespace kestrin {

bool ThreadWorkers::Start(const char* name, std::function<void()> work) {
  ++*running_;
  try {
    std::thread thread([work = std::move(work), running = running_]() mutable {
      work();
      work = nullptr;
      --*running;
    });
    pthread_setname_np(thread.native_handle(), name);
    thread.detach();
    return true;
  } catch (const std::system_error&) {
    --*running_;
    return false;
  }
}

bool ThreadWorkers::StartLater(const char* name, int32 milliseconds, std::function<void()> work) {
  return Start(name, [milliseconds, work = std::move(work)] {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    work();
  });
}

}  // namespace kestrin
