#include "harness/bus/Peer.h"

namespace kestrin {

sd_bus* Connect(const PrivateBus& bus) {
  sd_bus* made = nullptr;
  Require(sd_bus_new(&made) >= 0 && sd_bus_set_address(made, bus.Address().c_str()) >= 0 &&
              sd_bus_set_bus_client(made, true) >= 0 && sd_bus_start(made) >= 0,
          "connect");
  return made;
}

const sd_bus_vtable Peer::table_[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Post", "ua{sv}", "", OnPost, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

Peer::Peer(const PrivateBus& bus, const char* name) : bus_(Connect(bus)) {
  Require(sd_bus_match_signal(bus_, nullptr, nullptr, BackgroundObject,
                              "org.freedesktop.DBus.Properties", "PropertiesChanged", OnChanged,
                              this) >= 0 &&
              sd_bus_match_signal(
                  bus_, nullptr, "org.freedesktop.DBus", nullptr, nullptr, "NameOwnerChanged",
                  [](sd_bus_message*, void*, sd_bus_error*) { return 0; }, nullptr) >= 0,
          "match");
  if (!name) return;
  Require(sd_bus_add_object_vtable(bus_, nullptr, ApplicationObject, MessagesInterface, table_,
                                   this) >= 0 &&
              sd_bus_request_name(bus_, name, 0) >= 0,
          "take the name");
}

Peer::~Peer() { sd_bus_flush_close_unref(bus_); }

int Peer::OnPost(sd_bus_message* message, void* self, sd_bus_error*) {
  Taken taken{0, RealTime()};
  const char* late = nullptr;
  const int result =
      sd_bus_message_read(message, "ua{sv}", &taken.what, 1, &late, "i", &taken.late);
  if (result < 0) return result;
  static_cast<Peer*>(self)->taken.push_back(taken);
  return sd_bus_reply_method_return(message, "");
}

int Peer::OnChanged(sd_bus_message* signal, void* self, sd_bus_error*) {
  const char* name = nullptr;
  int32_t when = 0;
  if (sd_bus_message_skip(signal, "s") >= 0 &&
      sd_bus_message_read(signal, "a{sv}", 1, &name, "i", &when) >= 0)
    static_cast<Peer*>(self)->announced.push_back(when);
  return 0;
}

bool Peer::WaitUntil(const std::function<bool()>& until) {
  const auto end = std::chrono::steady_clock::now() + Patience;
  for (;;) {
    const int done = sd_bus_process(bus_, nullptr);
    if (done < 0) return false;
    if (done > 0) continue;
    if (until()) return true;
    const auto left = end - std::chrono::steady_clock::now();
    if (left <= left.zero()) return false;
    sd_bus_wait(bus_, static_cast<uint64_t>(
                          std::chrono::duration_cast<std::chrono::microseconds>(left).count()));
  }
}

pid_t Peer::ProcessOf(const char* name) {
  sd_bus_creds* owner = nullptr;
  pid_t process = 0;
  if (sd_bus_get_name_creds(bus_, name, SD_BUS_CREDS_PID, &owner) >= 0)
    sd_bus_creds_get_pid(owner, &process);
  sd_bus_creds_unref(owner);
  return process;
}

bool Peer::WaitForOwner(const char* name, bool owned) {
  return WaitUntil([&] { return HasOwner(name) == owned; });
}

std::string Peer::Post(uint32_t what, const std::vector<Field>& fields) {
  sd_bus_message* message = nullptr;
  sd_bus_message_new_method_call(bus_, &message, BackgroundBusName, BackgroundObject,
                                 MessagesInterface, "Post");
  sd_bus_message_append(message, "u", what);
  sd_bus_message_open_container(message, 'a', "{sv}");
  for (const auto& [name, type, value] : fields) {
    const char signature[] = {type, '\0'};
    if (type == 's')
      sd_bus_message_append(message, "{sv}", name, signature, std::to_string(value).c_str());
    else if (type == 'x')
      sd_bus_message_append(message, "{sv}", name, signature, value);
    else
      sd_bus_message_append(message, "{sv}", name, signature, static_cast<int32_t>(value));
  }
  sd_bus_message_close_container(message);
  sd_bus_error error = SD_BUS_ERROR_NULL;
  const int result = sd_bus_call(bus_, message, 0, &error, nullptr);
  std::string name = result >= 0 ? "" : error.name ? error.name : "?";
  sd_bus_error_free(&error);
  sd_bus_message_unref(message);
  return name;
}

int32_t Peer::When() {
  int32_t when = -1;
  sd_bus_get_property_trivial(bus_, BackgroundBusName, BackgroundObject, MessagesInterface, "When",
                              nullptr, 'i', &when);
  return when;
}

}  // namespace kestrin
