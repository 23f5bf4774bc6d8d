#include "Reader.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

namespace kestrin {

namespace {

constexpr char Registry[] = "org.a11y.atspi.Registry";
constexpr char Root[] = "/org/a11y/atspi/accessible/root";
constexpr char Service[] = "org.a11y.Bus";
constexpr char ServicePath[] = "/org/a11y/bus";
constexpr char Accessible[] = "org.a11y.atspi.Accessible";

enum Role : uint32_t { RoleAlert = 2, RoleDialog = 16, RolePushButton = 43 };

// Bits of a state.
constexpr uint64_t Enabled = 8, Focusable = 11, Focused = 12, Showing = 25;

bool Has(uint64_t state, uint64_t bit) { return ((state >> bit) & 1) != 0; }

sd_bus* Connect(const std::string& address) {
  sd_bus* bus = nullptr;
  if (sd_bus_new(&bus) < 0 || sd_bus_set_address(bus, address.c_str()) < 0 ||
      sd_bus_set_bus_client(bus, true) < 0 || sd_bus_start(bus) < 0)
    throw std::runtime_error("the reader cannot reach the bus");
  return bus;
}

/// A call's answer; null when the object has gone.
class Answer {
 public:
  template <typename... Arguments>
  Answer(sd_bus* bus, const Reader::Object& object, const char* interface, const char* method,
         const char* types, Arguments... arguments) {
    sd_bus_call_method(bus, object.owner.c_str(), object.path.c_str(), interface, method, nullptr,
                       &message_, types, arguments...);
  }
  ~Answer() { sd_bus_message_unref(message_); }
  Answer(const Answer&) = delete;
  Answer& operator=(const Answer&) = delete;
  explicit operator bool() const { return message_ != nullptr; }
  template <typename... Places>
  bool Read(const char* types, Places... places) {
    return message_ && sd_bus_message_read(message_, types, places...) > 0;
  }
  sd_bus_message* Get() { return message_; }

