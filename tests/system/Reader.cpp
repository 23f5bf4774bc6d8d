#include "Reader.h"

#include "harness/bus/Peer.h"

namespace kestrin {

namespace {

constexpr char Registry[] = "org.a11y.atspi.Registry";
constexpr char Root[] = "/org/a11y/atspi/accessible/root";
constexpr char Service[] = "org.a11y.Bus";
constexpr char Accessible[] = "org.a11y.atspi.Accessible";

// Bits of a state.
constexpr uint64_t Enabled = 8, Focusable = 11, Focused = 12, Showing = 25;

bool Has(uint64_t state, uint64_t bit) { return ((state >> bit) & 1) != 0; }

/// A call's answer; null when the object has gone.
class Answer : NotCopied {
 public:
  template <typename... Arguments>
  Answer(sd_bus* bus, const Reader::Object& object, const char* interface, const char* method,
         const char* types, Arguments... arguments) {
    sd_bus_call_method(bus, object.owner.c_str(), object.path.c_str(), interface, method, nullptr,
                       &message_, types, arguments...);
  }
  ~Answer() { sd_bus_message_unref(message_); }

  template <typename... Places>
  bool Read(const char* types, Places... places) {
    return message_ && sd_bus_message_read(message_, types, places...) > 0;
  }
  bool Enter(char kind, const char* types) {
    return message_ && sd_bus_message_enter_container(message_, kind, types) > 0;
  }
  void Leave(const char* rest) {
    sd_bus_message_skip(message_, rest);
    sd_bus_message_exit_container(message_);
  }

 private:
  sd_bus_message* message_ = nullptr;
};

}  // namespace

std::vector<std::string> Reader::Alert::Labels() const {
  std::vector<std::string> labels;
  for (const Control& button : buttons) labels.push_back(button.name);
  return labels;
}

Reader::Reader(const PrivateBus& bus)
    : address_(bus.Address()), service_(Connect(bus)), bus_(Connect(bus)) {
  Require(sd_bus_add_filter(service_, nullptr, OnCall, this) >= 0 &&
              sd_bus_request_name(service_, Registry, 0) >= 0 &&
              sd_bus_request_name(service_, Service, 0) >= 0,
          "the reader cannot take its place on the bus");
  thread_ = std::thread([this] { Serve(); });
}

Reader::~Reader() {
  stop_ = true;
  thread_.join();
  sd_bus_close_unref(service_);
  sd_bus_close_unref(bus_);
}

void Reader::Serve() {
  constexpr uint64_t lookUp = 100'000;  // microseconds
  while (!stop_) {
    const int done = sd_bus_process(service_, nullptr);
    if (done < 0) return;
    if (done == 0) sd_bus_wait(service_, lookUp);
  }
}

int Reader::OnCall(sd_bus_message* call, void* self, sd_bus_error*) {
  auto& reader = *static_cast<Reader*>(self);
  const auto is = [call](const char* interface, const char* member) {
    return sd_bus_message_is_method_call(call, interface, member) > 0;
  };
  if (is(Service, "GetAddress"))
    return sd_bus_reply_method_return(call, "s", reader.address_.c_str());
  if (is("org.freedesktop.DBus.Properties", "Get"))  // whether anybody reads
    return sd_bus_reply_method_return(call, "v", "b", 1);
  if (!is("org.a11y.atspi.Socket", "Embed")) return 0;
  const char *owner = nullptr, *path = nullptr;
  if (const int result = sd_bus_message_read(call, "(so)", &owner, &path); result < 0)
    return result;
  const std::lock_guard lock(reader.guard_);
  reader.applications_.push_back({owner, path});
  return sd_bus_reply_method_return(call, "(so)", Registry, Root);
}

std::vector<Reader::Object> Reader::Windows() {
  std::vector<Object> applications, windows;
  {
    const std::lock_guard lock(guard_);
    applications = applications_;
  }
  for (const Object& application : applications)
    for (const Object& window : Children(application))
      if (Has(State(window), Showing)) windows.push_back(window);
  return windows;
}

std::vector<Reader::Object> Reader::Children(const Object& object) {
  std::vector<Object> children;
  Answer answer(bus_, object, Accessible, "GetChildren", "");
  if (!answer.Enter('a', "(so)")) return children;
  for (const char *owner = nullptr, *path = nullptr; answer.Read("(so)", &owner, &path);)
    children.push_back({owner, path});
  return children;
}

std::string Reader::Text(const Object& object, const char* property) {
  const char* text = nullptr;
  Answer answer(bus_, object, "org.freedesktop.DBus.Properties", "Get", "ss", Accessible, property);
  return answer.Read("v", "s", &text) ? text : "";
}

std::string Reader::Role(const Object& object) {
  const char* text = nullptr;
  Answer answer(bus_, object, Accessible, "GetRoleName", "");
  return answer.Read("s", &text) ? text : "";
}

uint64_t Reader::State(const Object& object) {
  Answer answer(bus_, object, Accessible, "GetState", "");
  uint32_t low = 0, high = 0;
  return answer.Read("au", 2, &low, &high) ? uint64_t{high} << 32 | low : 0;
}

bool Reader::IsLabelled(const Object& object) {
  constexpr uint32_t LabelledBy = 2;
  if (!Text(object, "Description").empty()) return true;
  Answer answer(bus_, object, Accessible, "GetRelationSet", "");
  if (!answer.Enter('a', "(ua(so))")) return false;
  for (uint32_t relation = 0; answer.Enter('r', "ua(so)"); answer.Leave("a(so)"))
    if (!answer.Read("u", &relation) || relation == LabelledBy) return relation == LabelledBy;
  return false;
}

void Reader::Collect(const Object& object, std::vector<Control>& controls) {
  for (const Object& child : Children(object)) {
    const uint64_t state = State(child);
    if (!Has(state, Showing)) continue;
    controls.push_back({Text(child, "Name"), Role(child), Has(state, Focusable),
                        Has(state, Focused), Has(state, Enabled), child});
    Collect(child, controls);
  }
}

std::vector<Reader::Control> Reader::Controls(const std::string& window) {
  std::vector<Control> controls;
  for (const Object& object : Windows())
    if (Text(object, "Name").starts_with(window)) Collect(object, controls);
  return controls;
}

std::vector<Reader::Alert> Reader::Alerts() {
  std::vector<Alert> alerts;
  for (const Object& window : Windows()) {
    Alert alert{Text(window, "Description"), {}, window};
    const std::string role = Role(window);
    if (alert.text.empty() || (!role.starts_with("alert") && role != "dialog")) continue;
    Collect(window, alert.buttons);
    std::erase_if(alert.buttons, [](const Control& each) { return each.role != "push button"; });
    alerts.push_back(std::move(alert));
  }
  return alerts;
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
