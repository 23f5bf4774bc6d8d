#include "Screen.h"

#include <X11/Xlib.h>

#include <sstream>

namespace kestrin {

namespace {

using XWindow = ::Window;

/// A window may go away between two questions about it.
int PassOver(Display*, XErrorEvent*) { return 0; }

constexpr char Wanted[] = "kestrin";  // of WM_CLASS

}  // namespace

struct Screen::Connection : NotCopied {
  Connection() {
    Require(display != nullptr, "the X server does not answer");
    XSetErrorHandler(PassOver);
  }
  ~Connection() { XCloseDisplay(display); }

  Atom Known(const char* text) { return XInternAtom(display, text, False); }

  std::string Bytes(XWindow window, const char* property) {
    Atom type = 0;
    int format = 0;
    unsigned long count = 0, left = 0;
    unsigned char* data = nullptr;
    std::string bytes;
    if (XGetWindowProperty(display, window, Known(property), 0, 4096, False, AnyPropertyType, &type,
                           &format, &count, &left, &data) == Success &&
        data) {
      // Xlib keeps 32-bit items in longs.
      const size_t size = format == 32 ? sizeof(long) : static_cast<size_t>(format) / 8;
      bytes.assign(reinterpret_cast<const char*>(data), count * size);
      XFree(data);
    }
    return bytes;
  }

  std::vector<XWindow> RootList(const char* property) {
    const std::string bytes = Bytes(root, property);
    std::vector<XWindow> list(bytes.size() / sizeof(XWindow));
    bytes.copy(reinterpret_cast<char*>(list.data()), list.size() * sizeof(XWindow));
    return list;
  }

  Display* const display = XOpenDisplay(Name().c_str());
  const XWindow root = DefaultRootWindow(display);
};

Screen::Screen() : connection_(std::make_unique<Connection>()) {}

Screen::~Screen() = default;

const std::string& Screen::Name() {
  static const std::string name = getenv("DISPLAY");
  return name;
}

std::vector<Screen::ShownWindow> Screen::Windows() {
  Connection& x = *connection_;
  std::vector<ShownWindow> windows;
  for (const XWindow window : x.RootList("_NET_CLIENT_LIST")) {
    XWindowAttributes attributes{};
    if (!XGetWindowAttributes(x.display, window, &attributes)) continue;
    const std::string instance = x.Bytes(window, "WM_CLASS");
    if (attributes.map_state != IsViewable || instance.c_str() != std::string(Wanted)) continue;
    XWindow child = 0;
    Place corner;
    XTranslateCoordinates(x.display, window, x.root, 0, 0, &corner.x, &corner.y, &child);
    windows.push_back({window, x.Bytes(window, "_NET_WM_NAME"), corner});
  }
  return windows;
}

void Screen::AskManager(const ShownWindow& window, const char* what) {
  constexpr long Pager = 2;
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window.id;
  event.xclient.message_type = connection_->Known(what);
  event.xclient.format = 32;
  event.xclient.data.l[0] = Pager;
  event.xclient.data.l[1] = CurrentTime;
  XSendEvent(connection_->display, connection_->root, False,
             SubstructureNotifyMask | SubstructureRedirectMask, &event);
  XFlush(connection_->display);
}

void Screen::Activate(const ShownWindow& window) {
  const std::vector<XWindow> wanted{window.id};
  const auto isActive = [&] {
    if (connection_->RootList("_NET_ACTIVE_WINDOW") == wanted) return true;
    // Once is not enough: a window that is just opening may get in front after the answer.
    AskManager(window, "_NET_ACTIVE_WINDOW");
    return false;
  };
  Require(Until(isActive), ("not in front: " + window.title).c_str());
}

void Screen::Do(std::vector<std::string> action) {
  action.insert(action.begin(), XDOTOOL);
  Require(Child(action, {{"DISPLAY", Name()}}).Wait() == 0, "xdotool failed");
}

void Screen::Click(Place at) {
  Do({"mousemove", std::to_string(at.x), std::to_string(at.y), "click", "1"});
}

void Screen::Press(const std::string& keys) {
  std::vector<std::string> action = {"key", "--delay", "20"};
  std::istringstream words(keys);
  for (std::string key; words >> key;) action.push_back(key);
  Do(std::move(action));
}

void Screen::Type(const std::string& text) { Do({"type", "--delay", "2", text}); }

}  // namespace kestrin