 private:
  sd_bus_message* message_ = nullptr;
};

}  // namespace

std::vector<std::string> Reader::Alert::Labels() const {
  std::vector<std::string> labels;
  for (const Button& button : buttons) labels.push_back(button.label);
  return labels;
}

const sd_bus_vtable Reader::registryTable_[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Embed", "(so)", "(so)", OnEmbed, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};
const sd_bus_vtable Reader::serviceTable_[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("GetAddress", "", "s", OnGetAddress, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};
const sd_bus_vtable Reader::statusTable_[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("IsEnabled", "b", OnGetStatus, 0, SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_PROPERTY("ScreenReaderEnabled", "b", OnGetStatus, 0,
                    SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_VTABLE_END,
};

Reader::Reader(const PrivateBus& bus)
    : address_(bus.Address()),
      service_(Connect(address_)),
      bus_(Connect(address_)),
      stop_(eventfd(0, EFD_CLOEXEC)) {
  const auto serve = [this](const char* path, const char* interface, const sd_bus_vtable* table) {
    return sd_bus_add_object_vtable(service_, nullptr, path, interface, table, this) >= 0;
  };
  if (!serve(Root, "org.a11y.atspi.Socket", registryTable_) ||
      !serve(ServicePath, Service, serviceTable_) ||
      !serve(ServicePath, "org.a11y.Status", statusTable_) ||
      sd_bus_request_name(service_, Registry, 0) < 0 ||
      sd_bus_request_name(service_, Service, 0) < 0)
    throw std::runtime_error("the reader cannot take its place on the bus");
  thread_ = std::thread([this] { Serve(); });
}

Reader::~Reader() {
  eventfd_write(stop_, 1);
  thread_.join();
  sd_bus_close_unref(service_);
  sd_bus_close_unref(bus_);
  close(stop_);
}

void Reader::Serve() {
  for (;;) {
    const int done = sd_bus_process(service_, nullptr);
    if (done < 0) return;
    if (done > 0) continue;
    std::array<pollfd, 2> ready{{{stop_, POLLIN, 0}, {sd_bus_get_fd(service_), POLLIN, 0}}};
    poll(ready.data(), ready.size(), 100);
    if (ready[0].revents != 0) return;
  }
}

int Reader::OnEmbed(sd_bus_message* message, void* self, sd_bus_error*) {
  auto& reader = *static_cast<Reader*>(self);
  const char* owner = nullptr;
  const char* path = nullptr;
  if (const int result = sd_bus_message_read(message, "(so)", &owner, &path); result < 0)
    return result;
  {
    const std::lock_guard lock(reader.guard_);
    reader.applications_.push_back({owner, path});
  }
  return sd_bus_reply_method_return(message, "(so)", Registry, Root);
}

int Reader::OnGetAddress(sd_bus_message* message, void* self, sd_bus_error*) {
  return sd_bus_reply_method_return(message, "s", static_cast<Reader*>(self)->address_.c_str());
}

int Reader::OnGetStatus(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply,
                        void*, sd_bus_error*) {
  return sd_bus_message_append(reply, "b", 1);
}

std::vector<Reader::Object> Reader::Children(const Object& object) {
  std::vector<Object> children;
  Answer answer(bus_, object, Accessible, "GetChildren", "");
  if (!answer || sd_bus_message_enter_container(answer.Get(), 'a', "(so)") < 0) return children;
  for (const char *owner = nullptr, *path = nullptr; answer.Read("(so)", &owner, &path);)
    children.push_back({owner, path});
  return children;
}

uint32_t Reader::Role(const Object& object) {
  uint32_t role = 0;
  Answer(bus_, object, Accessible, "GetRole", "").Read("u", &role);
  return role;
}

std::string Reader::Text(const Object& object, const char* property) {
  const char* text = nullptr;
  Answer answer(bus_, object, "org.freedesktop.DBus.Properties", "Get", "ss", Accessible, property);
  return answer.Read("v", "s", &text) ? text : "";
}

std::string Reader::RoleName(const Object& object) {
  const char* text = nullptr;
  Answer answer(bus_, object, Accessible, "GetRoleName", "");
  return answer.Read("s", &text) ? text : "";
}

uint64_t Reader::State(const Object& object) {
  Answer answer(bus_, object, Accessible, "GetState", "");
  uint32_t low = 0, high = 0;
  return answer.Read("au", 2, &low, &high) ? uint64_t{high} << 32 | low : 0;
}

bool Reader::IsShowing(const Object& object) { return Has(State(object), Showing); }

bool Reader::IsLabelled(const Object& object) {
  constexpr uint32_t LabelledBy = 2;
  if (!Text(object, "Description").empty()) return true;
  Answer answer(bus_, object, Accessible, "GetRelationSet", "");
  if (!answer || sd_bus_message_enter_container(answer.Get(), 'a', "(ua(so))") < 0) return false;
  uint32_t relation = 0;
  while (sd_bus_message_enter_container(answer.Get(), 'r', "ua(so)") > 0) {
    if (!answer.Read("u", &relation) || relation == LabelledBy) return relation == LabelledBy;
    sd_bus_message_skip(answer.Get(), "a(so)");
    sd_bus_message_exit_container(answer.Get());
  }
  return false;
}

void Reader::CollectButtons(const Object& object, std::vector<Button>& buttons) {
  for (const Object& child : Children(object)) {
    if (Role(child) == RolePushButton && IsShowing(child))
      buttons.push_back({Text(child, "Name"), child});
    else
      CollectButtons(child, buttons);
  }
}

std::vector<Reader::Object> Reader::Windows() {
  std::vector<Object> applications, windows;
  {
    const std::lock_guard lock(guard_);
    applications = applications_;
  }
  for (const Object& application : applications)
    for (const Object& window : Children(application))
      if (IsShowing(window)) windows.push_back(window);
  return windows;
}

std::vector<Reader::Alert> Reader::Alerts() {
  std::vector<Alert> alerts;
  for (const Object& window : Windows()) {
    const uint32_t role = Role(window);
    if (role != RoleAlert && role != RoleDialog) continue;
    Alert alert{Text(window, "Name"), Text(window, "Description"), {}, window};
    CollectButtons(window, alert.buttons);
    alerts.push_back(std::move(alert));
  }
  return alerts;
}

void Reader::CollectControls(const Object& object, std::vector<Control>& controls) {
  for (const Object& child : Children(object)) {
    const uint64_t state = State(child);
    if (!Has(state, Showing)) continue;
    controls.push_back({Text(child, "Name"), RoleName(child), Has(state, Focusable),
                        Has(state, Focused), Has(state, Enabled), IsLabelled(child), child});
    CollectControls(child, controls);
  }
}

std::vector<Reader::Control> Reader::Controls(const std::string& window) {
  std::vector<Control> controls;
  for (const Object& object : Windows())
    if (Text(object, "Name").starts_with(window)) CollectControls(object, controls);
  return controls;
}

bool Reader::Press(const Object& button) {
  int done = 0;
  return Answer(bus_, button, "org.a11y.atspi.Action", "DoAction", "i", 0).Read("b", &done) &&
         done != 0;
}

Reader::Area Reader::AreaOf(const Object& object) {
  Area area;
  constexpr uint32_t onTheScreen = 0;
  Answer(bus_, object, "org.a11y.atspi.Component", "GetExtents", "u", onTheScreen)
      .Read("(iiii)", &area.corner.x, &area.corner.y, &area.size.x, &area.size.y);
  return area;
}

}  // namespace kestrin
