#include <pthread.h>

#include <system_error>
#include <thread>

#include "core/ports/Workers.h"

namespace kestrin {

bool ThreadWorkers::Start(const char* name, std::function<void()> work) {
  try {
    std::thread thread(std::move(work));
    pthread_setname_np(thread.native_handle(), name);
    thread.detach();
    return true;
  } catch (const std::system_error&) {
    return false;
  }
}

}  // namespace kestrin
