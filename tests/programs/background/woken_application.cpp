// Stands in for the application where the bus starts it: answers one message, tells its code on
// the pipe at PIPE, reports that nothing is pending, and leaves. woken_application PIPE
#include <systemd/sd-bus.h>

#include <cstdio>

#include "programs/background/BusContract.h"

namespace {

uint32_t taken = 0;

int OnPost(sd_bus_message* message, void*, sd_bus_error*) {
  if (const int result = sd_bus_message_read(message, "u", &taken); result < 0) return result;
  return sd_bus_reply_method_return(message, "");
}

const sd_bus_vtable table[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Post", "ua{sv}", "", OnPost, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

}  // namespace

int main(int argc, char** argv) {
  using namespace kestrin;
  std::FILE* pipe = argc == 2 ? std::fopen(argv[1], "w") : nullptr;
  sd_bus* bus = nullptr;
  if (!pipe || sd_bus_open_user(&bus) < 0) return 1;
  if (sd_bus_add_object_vtable(bus, nullptr, ApplicationObject, MessagesInterface, table, nullptr) <
          0 ||
      sd_bus_request_name(bus, ApplicationBusName, 0) < 0)
    return 2;
  while (taken == 0)
    if (const int done = sd_bus_process(bus, nullptr); done < 0)
      return 3;
    else if (done == 0)
      sd_bus_wait(bus, UINT64_MAX);
  std::fprintf(pipe, "%08X\n", taken);
  std::fclose(pipe);
  const int told = sd_bus_call_method(bus, BackgroundBusName, BackgroundObject, MessagesInterface,
                                      "Post", nullptr, nullptr, "ua{sv}", NextEventCode, 0);
  sd_bus_flush_close_unref(bus);
  return told < 0 ? 4 : 0;
}
